// Hotkeys on keyboards of other layouts, and on one whose layout changes.
#include "tests/desktop/HotkeysFixture.h"

namespace orvane::test {

namespace {

class HotkeyLayouts : public Hotkeys {};

} // namespace

TEST_F(HotkeyLayouts, FollowALayoutThatMovesALetter) {
    setLayout({u"fr"_s});
    add(mode);
    pressChord(keyA);
    EXPECT_EQ(firings(mode), 0);
    pressChord(keyQ);
    EXPECT_EQ(firings(mode), 1);
}

TEST_F(HotkeyLayouts, FollowALayoutThatChangesMeanwhile) {
    add(mode);
    add(overlay);
    pressChord(keyA);
    EXPECT_EQ(firings(mode), 1);
    OtherClient other;
    ASSERT_TRUE(other.grab(keyX, superControl));
    setLayout({u"fr"_s});
    // The old place is free again once the new one is held.
    EXPECT_TRUE(soon([&] { return other.grab(keyA, superControl); }));
    other.ungrab(keyA, superControl);
    pressChord(keyQ);
    EXPECT_EQ(firings(mode), 2);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 1);
    setLayout({u"us"_s});
    EXPECT_TRUE(soon([&] { return other.grab(keyQ, superControl); }));
    pressChord(keyA);
    EXPECT_EQ(firings(mode), 3);
}

TEST_F(HotkeyLayouts, WorkOnAGermanKeyboard) {
    setLayout({u"de"_s});
    const Shortcut zed{6, commandControl};
    add(overlay);
    add(zed);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 1);
    // Where a US keyboard has Y.
    pressChord(u"29"_s);
    EXPECT_EQ(firings(zed), 1);
}

TEST_F(HotkeyLayouts, KeepTheirPlacesOnAKeyboardOfAnotherAlphabet) {
    setLayout({u"ru"_s});
    add(overlay);
    add(mode);
    pressChord(keyP);
    pressChord(keyA);
    EXPECT_EQ(firings(overlay), 1);
    EXPECT_EQ(firings(mode), 1);
}

TEST_F(HotkeyLayouts, WorkInEachOfTwoLayouts) {
    OtherClient other;
    for (const QString& layouts : {u"us,ru"_s, u"ru,us"_s}) {
        hotkeys = std::make_unique<x11::X11Hotkeys>();
        fired.clear();
        setLayout({layouts});
        const auto id = hotkeys->add(
            overlay, {.released = [&] { ++fired[overlay.toJson()]; }, .stateChanged = [](State) {}});
        ASSERT_TRUE(soon([&] { return hotkeys->state(id) == State::active; }));
        int expected = 0;
        for (const std::uint8_t layout : {std::uint8_t(0), std::uint8_t(1), std::uint8_t(0)}) {
            other.lockLayout(layout);
            pressChord(keyP);
            ++expected;
            EXPECT_TRUE(soon([&] { return fired[overlay.toJson()] == expected; }))
                << layouts.toStdString() << " " << int(layout);
        }
    }
}

TEST_F(HotkeyLayouts, FindsNumLockAndScrollLockWhereTheMappingPutsThem) {
    // The server takes a change of the modifiers only while their keys are up.
    runCommand(u"xmodmap"_s, {u"-e"_s, u"remove mod2 = Num_Lock"_s, u"-e"_s, u"add mod3 = Num_Lock"_s,
                              u"-e"_s, u"add mod5 = Scroll_Lock"_s});
    add(overlay);
    OtherClient other;
    xdotool({u"key"_s, numLockKey});
    ASSERT_EQ(other.locks() & (XCB_MOD_MASK_2 | XCB_MOD_MASK_3), XCB_MOD_MASK_3);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 1);
    EXPECT_FALSE(other.grab(keyP, superControl | XCB_MOD_MASK_3 | XCB_MOD_MASK_5));
}

} // namespace orvane::test
