#include "OrvaneCore/mcp/http/MCPHTTPServer.h"

#include "tests/unit/mcp/http/HostFixture.h"

#include <limits>
#include <ostream>
#include <stdexcept>
#include <vector>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using test::eventually;
using test::RawConnection;

class MCPHTTPServerTest : public HostFixture {};

struct ExchangeCase {
    const char* what;
    QByteArray request;
    QByteArray status;
    QByteArray type;
    QByteArray body;
};

std::ostream& operator<<(std::ostream& out, const ExchangeCase& row) {
    return out << row.what;
}

const QByteArray health = R"({"ok":true,"server":"orvane"})";
const QByteArray json = "application/json";
const QByteArray plain = "text/plain";
const QByteArray bearer = "Authorization: Bearer 0123456789abcdef\r\n";

class ExchangeTest : public HostFixture, public testing::WithParamInterface<ExchangeCase> {};

TEST_P(ExchangeTest, HasOneReplyAndTheEndOfTheConnection) {
    startHost();
    EXPECT_EQ(exchange(GetParam().request).toStdString(),
              reply(GetParam().status, GetParam().type, GetParam().body).toStdString());
}

INSTANTIATE_TEST_SUITE_P(
    Health, ExchangeTest,
    testing::Values(
        ExchangeCase{"plain", "GET /health HTTP/1.1\r\n\r\n", "200 OK", json, health},
        ExchangeCase{"HTTP/1.0", "GET /health HTTP/1.0\r\n\r\n", "200 OK", json, health},
        ExchangeCase{"wrong token", "GET /health HTTP/1.1\r\nAuthorization: Bearer x\r\n\r\n", "200 OK", json,
                     health},
        ExchangeCase{"own origin", "GET /health HTTP/1.1\r\nOrigin: http://localhost:1\r\n\r\n", "200 OK",
                     json, health},
        ExchangeCase{"empty origin", "GET /health HTTP/1.1\r\nOrigin:\r\n\r\n", "200 OK", json, health},
        ExchangeCase{"any Host", "GET /health HTTP/1.1\r\nHost: evil.example\r\n\r\n", "200 OK", json,
                     health},
        ExchangeCase{"with a body", "GET /health HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}", "200 OK", json,
                     health},
        ExchangeCase{"foreign origin", "GET /health HTTP/1.1\r\nOrigin: https://evil.example\r\n\r\n",
                     "403 Forbidden", plain, "Forbidden origin"},
        ExchangeCase{"null origin", "GET /health HTTP/1.1\r\norigin: null\r\n\r\n", "403 Forbidden", plain,
                     "Forbidden origin"},
        ExchangeCase{"origin without host", "GET /health HTTP/1.1\r\nORIGIN: file://\r\n\r\n",
                     "403 Forbidden", plain, "Forbidden origin"},
        ExchangeCase{"last origin counts",
                     "GET /health HTTP/1.1\r\nOrigin: http://localhost\r\nOrigin: http://x\r\n\r\n",
                     "403 Forbidden", plain, "Forbidden origin"},
        ExchangeCase{"POST", "POST /health HTTP/1.1\r\n\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"HEAD", "HEAD /health HTTP/1.1\r\n\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"query", "GET /health?x HTTP/1.1\r\n\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"slash", "GET /health/ HTTP/1.1\r\n\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"lower case", "get /health HTTP/1.1\r\n\r\n", "404 Not Found", plain, "Not Found"}));

