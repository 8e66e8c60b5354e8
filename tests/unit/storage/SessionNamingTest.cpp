#include "OrvaneCore/storage/SessionNaming.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

QString named(const char* markdown, const char* name) {
    return session_naming::setName(QString::fromUtf8(markdown), QString::fromUtf8(name));
}

std::optional<QString> nameIn(const char* markdown) {
    return session_naming::parseName(QString::fromUtf8(markdown));
}

TEST(SessionNaming, ReplacesOnlyTheFirstNameLine) {
    EXPECT_EQ(named("# T\n**App:** A\n**Name:** one\n**Name:** two\n", "new"),
              QStringLiteral("# T\n**App:** A\n**Name:** new\n**Name:** two\n"));
}

TEST(SessionNaming, PutsANewNameAheadOfTheFirstAppLine) {
    EXPECT_EQ(named("# T\n\nText\n**App:** A\n**App:** B", "n"),
              QStringLiteral("# T\n\nText\n**Name:** n\n**App:** A\n**App:** B"));
}

TEST(SessionNaming, PutsANewNameAheadOfAnAppLineThatComesFirst) {
    EXPECT_EQ(named("**App:** A", "n"), QStringLiteral("**Name:** n\n**App:** A"));
}

TEST(SessionNaming, PutsANewNameUnderTheTitleWithoutAnAppLine) {
    EXPECT_EQ(named("# T\nText\n", "n"), QStringLiteral("# T\n**Name:** n\nText\n"));
    EXPECT_EQ(named("# T\n", "n"), QStringLiteral("# T\n**Name:** n\n"));
}

TEST(SessionNaming, AppendsToAOneLineText) {
    EXPECT_EQ(named("# T", "n"), QStringLiteral("# T\n**Name:** n"));
    EXPECT_EQ(named("", "n"), QStringLiteral("\n**Name:** n"));
}

TEST(SessionNaming, LooksForPrefixesAtTheBeginningOfALineOnly) {
    EXPECT_EQ(named("# T\n - **Name:** x\n - **App:** y", "n"),
              QStringLiteral("# T\n**Name:** n\n - **Name:** x\n - **App:** y"));
    EXPECT_EQ(nameIn("# T\n **Name:** x"), std::nullopt);
}

TEST(SessionNaming, TakesTheNameAsItIs) {
    EXPECT_EQ(named("# T", "  a * b \t"), QStringLiteral("# T\n**Name:**   a * b \t"));
    EXPECT_EQ(named("**Name:** old", ""), QStringLiteral("**Name:** "));
    EXPECT_EQ(named("# T", "Ünï 日本 %1 \\1"), QStringLiteral("# T\n**Name:** Ünï 日本 %1 \\1"));
}

TEST(SessionNaming, LeavesOtherLineBreaksAlone) {
    EXPECT_EQ(named("# T\r\n**App:** A\r\n", "n"), QStringLiteral("# T\r\n**Name:** n\n**App:** A\r\n"));
}

TEST(SessionNaming, ReadsTheNameWithoutBlanksAroundIt) {
    EXPECT_EQ(nameIn("# T\n**Name:**  Bug hunt  "), QStringLiteral("Bug hunt"));
    EXPECT_EQ(nameIn("**Name:**\tBug\thunt\t \n"), QStringLiteral("Bug\thunt"));
    EXPECT_EQ(nameIn("**Name:**tight"), QStringLiteral("tight"));
    EXPECT_EQ(nameIn("**Name:** \xC2\xA0\xE3\x80\x80名前\xE2\x80\x83"), QStringLiteral("名前"));
}

TEST(SessionNaming, KeepsACarriageReturnBecauseItIsALineBreak) {
    EXPECT_EQ(nameIn("**Name:** Bug\r\nmore"), QStringLiteral("Bug\r"));
}

TEST(SessionNaming, AnEmptyNameLineIsNoName) {
    EXPECT_EQ(nameIn("**Name:**   "), std::nullopt);
    EXPECT_EQ(nameIn("**Name:**"), std::nullopt);
    EXPECT_EQ(nameIn("**Name:** \t\n**Name:** later"), std::nullopt);
}

TEST(SessionNaming, ATextWithoutANameLineHasNoName) {
    EXPECT_EQ(nameIn(""), std::nullopt);
    EXPECT_EQ(nameIn("# T\n**App:** A"), std::nullopt);
}

TEST(SessionNaming, ReadsBackWhatItWrote) {
    const QString text = named("# T\n**App:** A\n", "Bug hunt");
    EXPECT_EQ(session_naming::parseName(text), QStringLiteral("Bug hunt"));
    EXPECT_EQ(session_naming::parseName(session_naming::setName(text, QStringLiteral("Other"))),
              QStringLiteral("Other"));
}

} // namespace
} // namespace orvane
