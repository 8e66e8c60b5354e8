// Which key of a US keyboard the human presses, on layouts of several alphabets.
#include "OrvanePlatform/x11/X11DesktopKeyboard.h"

#include "OrvanePlatform/x11/X11Session.h"
#include "tests/support/VirtualDesktop.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

class DesktopKeyboards : public testing::Test {
protected:
    static void setLayouts(const QString& layouts) { runCommand(u"setxkbmap"_s, {layouts}); }

    /// `layout`: the one that is typed with, counted from 0.
    std::optional<int> keyCode(quint32 scanCode, quint32 keysym, quint32 layout) {
        constexpr quint32 shiftAndNumLock = 0x11;
        return keyboard.keyCode(
            {.scanCode = scanCode, .virtualKey = keysym, .modifiers = layout << 13U | shiftAndNumLock});
    }

    // Where a US keyboard has them: the place of a full stop is another on a Russian one.
    static constexpr quint32 slashPlace = 61;
    static constexpr quint32 qPlace = 24;
    static constexpr int carbonSlash = 44;
    static constexpr int carbonPeriod = 47;
    static constexpr int carbonA = 0;
    static constexpr int carbonQ = 12;

    VirtualDesktop desktop{{u"--no-window-manager"_s, u"--no-compositor"_s}};
    x11::X11Session session;
    x11::X11DesktopKeyboard keyboard{session};
};

} // namespace

TEST_F(DesktopKeyboards, GoByTheLetterOnALatinLayout) {
    setLayouts(u"fr"_s);
    EXPECT_EQ(keyCode(qPlace, XK_a, 0), carbonA);
    EXPECT_EQ(keyCode(qPlace, XK_A, 0), carbonA);
    EXPECT_EQ(keyCode(qPlace, XK_eacute, 0), std::nullopt);
}

TEST_F(DesktopKeyboards, GoByThePlaceOnALayoutOfAnotherAlphabet) {
    setLayouts(u"ru"_s);
    EXPECT_EQ(keyCode(qPlace, XK_Cyrillic_shorti, 0), carbonQ);
    EXPECT_EQ(keyCode(slashPlace, XK_period, 0), carbonSlash);
}

TEST_F(DesktopKeyboards, GoByTheLayoutThatIsTypedWith) {
    setLayouts(u"us,ru"_s);
    EXPECT_EQ(keyCode(slashPlace, XK_period, 0), carbonPeriod);
    EXPECT_EQ(keyCode(slashPlace, XK_period, 1), carbonSlash);
    setLayouts(u"ru,us"_s);
    EXPECT_EQ(keyCode(slashPlace, XK_period, 0), carbonSlash);
    EXPECT_EQ(keyCode(slashPlace, XK_period, 1), carbonPeriod);
}

TEST(DesktopKeyboardWithoutADisplay, GoesByTheCharacter) {
    qputenv("DISPLAY", ":7777");
    x11::X11Session session;
    x11::X11DesktopKeyboard keyboard(session);
    EXPECT_EQ(keyboard.keyCode({.scanCode = 61, .virtualKey = XK_period}), 47);
    EXPECT_EQ(keyboard.keyCode({.scanCode = 24, .virtualKey = XK_Cyrillic_shorti}), 12);
}

} // namespace orvane::test
