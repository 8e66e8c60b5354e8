#include "OrvaneCore/mcp/MCPServer.h"

#include "OrvaneCore/base/MessageCodec.h"
#include "OrvaneCore/base/MessageError.h"
#include "OrvaneCore/mcp/ToolCatalogue.h"
#include "tests/unit/mcp/FakeToolCallHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <thread>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class MCPServerTest : public testing::Test {
protected:
    /// The reply as it goes out, or "nothing".
    std::string reply(const QByteArray& line) const {
        const std::optional<MCPReply> message = m_server.process(line);
        return message ? message->serialised().toStdString() : "nothing";
    }

    FakeToolCallHandler m_handler;
    MCPServer m_server{m_handler};
};

TEST_F(MCPServerTest, AnswersPing) {
    EXPECT_EQ(reply(R"({"jsonrpc":"2.0","id":1,"method":"ping"})"),
              R"({"id":1,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerTest, NeitherReadsNorChecksTheRequestsVersion) {
    EXPECT_EQ(reply(R"({"jsonrpc":7,"id":1,"method":"ping"})"), R"({"id":1,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(reply(R"({"id":1,"method":"ping"})"), R"({"id":1,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerTest, IntroducesItself) {
    const MCPReply message = *m_server.handleMessage(R"({"id":1,"method":"initialize"})");
    EXPECT_EQ(message.outcome.keys(), QStringList{u"result"_s});
    QJsonObject result = message.outcome[u"result"_s].toObject();
    EXPECT_EQ(result.take(u"instructions"_s).toString(), tool_catalogue::instructions());
    EXPECT_EQ(message_codec::serialise(result).toStdString(),
              R"({"capabilities":{"tools":{"listChanged":false}},"protocolVersion":"2024-11-05",)"
              R"("serverInfo":{"name":"orvane","version":"0.1.0"}})");
}

TEST_F(MCPServerTest, IntroducesItselfTheSameWhateverTheClientWants) {
    EXPECT_EQ(reply(R"({"id":1,"method":"initialize"})"),
              reply(R"({"id":1,"method":"initialize","params":{"protocolVersion":"2099-01-01"}})"));
    EXPECT_EQ(reply(R"({"id":1,"method":"initialize"})"),
              reply(R"({"id":1,"method":"initialize","params":[1]})"));
}

TEST_F(MCPServerTest, ListsTheCatalogueWithoutHavingBeenInitialized) {
    const MCPReply message = *m_server.handleMessage(R"({"id":1,"method":"tools/list"})");
    EXPECT_EQ(message.outcome[u"result"_s].toObject().keys(), QStringList{u"tools"_s});
    EXPECT_EQ(message.outcome[u"result"_s][u"tools"_s].toArray(), tool_catalogue::toolDefinitions());
}

TEST_F(MCPServerTest, HandsAToolCallOnAndItsResultBackUnchanged) {
    m_handler.answer = [](const QString& name, const QJsonObject& arguments) {
        return QJsonObject{{u"content"_s, QJsonArray{arguments}}, {u"isError"_s, true}, {u"of"_s, name}};
    };
    EXPECT_EQ(
        reply(
            R"({"id":2,"method":"tools/call","params":{"name":"read_frame","arguments":{"b":[1],"a":{}}}})"),
        R"({"id":2,"jsonrpc":"2.0","result":{"content":[{"a":{},"b":[1]}],"isError":true,"of":"read_frame"}})");
}

struct LooseParams {
    QByteArray params;
    FakeToolCallHandler::Call call;
};

class MCPServerLooseParams : public MCPServerTest, public testing::WithParamInterface<LooseParams> {};

TEST_P(MCPServerLooseParams, ReachTheHandlerAsEmptyValues) {
    m_handler.answer = [](const QString& name, const QJsonObject&) {
        const QJsonObject item{{u"type"_s, u"text"_s}, {u"text"_s, u"Error: Unknown tool: "_s + name}};
        return QJsonObject{{u"content"_s, QJsonArray{item}}, {u"isError"_s, true}};
    };
    const std::string answer = reply("{\"id\":2,\"method\":\"tools/call\"" + GetParam().params + '}');
    EXPECT_EQ(answer, R"({"id":2,"jsonrpc":"2.0","result":{"content":[{"text":"Error: Unknown tool: )" +
                          GetParam().call.name.toStdString() + R"(","type":"text"}],"isError":true}})");
    EXPECT_EQ(m_handler.calls(), std::vector{GetParam().call});
}

