#include "OrvanePlatform/x11/Properties.h"

#include <gtest/gtest.h>

namespace orvane::x11 {

TEST(PropertyText, IsUtf8WhereItCanBe) {
    EXPECT_EQ(utf8OrLatin1("Gl\xc3\xbc"
                           "ck \xe6\x97\xa5"),
              u"Glück 日");
    EXPECT_EQ(utf8OrLatin1("plain"), u"plain");
    EXPECT_EQ(utf8OrLatin1(""), u"");
}

TEST(PropertyText, IsLatin1Else) {
    EXPECT_EQ(utf8OrLatin1("Gl\xfc"
                           "ck"),
              u"Glück");
    // A letter that is cut off, one that is longer than it need be, half a surrogate pair.
    EXPECT_EQ(utf8OrLatin1("caf\xc3"), u"cafÃ");
    EXPECT_EQ(utf8OrLatin1("\xc0\xaf"), u"À¯");
    EXPECT_EQ(utf8OrLatin1("\xed\xa0\x80"), u"í\u00a0\u0080");
}

} // namespace orvane::x11