INSTANTIATE_TEST_SUITE_P(
    Refusals, ExchangeTest,
    testing::Values(
        ExchangeCase{"root", "GET / HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"GET", "GET /mcp HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"DELETE", "DELETE /mcp HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain,
                     "Not Found"},
        ExchangeCase{"OPTIONS", "OPTIONS /mcp HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain,
                     "Not Found"},
        ExchangeCase{"post", "post /mcp HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain, "Not Found"},
        ExchangeCase{"query", "POST /mcp?a=1 HTTP/1.1\r\n" + bearer + "\r\n", "404 Not Found", plain,
                     "Not Found"},
        ExchangeCase{"absolute path", "POST http://127.0.0.1/mcp HTTP/1.1\r\n" + bearer + "\r\n",
                     "404 Not Found", plain, "Not Found"},
        ExchangeCase{"other path without token", "POST /other HTTP/1.1\r\n\r\n", "404 Not Found", plain,
                     "Not Found"},
        ExchangeCase{"no token", "POST /mcp HTTP/1.1\r\n\r\n", "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"wrong token", "POST /mcp HTTP/1.1\r\nAuthorization: Bearer 0123456789abcdee\r\n\r\n",
                     "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"shorter token", "POST /mcp HTTP/1.1\r\nAuthorization: Bearer 0123456789abcde\r\n\r\n",
                     "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"token alone", "POST /mcp HTTP/1.1\r\nAuthorization: 0123456789abcdef\r\n\r\n",
                     "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"Basic", "POST /mcp HTTP/1.1\r\nAuthorization: Basic 0123456789abcdef\r\n\r\n",
                     "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"third word", "POST /mcp HTTP/1.1\r\nAuthorization: Bearer 0123456789abcdef x\r\n\r\n",
                     "401 Unauthorized", plain, "Unauthorized"},
        ExchangeCase{"foreign origin before the path",
                     "POST /other HTTP/1.1\r\nOrigin: http://127.0.0.1.evil.example\r\n\r\n", "403 Forbidden",
                     plain, "Forbidden origin"},
        ExchangeCase{"foreign origin before the token",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Origin: http://LOCALHOST\r\n\r\n", "403 Forbidden",
                     plain, "Forbidden origin"}));

const QByteArray pong7 = R"({"id":7,"jsonrpc":"2.0","result":{}})";

INSTANTIATE_TEST_SUITE_P(
    Messages, ExchangeTest,
    testing::Values(
        ExchangeCase{"ping",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 24\r\n\r\n" +
                         R"({"id":7,"method":"ping"})",
                     "200 OK", json, pong7},
        ExchangeCase{"own origin",
                     "POST /mcp HTTP/1.1\r\n" + bearer +
                         "Origin: http://a@[::1]:99\r\nContent-Length: 24\r\n\r\n" +
                         R"({"id":7,"method":"ping"})",
                     "200 OK", json, pong7},
        ExchangeCase{"scheme in any case, many blanks",
                     "POST /mcp HTTP/1.1\r\nAUTHORIZATION:bEARER    0123456789abcdef \r\n\r\n" +
                         QByteArray(R"({"id":7,"method":"ping"})"),
                     "200 OK", json, pong7},
        ExchangeCase{"without a length",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "\r\n" + R"({"id":7,"method":"ping"})", "200 OK",
                     json, pong7},
        ExchangeCase{"with a length that is no number",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: all\r\n\r\n" +
                         R"({"id":7,"method":"ping"})",
                     "200 OK", json, pong7},
        ExchangeCase{"with a negative length",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: -1\r\n\r\n" +
                         R"({"id":7,"method":"ping"})",
                     "200 OK", json, pong7},
        ExchangeCase{"with a length shorter than what is there",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 5\r\n\r\n" +
                         R"({"id":7,"method":"ping"})",
                     "200 OK", json, pong7},
        ExchangeCase{"with a line feed behind it",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 24\r\n\r\n" +
                         R"({"id":7,"method":"ping"})" + "\r\n",
                     "200 OK", json, pong7},
        ExchangeCase{"notification",
                     "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 38\r\n\r\n" +
                         R"({"method":"notifications/initialized"})",
                     "202 Accepted", plain, ""},
        ExchangeCase{
            "unknown method", "POST /mcp HTTP/1.1\r\n" + bearer + "\r\n" + R"({"id":"x","method":"nope"})",
            "200 OK", json,
            R"({"error":{"code":-32601,"message":"Method not found: nope"},"id":"x","jsonrpc":"2.0"})"},
        ExchangeCase{"array", "POST /mcp HTTP/1.1\r\n" + bearer + "\r\n[1,2]", "200 OK", json,
                     R"({"error":{"code":-32600,"message":"Invalid request"},"id":null,"jsonrpc":"2.0"})"}));

struct BrokenMessage {
    const char* what;
    QByteArray request;
};

std::ostream& operator<<(std::ostream& out, const BrokenMessage& row) {
    return out << row.what;
}

class BrokenMessageTest : public HostFixture, public testing::WithParamInterface<BrokenMessage> {};

TEST_P(BrokenMessageTest, IsAnErrorOfTheProtocolInA200) {
    startHost();
    const QJsonObject message = messageIn(exchange(GetParam().request));
    EXPECT_EQ(message[u"error"_s][u"code"_s], -32603);
    EXPECT_FALSE(message[u"error"_s][u"message"_s].toString().isEmpty());
    EXPECT_TRUE(message[u"id"_s].isNull());
    EXPECT_TRUE(m_handler.calls().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, BrokenMessageTest,
    testing::Values(
        BrokenMessage{"not JSON", "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 8\r\n\r\nnot json"},
        BrokenMessage{"empty", "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 0\r\n\r\n"},
        BrokenMessage{"not UTF-8",
                      "POST /mcp HTTP/1.1\r\n" + bearer + "\r\n{\"id\":7,\"method\":\"ping\xff\"}"},
        BrokenMessage{"chunked", "POST /mcp HTTP/1.1\r\n" + bearer + "Transfer-Encoding: chunked\r\n\r\n" +
                                     "18\r\n{\"id\":7,\"method\":\"ping\"}\r\n0\r\n\r\n"},
        BrokenMessage{"pipelined", "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 24\r\n\r\n" +
                                       R"({"id":7,"method":"ping"})" + "GET /health HTTP/1.1\r\n\r\n"}));

TEST_F(MCPHTTPServerTest, ABodyThatIsNotUtf8CountsAsAnEmptyOne) {
    startHost();
    EXPECT_EQ(messageIn(exchange(post("{\"id\":7,\"method\":\"ping\xff\"}"))), messageIn(exchange(post(""))));
}

TEST_F(MCPHTTPServerTest, HandsToolCallsOnAndTheirResultsBack) {
    startHost();
    m_handler.answer = [](const QString&, const QJsonObject& arguments) {
        return QJsonObject{{u"content"_s, QJsonArray{arguments}}, {u"isError"_s, true}};
    };
    const QByteArray call =
        R"({"id":2,"method":"tools/call","params":{"name":"read_frame","arguments":{"b":"gr\u00fc\u00df"}}})";
    EXPECT_EQ(exchange(post(call)).toStdString(),
              reply("200 OK", "application/json",
                    R"({"id":2,"jsonrpc":"2.0","result":{"content":[{"b":")"
                    "gr\xc3\xbc\xc3\x9f"
                    R"("}],"isError":true}})")
                  .toStdString());
    EXPECT_EQ(m_handler.calls(),
              std::vector<FakeToolCallHandler::Call>({{u"read_frame"_s, {{u"b"_s, u"gr\u00fc\u00df"_s}}}}));
}