INSTANTIATE_TEST_SUITE_P(
    All, MCPServerLooseParams,
    testing::Values(LooseParams{",\"params\":{}", {}}, LooseParams{"", {}},
                    LooseParams{",\"params\":null", {}}, LooseParams{",\"params\":[1]", {}},
                    LooseParams{",\"params\":\"x\"", {}},
                    LooseParams{",\"params\":{\"name\":7,\"arguments\":[1]}", {}},
                    LooseParams{",\"params\":{\"name\":null,\"arguments\":{\"a\":1}}",
                                {u""_s, {{u"a"_s, 1}}}},
                    LooseParams{",\"params\":{\"name\":\"x\",\"arguments\":\"y\"}", {u"x"_s, {}}},
                    LooseParams{",\"params\":{\"name\":\"x\"}", {u"x"_s, {}}}));

class MCPServerId : public MCPServerTest, public testing::WithParamInterface<std::string> {};

TEST_P(MCPServerId, ComesBackAsItCame) {
    const std::string id = GetParam();
    EXPECT_EQ(reply(QByteArray::fromStdString(R"({"method":"ping","id":)" + id + "}")),
              R"({"id":)" + id + R"(,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(reply(QByteArray::fromStdString(R"({"method":"x","id":)" + id + "}")),
              R"({"error":{"code":-32601,"message":"Method not found: x"},"id":)" + id +
                  R"(,"jsonrpc":"2.0"})");
}

INSTANTIATE_TEST_SUITE_P(All, MCPServerId,
                         testing::Values("0", "1", "-1", "9223372036854775807", "-9223372036854775808",
                                         "9007199254740993", "1.5", "0.1", "1.0", "1e3", "1E+03", "-0",
                                         "-0.0", "0.10", "12345678901234567890123", "9223372036854775808",
                                         "18446744073709551616", "0.1234567890123456789012", "1e400",
                                         "-1e-400", std::string(400, '9'), R"("x")", R"("")", R"("\u0000")",
                                         "\"\xc3\xa9\xf0\x9f\x98\x80\"", "null", "true", "false", "[]",
                                         R"([1,"a"])", "{}", R"({"a":{"b":[null]}})"));

