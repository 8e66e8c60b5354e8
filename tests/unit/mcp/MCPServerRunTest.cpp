#include "OrvaneCore/mcp/MCPServer.h"

#include "OrvaneCore/mcp/LineReader.h"
#include "tests/unit/mcp/FakeStreams.h"
#include "tests/unit/mcp/FakeToolCallHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr qsizetype mebibyte = qsizetype{1024} * 1024;

std::string pong(int id) {
    return "{\"id\":" + std::to_string(id) + ",\"jsonrpc\":\"2.0\",\"result\":{}}\n";
}

QByteArray ping(int id) {
    return "{\"id\":" + QByteArray::number(id) + ",\"method\":\"ping\"}";
}

auto isParseFailure() {
    return AllOf(HasSubstr("\"code\":-32603"), EndsWith("\"id\":null,\"jsonrpc\":\"2.0\"}\n"));
}

class MCPServerRun : public testing::Test {
protected:
    std::vector<std::string> writesFor(FakeStreams streams) const {
        m_server.run(streams);
        return streams.writes();
    }
    std::vector<std::string> writesFor(const QByteArray& input) const {
        return writesFor(FakeStreams({input}));
    }

    FakeToolCallHandler m_handler;
    MCPServer m_server{m_handler};
};

TEST_F(MCPServerRun, WritesEachReplyAndItsNewlineInOneCall) {
    EXPECT_THAT(writesFor(ping(1) + '\n' + ping(2) + '\n'), ElementsAre(pong(1), pong(2)));
}

TEST_F(MCPServerRun, EndsWithTheInputWithoutWritingAnything) {
    EXPECT_THAT(writesFor(QByteArray()), IsEmpty());
}

TEST_F(MCPServerRun, ServesTheLastLineWithoutANewline) {
    EXPECT_THAT(writesFor(ping(1) + '\n' + ping(2)), ElementsAre(pong(1), pong(2)));
}

TEST_F(MCPServerRun, TakesEitherLineEnd) {
    EXPECT_THAT(writesFor(ping(1) + "\r\n" + ping(2) + "\n"), ElementsAre(pong(1), pong(2)));
}

TEST_F(MCPServerRun, SkipsEmptyLinesSilently) {
    EXPECT_THAT(writesFor("\n\r\n\n" + ping(1) + "\n\n\r\n"), ElementsAre(pong(1)));
}

TEST_F(MCPServerRun, ABlankLineIsAParseFailure) {
    EXPECT_THAT(writesFor(" \n\t\r\n"), ElementsAre(isParseFailure(), isParseFailure()));
}

TEST_F(MCPServerRun, WritesNothingForANotification) {
    EXPECT_THAT(writesFor("{\"method\":\"notifications/initialized\"}\n" + ping(1) + '\n'),
                ElementsAre(pong(1)));
}

TEST_F(MCPServerRun, AnswersOtherNotificationsWithAnError) {
    EXPECT_THAT(
        writesFor("{\"method\":\"notifications/other\"}\n"),
        ElementsAre(
            R"({"error":{"code":-32601,"message":"Method not found: notifications/other"},"id":null,"jsonrpc":"2.0"})"
            "\n"));
}

class MCPServerRunBadLine : public MCPServerRun, public testing::WithParamInterface<QByteArray> {};

TEST_P(MCPServerRunBadLine, IsAnsweredAndTheNextLineIsServed) {
    EXPECT_THAT(writesFor(ping(1) + '\n' + GetParam() + '\n' + ping(2) + '\n'),
                ElementsAre(pong(1), isParseFailure(), pong(2)));
}

