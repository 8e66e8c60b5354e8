#include "OrvaneCore/platform/Shortcut.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

TEST(Shortcut, IsStoredAsAnObjectOfTwoIntegers) {
    EXPECT_EQ((Shortcut{35, 4352}.toJson()), uR"({"carbonKeyCode":35,"carbonModifiers":4352})"_s);
    EXPECT_EQ((Shortcut{0, 0}.toJson()), uR"({"carbonKeyCode":0,"carbonModifiers":0})"_s);
}

TEST(Shortcut, IsReadBack) {
    const Shortcut shortcut{126, Shortcut::option | Shortcut::shift};
    EXPECT_EQ(Shortcut::fromJson(shortcut.toJson()), shortcut);
    constexpr Shortcut bareA{0, 0};
    EXPECT_EQ(Shortcut::fromJson(bareA.toJson()), bareA);
}

TEST(Shortcut, IsReadWhateverTheLayoutOfTheText) {
    EXPECT_EQ(Shortcut::fromJson(u" {\n \"carbonModifiers\" : 4352.0, \"carbonKeyCode\": 15 }\n"),
              (Shortcut{15, 4352}));
}

TEST(Shortcut, IsReadBesideMembersOfANewerVersion) {
    EXPECT_EQ(Shortcut::fromJson(uR"({"carbonKeyCode":4,"carbonModifiers":256,"side":"left"})"),
              (Shortcut{4, 256}));
}

TEST(Shortcut, KeepsNumbersThatNoKeyboardHas) {
    EXPECT_EQ(Shortcut::fromJson(uR"({"carbonKeyCode":9999,"carbonModifiers":1})"), (Shortcut{9999, 1}));
    EXPECT_EQ(Shortcut::fromJson(uR"({"carbonKeyCode":2147483647,"carbonModifiers":2147483647})"),
              (Shortcut{2147483647, 2147483647}));
}

class DamagedShortcut : public testing::TestWithParam<const char16_t*> {};

TEST_P(DamagedShortcut, IsNone) {
    EXPECT_EQ(Shortcut::fromJson(QStringView(GetParam())), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, DamagedShortcut,
                         testing::Values(u"", u"Super+P", u"{", u"[35, 4352]", u"35", u"null", u"{}",
                                         uR"({"carbonKeyCode":35})", uR"({"carbonModifiers":4352})",
                                         uR"({"carbonKeyCode":"35","carbonModifiers":4352})",
                                         uR"({"carbonKeyCode":35,"carbonModifiers":true})",
                                         uR"({"carbonKeyCode":35.5,"carbonModifiers":4352})",
                                         uR"({"carbonKeyCode":-1,"carbonModifiers":4352})",
                                         uR"({"carbonKeyCode":35,"carbonModifiers":-4352})",
                                         uR"({"carbonKeyCode":2147483648,"carbonModifiers":4352})",
                                         uR"({"carbonKeyCode":1e300,"carbonModifiers":4352})",
                                         uR"({"carbonkeycode":35,"carbonmodifiers":4352})",
                                         uR"({"carbonKeyCode":35,"carbonModifiers":4352} x)"));

} // namespace orvane::test