TEST_F(MCPHTTPServerTest, ARefusedMessageReachesNoTool) {
    startHost();
    for (const QByteArray& headers :
         {QByteArray("Authorization: Bearer x\r\n"), bearer + "Origin: http://evil.example\r\n"})
        exchange("POST /mcp HTTP/1.1\r\n" + headers + "\r\n" + toolCall("read_frame"));
    EXPECT_TRUE(isAlive());
    EXPECT_TRUE(m_handler.calls().empty());
}

TEST_F(MCPHTTPServerTest, AnEmptyTokenLetsNoMessageIn) {
    m_host = std::make_unique<MCPHTTPServer>(m_server, QString(), mebibyte, 30);
    m_port = m_host->start(0, 1).value_or(0);
    const QByteArray body = R"({"id":7,"method":"ping"})";
    for (const QByteArray header : {"", "Authorization:\r\n", "Authorization: Bearer\r\n"}) {
        EXPECT_EQ(exchange("POST /mcp HTTP/1.1\r\n" + header + "\r\n" + body),
                  reply("401 Unauthorized", plain, "Unauthorized"));
    }
}

TEST_F(MCPHTTPServerTest, AToolThatThrowsIsAnErrorOfTheProtocol) {
    startHost();
    m_handler.answer = [](const QString&, const QJsonObject&) -> QJsonObject {
        throw std::runtime_error("the tool broke");
    };
    const QJsonObject message = messageIn(exchange(post(toolCall("x"))));
    EXPECT_EQ(message[u"error"_s][u"code"_s], -32603);
    EXPECT_EQ(message[u"error"_s][u"message"_s], u"the tool broke"_s);
}