INSTANTIATE_TEST_SUITE_P(All, MCPServerRunBadLine,
                         testing::Values("not json", " ", "7", "{\"id\":1,\"method\":\"ping\"",
                                         QByteArray(100'000, '['), QByteArray("{\"a\":").repeated(100'000),
                                         QByteArray(4 * mebibyte, 'x'), QByteArray(4 * mebibyte, '\0'),
                                         QByteArray(4 * mebibyte, '"'), QByteArray("\0", 1),
                                         QByteArray("{\"a\":\"\0\",\"method\":\"ping\"}", 25),
                                         "{\"a\":\"\xff\",\"method\":\"ping\"}",
                                         "{\"\xc3\":1,\"method\":\"ping\"}", "\xfe\xff"));

TEST_F(MCPServerRun, WritesAReplyBeforeItWaitsForTheNextLine) {
    FakeStreams streams({ping(1) + '\n', ping(2) + '\n'});
    m_server.run(streams);
    EXPECT_EQ(streams.events(), "read write read write read ");
}

TEST_F(MCPServerRun, HandlesTheLinesOfOneReadInOrder) {
    FakeStreams streams({"{\"id\":1,\"method\":\"tools/call\",\"params\":{\"name\":\"a\"}}\n"
                         "{\"id\":2,\"method\":\"tools/call\",\"params\":{\"name\":\"b\"}}\n"});
    std::vector<size_t> writesBefore;
    m_handler.answer = [&](const QString& name, const QJsonObject&) {
        writesBefore.push_back(streams.writes().size());
        return QJsonObject{{u"of"_s, name}};
    };
    m_server.run(streams);
    EXPECT_THAT(writesBefore, ElementsAre(0, 1));
    EXPECT_THAT(streams.writes(), ElementsAre("{\"id\":1,\"jsonrpc\":\"2.0\",\"result\":{\"of\":\"a\"}}\n",
                                              "{\"id\":2,\"jsonrpc\":\"2.0\",\"result\":{\"of\":\"b\"}}\n"));
}

TEST_F(MCPServerRun, EndsWhenNobodyReadsTheReplies) {
    FakeStreams streams({"{\"id\":1,\"method\":\"tools/call\"}\n", "{\"id\":2,\"method\":\"tools/call\"}\n",
                         "{\"id\":3,\"method\":\"tools/call\"}\n"});
    streams.writesBeforeReaderLeaves = 1;
    m_server.run(streams);
    EXPECT_EQ(streams.events(), "read write read write ");
    EXPECT_THAT(m_handler.calls(), SizeIs(2));
}

TEST_F(MCPServerRun, AReplyThatIsNoJsonIsLoggedAndLeftUnanswered) {
    m_handler.answer = [](const QString&, const QJsonObject&) {
        return QJsonObject{{u"size"_s, std::numeric_limits<double>::infinity()}};
    };
    testing::internal::CaptureStderr();
    const std::vector<std::string> writes =
        writesFor("{\"id\":1,\"method\":\"tools/call\"}\n" + ping(2) + '\n');
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to serialize response: a number in it is not finite\n");
    EXPECT_THAT(writes, ElementsAre(pong(2)));
}

TEST_F(MCPServerRun, LogsNothingForBadInput) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    writesFor("not json\n[1]\n{\"method\":\"x\"}\n" + ping(1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(MCPServerRun, EveryCutOfTheInputGivesTheSameReplies) {
    const QByteArray input = ping(1) + "\r\n\n \n" + ping(2) + "\nnot json\n" + ping(3);
    const auto expected = ElementsAre(pong(1), isParseFailure(), pong(2), isParseFailure(), pong(3));
    for (qsizetype first = 1; first < input.size(); ++first) {
        EXPECT_THAT(writesFor(FakeStreams({input.first(first), input.sliced(first)})), expected) << first;
        EXPECT_THAT(writesFor(FakeStreams::cut(input, first)), expected) << first;
    }
}

TEST_F(MCPServerRun, ServesALineOf64MebibytesAndWhatFollows) {
    constexpr qsizetype size = 64 * mebibyte;
    m_handler.answer = [](const QString&, const QJsonObject& arguments) {
        return QJsonObject{{u"bytes"_s, arguments[u"data"_s].toString().size()}};
    };
    const QByteArray line =
        "{\"id\":1,\"method\":\"tools/call\",\"params\":{\"name\":\"x\",\"arguments\":{\"data\":\"" +
        QByteArray(size, 'A') + "\"}}}\n";
    EXPECT_THAT(writesFor(FakeStreams({line + ping(2) + '\n'})),
                ElementsAre("{\"id\":1,\"jsonrpc\":\"2.0\",\"result\":{\"bytes\":67108864}}\n", pong(2)));
}

TEST_F(MCPServerRun, WritesAReplyOfManyMebibytesInOneCall) {
    const QString image(16 * mebibyte, u'A');
    m_handler.answer = [&image](const QString&, const QJsonObject&) {
        return QJsonObject{{u"data"_s, image}};
    };
    EXPECT_THAT(writesFor("{\"id\":1,\"method\":\"tools/call\"}\n"),
                ElementsAre("{\"id\":1,\"jsonrpc\":\"2.0\",\"result\":{\"data\":\"" +
                            std::string(16 * mebibyte, 'A') + "\"}}\n"));
}

} // namespace
} // namespace orvane
