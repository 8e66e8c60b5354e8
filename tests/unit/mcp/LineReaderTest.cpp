#include "OrvaneCore/mcp/LineReader.h"

#include "tests/unit/mcp/FakeStreams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr qsizetype mebibyte = qsizetype{1024} * 1024;

std::vector<std::string> linesOf(FakeStreams streams) {
    LineReader reader(streams);
    std::vector<std::string> lines;
    while (const auto line = reader.next())
        lines.push_back(line->toByteArray().toStdString());
    return lines;
}

std::vector<std::string> linesOf(const QByteArray& input) {
    return linesOf(FakeStreams({input}));
}

TEST(LineReader, StripsEitherLineEnd) {
    EXPECT_THAT(linesOf("unix\nother\r\n"), ElementsAre("unix", "other"));
}

TEST(LineReader, StripsOneCarriageReturnOnlyBeforeTheNewline) {
    EXPECT_THAT(linesOf("a\r\r\nb\rc\n\rd\n"), ElementsAre("a\r", "b\rc", "\rd"));
}

TEST(LineReader, GivesEmptyAndBlankLinesAsTheyAre) {
    EXPECT_THAT(linesOf("\n\r\n \n\n"), ElementsAre("", "", " ", ""));
}

TEST(LineReader, GivesTheLastLineWithoutANewline) {
    EXPECT_THAT(linesOf("a\nb"), ElementsAre("a", "b"));
    EXPECT_THAT(linesOf("a\nb\r"), ElementsAre("a", "b\r"));
}

TEST(LineReader, EmptyInputHasNoLine) {
    EXPECT_THAT(linesOf(QByteArray()), IsEmpty());
}

TEST(LineReader, KeepsNulBytes) {
    EXPECT_THAT(linesOf(QByteArray("a\0b\n", 4)), ElementsAre(std::string("a\0b", 3)));
}

TEST(LineReader, SaysTheEndEachTimeItIsAsked) {
    FakeStreams streams({"a"});
    LineReader reader(streams);
    EXPECT_TRUE(reader.next().has_value());
    EXPECT_FALSE(reader.next().has_value());
    EXPECT_FALSE(reader.next().has_value());
}

TEST(LineReader, DoesNotWaitForMoreThanOneLine) {
    FakeStreams streams({"a\nb\n", "c\n"});
    LineReader reader(streams);
    reader.next();
    reader.next();
    EXPECT_EQ(streams.events(), "read ");
}

TEST(LineReader, EveryCutOfTheInputGivesTheSameLines) {
    const QByteArray input = "{\"a\":1}\r\n\n \nlonger line\r\r\n\r\nx\nlast";
    const std::vector<std::string> expected = {"{\"a\":1}", "", " ", "longer line\r", "", "x", "last"};
    for (qsizetype first = 1; first < input.size(); ++first) {
        EXPECT_EQ(linesOf(FakeStreams({input.first(first), input.sliced(first)})), expected) << first;
        EXPECT_EQ(linesOf(FakeStreams::cut(input, first)), expected) << first;
    }
}

TEST(LineReader, LinesAroundTheBlockSizeComeOutWhole) {
    for (qsizetype size = LineReader::blockBytes - 3; size <= LineReader::blockBytes + 3; ++size) {
        const QByteArray line(size, 'x');
        const std::string same = line.toStdString();
        EXPECT_EQ(linesOf(line + "\r\ny\n" + line + '\n' + line),
                  (std::vector<std::string>{same, "y", same, same}))
            << size;
    }
}

TEST(LineReader, ManyShortLinesCrossManyBlocks) {
    QByteArray input;
    std::vector<std::string> expected;
    for (int number = 0; number < 50'000; ++number) {
        expected.push_back(std::to_string(number));
        input += QByteArray::number(number) + '\n';
    }
    EXPECT_EQ(linesOf(input), expected);
}

// A reader that searches or moves what it already holds again at each read does not end within the time
// limit.
TEST(LineReader, AHugeLineInSmallPiecesTakesTimeInProportionToItsLength) {
    QByteArray input(64 * mebibyte, 'x');
    input += "\nnext\n";
    FakeStreams streams = FakeStreams::cut(input, 1024);
    LineReader reader(streams);

    const auto line = reader.next();
    ASSERT_TRUE(line.has_value());
    EXPECT_EQ(line->size(), 64 * mebibyte);
    EXPECT_EQ(line->count('x'), 64 * mebibyte);
    EXPECT_EQ(reader.next(), QByteArrayView("next"));
}

TEST(LineReader, GivesTheMemoryOfAHugeLineBack) {
    QByteArray input(8 * mebibyte, 'x');
    input += "\nnext\nrest";
    FakeStreams streams({input, " of it\n"});
    LineReader reader(streams);

    ASSERT_TRUE(reader.next().has_value());
    EXPECT_GT(reader.bufferBytes(), 8 * mebibyte);
    EXPECT_EQ(reader.next(), QByteArrayView("next"));
    EXPECT_EQ(reader.next(), QByteArrayView("rest of it"));
    EXPECT_LE(reader.bufferBytes(), 4 * LineReader::blockBytes);
}

} // namespace
} // namespace orvane