TEST_F(MCPHTTPServerTest, AReplyThatIsNoJsonIsAnEmpty202) {
    startHost();
    m_handler.answer = [](const QString&, const QJsonObject&) {
        return QJsonObject{{u"x"_s, std::numeric_limits<double>::infinity()}};
    };
    EXPECT_EQ(exchange(post(toolCall("x"))), reply("202 Accepted", plain, ""));
}

struct EndedCase {
    const char* what;
    QByteArray sent;
};

std::ostream& operator<<(std::ostream& out, const EndedCase& row) {
    return out << row.what;
}

class EndedRequestTest : public HostFixture, public testing::WithParamInterface<EndedCase> {};

TEST_P(EndedRequestTest, IsABadRequest) {
    startHost();
    RawConnection connection(m_port);
    connection.send(GetParam().sent);
    connection.endSending();
    EXPECT_EQ(connection.readToEnd(), reply("400 Bad Request", plain, "Bad Request"));
}

INSTANTIATE_TEST_SUITE_P(
    Requests, EndedRequestTest,
    testing::Values(EndedCase{"nothing", ""}, EndedCase{"part of the head", "POST /mcp HT"},
                    EndedCase{"head without its end", "GET /health HTTP/1.1\r\n"},
                    EndedCase{"short body", "POST /mcp HTTP/1.1\r\n" + bearer + "Content-Length: 25\r\n\r\n" +
                                                R"({"id":7,"method":"ping"})"},
                    EndedCase{"length beyond the limit",
                              "POST /mcp HTTP/1.1\r\nContent-Length: 9223372036854775807\r\n\r\n{}"},
                    EndedCase{"no request line", "hello\r\n\r\n"},
                    EndedCase{"empty line first", "\r\n\r\nGET /health HTTP/1.1\r\n\r\n"},
                    EndedCase{"line feeds alone", "GET /health HTTP/1.1\n\n"},
                    EndedCase{"head that is not UTF-8", "GET /health HTTP/1.1\r\nA: \xff\r\n\r\n"},
                    EndedCase{"TLS", QByteArray("\x16\x03\x01\x02\x00\x01\x00\x01", 8)}));

TEST_F(MCPHTTPServerTest, AHeadThatIsNoRequestsIsWaitedOn) {
    startHost();
    RawConnection connection(m_port);
    connection.send("hello\r\n\r\n");
    EXPECT_EQ(connection.read(1, 200), std::nullopt);
}

TEST_F(MCPHTTPServerTest, AClientThatHasEndedItsSideGetsItsReply) {
    startHost();
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        m_gate.pass();
        return QJsonObject();
    };
    RawConnection connection(m_port);
    connection.send(post(toolCall("slow")));
    connection.endSending();
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));
    // Time for the host to see the end of the input.
    EXPECT_EQ(connection.read(1, 100), std::nullopt);
    m_gate.open();
    EXPECT_EQ(connection.readToEnd(), reply("200 OK", json, R"({"id":1,"jsonrpc":"2.0","result":{}})"));
}

