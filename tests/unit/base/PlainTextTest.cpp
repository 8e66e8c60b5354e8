#include "OrvaneCore/base/PlainText.h"

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// Every character of the basic plane that is no text.
QString allControls() {
    QString controls;
    const auto add = [&controls](char16_t first, char16_t last) {
        for (char32_t code = first; code <= last; ++code)
            controls += QChar(static_cast<char16_t>(code));
    };
    add(0x00, 0x1f);
    add(0x7f, 0x9f);
    add(0x061c, 0x061c);
    add(0x200e, 0x200f);
    add(0x2028, 0x202e);
    add(0x2066, 0x2069);
    return controls;
}

} // namespace

TEST(PlainText, LosesEveryControlCharacterAndNoOther) {
    const QString controls = allControls();
    for (char32_t code = 0; code < 0x10000; ++code) {
        const QChar character(static_cast<char16_t>(code));
        const QString text = u"a"_s + character + u"b"_s;
        const bool isControl = controls.contains(character);
        EXPECT_EQ(withoutControls(text), isControl ? u"ab"_s : text) << std::hex << uint32_t(code);
        EXPECT_EQ(onOneLine(text), isControl ? u"a b"_s : text) << std::hex << uint32_t(code);
    }
}

TEST(PlainText, KeepsWhatSpellsWords) {
    // Joiners are part of Persian words and of pictures made of several; a soft hyphen shows nothing.
    for (const QString& text : {u"می‌خواهم"_s, u"👩‍💻 — 日本 ­"_s, QString()}) {
        EXPECT_EQ(withoutControls(text), text);
        EXPECT_EQ(onOneLine(text), text);
    }
}

TEST(PlainText, OfAPasteThatIsNoneIsHarmless) {
    EXPECT_EQ(withoutControls(u"\x1b[201~\nrm -rf ~\r"_s), u"[201~rm -rf ~"_s);
    EXPECT_EQ(withoutControls(u"\u202egnp.exe"_s), u"gnp.exe"_s);
}

} // namespace orvane