TEST_F(MCPServerTest, TheIdIsThatOfTheRequestItself) {
    EXPECT_EQ(reply(R"({"params":{"id":1,"x":[{"id":2}]},"method":"ping","a":"\"id\":3","id":4.0})"),
              R"({"id":4.0,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(reply(R"({"params":{"id":1},"method":"ping"})"), R"({"id":null,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerTest, AMissingIdBecomesNull) {
    EXPECT_EQ(reply(R"({"method":"ping"})"), R"({"id":null,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(reply(R"({"method":"tools/call"})"), R"({"id":null,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerTest, UnknownMethodsAreNamed) {
    EXPECT_EQ(reply(R"({"id":"x","method":"nope"})"),
              R"({"error":{"code":-32601,"message":"Method not found: nope"},"id":"x","jsonrpc":"2.0"})");
    EXPECT_EQ(reply(R"({"id":1,"method":""})"),
              R"({"error":{"code":-32601,"message":"Method not found: "},"id":1,"jsonrpc":"2.0"})");
    EXPECT_EQ(reply(R"({"id":1,"method":"Ping"})"),
              R"({"error":{"code":-32601,"message":"Method not found: Ping"},"id":1,"jsonrpc":"2.0"})");
    EXPECT_EQ(reply(R"({"id":1,"method":"ping "})"),
              R"({"error":{"code":-32601,"message":"Method not found: ping "},"id":1,"jsonrpc":"2.0"})");
}

TEST_F(MCPServerTest, OnlyTheInitializedNotificationGoesUnanswered) {
    EXPECT_EQ(reply(R"({"method":"notifications/initialized"})"), "nothing");
    EXPECT_EQ(reply(R"({"id":7,"method":"notifications/initialized","params":{}})"), "nothing");
    EXPECT_EQ(
        reply(R"({"method":"notifications/cancelled"})"),
        R"({"error":{"code":-32601,"message":"Method not found: notifications/cancelled"},"id":null,"jsonrpc":"2.0"})");
}

class MCPServerInvalidRequest : public MCPServerTest, public testing::WithParamInterface<QByteArray> {};

TEST_P(MCPServerInvalidRequest, IsAnsweredWithoutLookingAtTheId) {
    EXPECT_EQ(reply(GetParam()),
              R"({"error":{"code":-32600,"message":"Invalid request"},"id":null,"jsonrpc":"2.0"})");
    EXPECT_THAT(m_handler.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, MCPServerInvalidRequest,
                         testing::Values("[1,2]", "[]", "{}", "{\"id\":7}", "{\"id\":7,\"method\":1}",
                                         "{\"id\":7,\"method\":null}", "{\"id\":7,\"method\":[\"ping\"]}",
                                         "{\"id\":7,\"Method\":\"ping\"}",
                                         "[{\"id\":1,\"method\":\"ping\"}]"));

class MCPServerParseFailure : public MCPServerTest, public testing::WithParamInterface<QByteArray> {};

TEST_P(MCPServerParseFailure, IsThrownOrAnsweredByTheDoorThatWasTaken) {
    EXPECT_THROW(m_server.handleMessage(GetParam()), MessageError);

    const MCPReply message = *m_server.process(GetParam());
    EXPECT_EQ(message.id, "null");
    EXPECT_EQ(message.outcome.keys(), QStringList{u"error"_s});
    EXPECT_EQ(message.outcome[u"error"_s].toObject().keys(), (QStringList{u"code"_s, u"message"_s}));
    EXPECT_EQ(message.outcome[u"error"_s][u"code"_s], -32603);
    EXPECT_FALSE(message.outcome[u"error"_s][u"message"_s].toString().isEmpty());
    EXPECT_THAT(m_handler.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, MCPServerParseFailure,
    testing::Values("{\"id\":1e400,\"method\":\"ping\"", "{\"id\":1e400 1,\"method\":\"ping\"}",
                    "{\"id\":[1e400,\"method\":\"ping\"}", "{\"id\":01,\"method\":\"ping\"}",
                    "{\"id\":1e,\"method\":\"ping\"}", "not json", " ", "7", "\"ping\"", "null",
                    "{\"id\":1,\"method\":\"ping\"", QByteArray(100'000, '['),
                    "{\"id\":\"\xff\",\"method\":\"ping\"}", "{\"\xff\":1,\"method\":\"ping\"}",
                    QByteArray("{\"id\":\"\0\",\"method\":\"ping\"}", 26)));

TEST_F(MCPServerTest, AnythingAHandlerThrowsIsAnswered) {
    m_handler.answer = [](const QString&, const QJsonObject&) -> QJsonObject {
        throw std::runtime_error("out of luck");
    };
    EXPECT_EQ(reply(R"({"id":1,"method":"tools/call"})"),
              R"({"error":{"code":-32603,"message":"out of luck"},"id":null,"jsonrpc":"2.0"})");
}

// Each call waits for the other, so this ends only when the two are handled side by side.
TEST_F(MCPServerTest, OneSlowToolDoesNotHoldUpOtherThreads) {
    std::latch bothInside(2);
    m_handler.answer = [&bothInside](const QString& name, const QJsonObject&) {
        bothInside.arrive_and_wait();
        return QJsonObject{{u"of"_s, name}};
    };
    std::string first;
    {
        const std::jthread other(
            [&] { first = reply(R"({"id":1,"method":"tools/call","params":{"name":"a"}})"); });
        EXPECT_EQ(reply(R"({"id":2,"method":"tools/call","params":{"name":"b"}})"),
                  R"({"id":2,"jsonrpc":"2.0","result":{"of":"b"}})");
    }
    EXPECT_EQ(first, R"({"id":1,"jsonrpc":"2.0","result":{"of":"a"}})");
}

TEST_F(MCPServerTest, ThreadsListingTheCatalogueAtOnceAllGetTheWhole) {
    constexpr size_t count = 8;
    std::vector<std::string> replies(count);
    {
        std::vector<std::jthread> threads;
        threads.reserve(count);
        for (std::string& slot : replies)
            threads.emplace_back([this, &slot] { slot = reply(R"({"id":1,"method":"tools/list"})"); });
    }
    EXPECT_THAT(replies, testing::Each(reply(R"({"id":1,"method":"tools/list"})")));
}

} // namespace
} // namespace orvane