TEST_F(MCPHTTPServerTest, TheRequestMayComeInAnyPieces) {
    startHost();
    const QByteArray request = ping(7);
    for (qsizetype cut = 1; cut < request.size(); cut += 7) {
        RawConnection connection(m_port);
        connection.send(request.first(cut));
        // The host reads the first piece alone, since there is no second.
        EXPECT_EQ(connection.read(1, 10), std::nullopt);
        connection.send(request.sliced(cut));
        EXPECT_EQ(connection.readToEnd(), pong(7)) << "cut at " << cut;
    }
}

TEST_F(MCPHTTPServerTest, AnswersOnceAndIgnoresWhatFollows) {
    startHost();
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        m_gate.pass();
        return QJsonObject();
    };
    RawConnection connection(m_port);
    connection.send(post(toolCall("slow")));
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));
    connection.send("GET /health HTTP/1.1\r\n\r\n");
    m_gate.open();
    EXPECT_EQ(connection.readToEnd(), reply("200 OK", json, R"({"id":1,"jsonrpc":"2.0","result":{}})"));
    EXPECT_EQ(m_handler.calls().size(), 1u);
}

TEST_F(MCPHTTPServerTest, TooLargeIsSaidAsSoonAsTheLimitIsPassed) {
    startHost(1000);
    RawConnection connection(m_port);
    connection.send("POST /mcp HTTP/1.1\r\nContent-Length: 999999\r\n\r\n" + QByteArray(2000, 'x'));
    // The client still owes most of the body.
    EXPECT_EQ(connection.readToEnd(), reply("413 Payload Too Large", plain, "Payload Too Large"));
    EXPECT_FALSE(connection.wasReset());
}

TEST_F(MCPHTTPServerTest, TheLimitItselfIsNotTooLarge) {
    const QByteArray request = ping(7);
    startHost(request.size());
    EXPECT_EQ(exchange(request), pong(7));
    EXPECT_EQ(exchange(request + ' '), reply("413 Payload Too Large", plain, "Payload Too Large"));
}

TEST_F(MCPHTTPServerTest, AClientInTheMiddleOfATooLargeBodyCanReadTheReply) {
    startHost();
    RawConnection connection(m_port);
    connection.send("POST /mcp HTTP/1.1\r\nContent-Length: 9437184\r\n\r\n");
    EXPECT_TRUE(connection.send(QByteArray(9 * mebibyte, 'x')));
    connection.endSending();
    EXPECT_EQ(connection.readToEnd(), reply("413 Payload Too Large", plain, "Payload Too Large"));
    EXPECT_FALSE(connection.wasReset());
}

TEST_F(MCPHTTPServerTest, AClientMayGoOnSendingAfterATooLargeRequestWasRefused) {
    startHost(1000);
    const QByteArray refusal = reply("413 Payload Too Large", plain, "Payload Too Large");
    // The host listens for a while only, and this thread may not get its turn in time.
    const bool keptOpen = eventually([&] {
        RawConnection connection(m_port);
        connection.send(QByteArray(1001, 'x'));
        QByteArray received;
        for (QByteArray piece; received.size() < refusal.size(); received += piece) {
            piece = connection.read().value_or(QByteArray());
            if (piece.isEmpty())
                return false;
        }
        return received == refusal && connection.read(1, 100) == std::nullopt && connection.send("more") &&
               connection.send("and more") && connection.readToEnd() == QByteArray() &&
               !connection.wasReset();
    });
    EXPECT_TRUE(keptOpen);
}

TEST_F(MCPHTTPServerTest, AClientThatNeverStopsSendingIsCutOff) {
    startHost(mebibyte);
    RawConnection connection(m_port);
    const QByteArray piece(qsizetype{64} * 1024, 'x');
    int pieces = 0;
    while (connection.send(piece) && pieces < 100000)
        ++pieces;
    EXPECT_LT(pieces, 100000);
}

TEST_F(MCPHTTPServerTest, TooLargeAppliesToAHeadWithoutEnd) {
    startHost(1000);
    EXPECT_EQ(exchange(QByteArray(1001, 'x')), reply("413 Payload Too Large", plain, "Payload Too Large"));
}

} // namespace
} // namespace orvane
