#include "OrvaneCore/mcp/pipe/MCPHTTPClient.h"

#include "OrvaneCore/mcp/MCPEndpointInfo.h"
#include "OrvaneCore/platform/PeerOwner.h"
#include "tests/support/Eventually.h"
#include "tests/unit/mcp/pipe/ScriptedHost.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::eventually;
using testing::ElementsAre;

constexpr auto ample = 20s;
constexpr auto soon = 150ms;
constexpr qint64 soonMs = 150;
constexpr qint64 amplyMs = 10'000;
constexpr qsizetype mebibyte = qsizetype{1024} * 1024;

/// Says what the test wants of every connection.
class FakePeerOwner final : public PeerOwner {
public:
    explicit FakePeerOwner(bool ours)
        : m_ours(ours) {}

    bool isOurs(qintptr socket) override {
        EXPECT_GE(socket, 0);
        ++asked;
        return m_ours;
    }

    int asked = 0;

private:
    bool m_ours;
};

MCPEndpointInfo endpointAt(const QString& url, const QString& token = u"secret"_s) {
    return {url, 1, token, 1, u"0.1.0"_s, u""_s};
}

MCPEndpointInfo endpointOf(const ScriptedHost& host) {
    return endpointAt(u"http://127.0.0.1:%1/mcp"_s.arg(host.port()));
}

bool isHealthy(const MCPEndpointInfo& info, std::chrono::milliseconds timeout = ample) {
    FakePeerOwner owner(true);
    return MCPHTTPClient(owner).isHealthy(info, timeout);
}

std::optional<QByteArray> forwarded(QByteArrayView line, const MCPEndpointInfo& info,
                                    std::chrono::milliseconds timeout = ample) {
    FakePeerOwner owner(true);
    return MCPHTTPClient(owner).forward(line, info, timeout);
}

/// A port that nobody listens on.
int deadPort() {
    return ScriptedHost(QByteArray()).port();
}

TEST(MCPHTTPClientHealth, AsksWithoutTheToken) {
    const ScriptedHost host(httpReply("200 OK", R"({"ok":true,"server":"orvane"})"));
    EXPECT_TRUE(isHealthy(endpointOf(host)));
    EXPECT_THAT(host.requests(),
                ElementsAre("GET /health HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(host.port()) +
                            "\r\nConnection: close\r\n\r\n"));
}

TEST(MCPHTTPClientHealth, GoesByTheStatusAlone) {
    for (const QByteArrayView status : {"200 OK", "202 Accepted", "204", "299 Odd"}) {
        const ScriptedHost host(httpReply(status, "whatever"));
        EXPECT_TRUE(isHealthy(endpointOf(host))) << status.data();
    }
    for (const QByteArrayView status : {"100 Continue", "199 Odd", "300 Odd", "401 Unauthorized",
                                        "404 Not Found", "500 Error", "503 Busy"}) {
        const ScriptedHost host(httpReply(status, R"({"ok":true})"));
        EXPECT_FALSE(isHealthy(endpointOf(host))) << status.data();
    }
}

TEST(MCPHTTPClientHealth, DoesNotWaitForTheBody) {
    ScriptedHost host([](ScriptedHost::Client& client) {
        client.request();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n");
        client.hang();
    });
    EXPECT_TRUE(isHealthy(endpointOf(host)));
}

TEST(MCPHTTPClientHealth, FollowsNoRedirect) {
    const ScriptedHost well(httpReply("200 OK", ""));
    const ScriptedHost host("HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:" +
                            QByteArray::number(well.port()) + "/health\r\nContent-Length: 0\r\n\r\n");
    EXPECT_FALSE(isHealthy(endpointOf(host)));
    EXPECT_EQ(host.clients(), 1);
    EXPECT_EQ(well.clients(), 0);
}

TEST(MCPHTTPClientHealth, NobodyListens) {
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(isHealthy(endpointAt(u"http://127.0.0.1:%1/mcp"_s.arg(deadPort()))));
    EXPECT_LT(timer.elapsed(), amplyMs);
}

TEST(MCPHTTPClientHealth, AHostThatHangsCostsTheTimeLimit) {
    ScriptedHost host([](ScriptedHost::Client& client) { client.hang(); });
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(isHealthy(endpointOf(host), soon));
    EXPECT_GE(timer.elapsed(), soonMs);
    EXPECT_LT(timer.elapsed(), amplyMs);
}

TEST(MCPHTTPClientHealth, AHostThatGoesWithoutAWordDoesNot) {
    ScriptedHost host([](ScriptedHost::Client&) {});
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(isHealthy(endpointOf(host)));
    EXPECT_LT(timer.elapsed(), amplyMs);
}

TEST(MCPHTTPClientHealth, KeepsAllOfTheAddressButThePath) {
    const ScriptedHost host(httpReply("200 OK", ""));
    EXPECT_TRUE(isHealthy(endpointAt(u"http://127.0.0.1:%1/deep/mcp?a=%20b#c"_s.arg(host.port()))));
    EXPECT_TRUE(isHealthy(endpointAt(u"http://127.0.0.1:%1"_s.arg(host.port()))));
    const std::vector<QByteArray> requests = host.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_TRUE(requests[0].startsWith("GET /health?a=%20b HTTP/1.1\r\n")) << requests[0].constData();
    EXPECT_TRUE(requests[1].startsWith("GET /health HTTP/1.1\r\nHost: 127.0.0.1:"))
        << requests[1].constData();
}

class MCPHTTPClientAddress : public testing::TestWithParam<const char*> {};

TEST_P(MCPHTTPClientAddress, ThatIsNoneIsNoHost) {
    const MCPEndpointInfo info = endpointAt(QString::fromUtf8(GetParam()));
    EXPECT_FALSE(isHealthy(info));
    EXPECT_EQ(forwarded("a", info), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, MCPHTTPClientAddress,
                         testing::Values("", "garbage", "/mcp", "127.0.0.1:47600", "http://", "http:///mcp",
                                         "http://127.0.0.1:port/mcp", "http://127.0.0.1:99999/mcp",
                                         "http://127.0.0.1:-1/mcp", "http://127.0.0.1:0/mcp",
                                         "http://[::1/mcp", "http://a b/mcp", "https://127.0.0.1:47600/mcp",
                                         "ftp://127.0.0.1/mcp", "file:///etc/passwd",
                                         "http://127.0.0.1:47600\r\nX: y/mcp"));

TEST(MCPHTTPClientForward, PostsTheLineAndGivesTheReply) {
    const ScriptedHost host(httpReply("200 OK", "{\"id\":1,\"text\":\"日本\"}"));
    EXPECT_EQ(forwarded("{\"id\":1}", endpointOf(host)), QByteArray("{\"id\":1,\"text\":\"日本\"}"));
    EXPECT_THAT(host.requests(),
                ElementsAre("POST /mcp HTTP/1.1\r\nContent-Type: application/json\r\n"
                            "Authorization: Bearer secret\r\nContent-Length: 8\r\n"
                            "Host: 127.0.0.1:" +
                            QByteArray::number(host.port()) + "\r\nConnection: close\r\n\r\n{\"id\":1}"));
}

TEST(MCPHTTPClientForward, GivesAnEmptyReplyForANotification) {
    const ScriptedHost host(httpReply("202 Accepted", "", "text/plain"));
    EXPECT_EQ(forwarded("{}", endpointOf(host)), QByteArray());
    const ScriptedHost talkative(httpReply("202 Accepted", "noted"));
    EXPECT_EQ(forwarded("{}", endpointOf(talkative)), QByteArray());
}

TEST(MCPHTTPClientForward, AnyOtherStatusIsALostHost) {
    for (const QByteArrayView status :
         {"201 Created", "204 No Content", "301 Moved", "400 Bad Request", "401 Unauthorized",
          "403 Forbidden", "404 Not Found", "413 Payload Too Large", "500 Error"}) {
        const ScriptedHost host(httpReply(status, "{}"));
        EXPECT_EQ(forwarded("{}", endpointOf(host)), std::nullopt) << status.data();
        EXPECT_EQ(host.clients(), 1) << status.data();
    }
}

TEST(MCPHTTPClientForward, FollowsNoRedirect) {
    const ScriptedHost other(httpReply("200 OK", "{}"));
    for (const QByteArrayView status : {"301 Moved", "302 Found", "307 Temporary", "308 Permanent"}) {
        const ScriptedHost host("HTTP/1.1 " + status.toByteArray() + "\r\nLocation: http://127.0.0.1:" +
                                QByteArray::number(other.port()) + "/mcp\r\nContent-Length: 0\r\n\r\n");
        EXPECT_EQ(forwarded("{}", endpointOf(host)), std::nullopt);
    }
    EXPECT_EQ(other.clients(), 0);
}

TEST(MCPHTTPClientForward, AReplyThatIsNoUtf8IsALostHost) {
    for (const QByteArrayView body :
         {"\xff", "{\"a\":\"\xc3\"}", "\xed\xa0\x80", "\xc0\x80", "abc\xf0\x9f\x98"}) {
        const ScriptedHost host(httpReply("200 OK", body));
        EXPECT_EQ(forwarded("{}", endpointOf(host)), std::nullopt);
    }
}

TEST(MCPHTTPClientForward, GarbageIsALostHost) {
    for (const QByteArray& answer :
         {QByteArray("garbage\r\n\r\n"), QByteArray("{}"), QByteArray(1000, '\0'), QByteArray(200'000, 'x'),
          QByteArray("HTTP/1.1 200 OK\r\n\r\n{}"), QByteArray("SSH-2.0-OpenSSH_9.2\r\n")}) {
        const ScriptedHost host(answer);
        EXPECT_EQ(forwarded("{}", endpointOf(host)), std::nullopt) << answer.left(30).constData();
    }
}

/// What was sent must not be carried out twice, so nothing is tried again however the connection ends.
TEST(MCPHTTPClientForward, SendsAMessageOnceAlthoughTheHostCloses) {
    const QByteArray whole = httpReply("200 OK", "{\"id\":1}");
    for (const bool broken : {false, true}) {
        for (const qsizetype sent :
             {qsizetype{0}, qsizetype{1}, qsizetype{20}, whole.size() - 8, whole.size() - 1}) {
            ScriptedHost host([&](ScriptedHost::Client& client) {
                client.request();
                client.send(QByteArrayView(whole).first(sent));
                if (broken)
                    client.breakOff();
            });
            EXPECT_EQ(forwarded("{}", endpointOf(host)), std::nullopt) << sent;
            EXPECT_EQ(host.clients(), 1) << sent;
        }
    }
}

TEST(MCPHTTPClientForward, AHostThatHangsCostsTheTimeLimit) {
    const QByteArray whole = httpReply("200 OK", "{\"id\":1}");
    for (const qsizetype sent : {qsizetype{0}, qsizetype{20}, whole.size() - 1}) {
        ScriptedHost host([&](ScriptedHost::Client& client) {
            client.request();
            client.send(QByteArrayView(whole).first(sent));
            client.hang();
        });
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(forwarded("{}", endpointOf(host), soon), std::nullopt) << sent;
        EXPECT_GE(timer.elapsed(), soonMs) << sent;
        EXPECT_LT(timer.elapsed(), amplyMs) << sent;
    }
}

TEST(MCPHTTPClientForward, TheTimeLimitIsForTheWholeExchange) {
    // Never silent for long, and never done.
    ScriptedHost host([](ScriptedHost::Client& client) {
        client.request();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000000000\r\n\r\n");
        const QByteArray block(mebibyte, 'x');
        for (int i = 0; i < 200; ++i) {
            client.send(block);
            std::this_thread::sleep_for(5ms);
        }
        client.hang();
    });
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(forwarded("{}", endpointOf(host), soon), std::nullopt);
    EXPECT_GE(timer.elapsed(), soonMs);
    EXPECT_LT(timer.elapsed(), 900);
}

TEST(MCPHTTPClientForward, AHostThatReadsNothingCostsTheTimeLimit) {
    ScriptedHost host([](ScriptedHost::Client& client) {
        // Answers nothing, reads nothing, until the test is over.
        client.waitForTheEnd();
    });
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(forwarded(QByteArray(32 * mebibyte, 'x'), endpointOf(host), soon), std::nullopt);
    EXPECT_GE(timer.elapsed(), soonMs);
    EXPECT_LT(timer.elapsed(), amplyMs);
}

TEST(MCPHTTPClientForward, TakesAnAnswerThatComesBeforeAllWasRead) {
    ScriptedHost host([](ScriptedHost::Client& client) {
        client.send(httpReply("413 Payload Too Large", "Payload Too Large"));
        client.hang();
    });
    EXPECT_EQ(forwarded(QByteArray(9 * mebibyte, 'x'), endpointOf(host)), std::nullopt);
}

TEST(MCPHTTPClientForward, PassesALineOfManyMebibytes) {
    const ScriptedHost host(httpReply("200 OK", "{}"));
    QByteArray line(16 * mebibyte, 'x');
    for (qsizetype i = 0; i < line.size(); ++i)
        line[i] = static_cast<char>(i * 7 % 251);
    EXPECT_EQ(forwarded(line, endpointOf(host)), QByteArray("{}"));
    const std::vector<QByteArray> requests = host.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_TRUE(requests.front().endsWith("\r\n\r\n" + line));
}

TEST(MCPHTTPClientForward, PassesAReplyOfManyMebibytes) {
    QByteArray body(48 * mebibyte, 'x');
    for (qsizetype i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(' ' + i * 7 % 89);
    const ScriptedHost host(httpReply("200 OK", body));
    const std::optional<QByteArray> reply = forwarded("{}", endpointOf(host));
    ASSERT_TRUE(reply.has_value());
    EXPECT_TRUE(*reply == body);
}

TEST(MCPHTTPClientForward, PassesAnyBytesAndAnEmptyLine) {
    const ScriptedHost host(httpReply("200 OK", "{}"));
    const QByteArray odd("\xff\0\r\n\r\n", 6);
    EXPECT_EQ(forwarded(odd, endpointOf(host)), QByteArray("{}"));
    EXPECT_EQ(forwarded("", endpointOf(host)), QByteArray("{}"));
    const std::vector<QByteArray> requests = host.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_TRUE(requests[0].endsWith("\r\n\r\n" + odd));
    EXPECT_TRUE(requests[1].contains("Content-Length: 0\r\n"));
}

TEST(MCPHTTPClientForward, PostsToTheAddressAsItIs) {
    const ScriptedHost host(httpReply("200 OK", "{}"));
    EXPECT_TRUE(
        forwarded("{}", endpointAt(u"http://127.0.0.1:%1/a%20b/é?c=d#e"_s.arg(host.port()))).has_value());
    EXPECT_TRUE(forwarded("{}", endpointAt(u"http://127.0.0.1:%1"_s.arg(host.port()))).has_value());
    const std::vector<QByteArray> requests = host.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_TRUE(requests[0].startsWith("POST /a%20b/%C3%A9?c=d HTTP/1.1\r\n")) << requests[0].constData();
    EXPECT_TRUE(requests[1].startsWith("POST / HTTP/1.1\r\n")) << requests[1].constData();
}

TEST(MCPHTTPClientForward, ATokenCannotWriteHeadersOfItsOwn) {
    const ScriptedHost host(httpReply("200 OK", "{}"));
    const QString url = u"http://127.0.0.1:%1/mcp"_s.arg(host.port());
    for (const QString& token : {u"a\r\nX: y"_s, u"a\n"_s, u"a\r"_s, u"a"_s + QChar(0)})
        EXPECT_EQ(forwarded("{}", endpointAt(url, token)), std::nullopt);
    EXPECT_EQ(host.clients(), 0);
    EXPECT_TRUE(forwarded("{}", endpointAt(url, u"日本 \""_s)).has_value());
    EXPECT_TRUE(host.requests().front().contains("Authorization: Bearer 日本 \"\r\n"));
}

TEST(MCPHTTPClientStranger, GetsNoByteAndIsNoHost) {
    ScriptedHost host([&](ScriptedHost::Client& client) {
        client.send(httpReply("200 OK", "{}"));
        host.keep(client.request());
    });
    FakePeerOwner owner(false);
    MCPHTTPClient client(owner);
    EXPECT_FALSE(client.isHealthy(endpointOf(host), ample));
    EXPECT_EQ(client.forward("{}", endpointOf(host), ample), std::nullopt);
    EXPECT_EQ(owner.asked, 2);
    EXPECT_TRUE(eventually([&] { return host.requests().size() == 2; }));
    EXPECT_THAT(host.requests(), ElementsAre("", ""));
}

TEST(MCPHTTPClientForward, GoesThroughNoProxy) {
    const ScriptedHost proxy(httpReply("200 OK", "the proxy"));
    const QByteArray address = "http://127.0.0.1:" + QByteArray::number(proxy.port());
    const QByteArray before = qgetenv("http_proxy");
    qputenv("http_proxy", address);
    const ScriptedHost host(httpReply("200 OK", "the host"));
    EXPECT_EQ(forwarded("{}", endpointOf(host)), QByteArray("the host"));
    qputenv("http_proxy", before);
    EXPECT_EQ(proxy.clients(), 0);
}

TEST(MCPHTTPClientForward, ServesOneAfterAnother) {
    const ScriptedHost host(httpReply("200 OK", "{}"));
    FakePeerOwner owner(true);
    MCPHTTPClient client(owner);
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(client.forward("{}", endpointOf(host), ample), QByteArray("{}")) << i;
    EXPECT_EQ(host.clients(), 50);
    EXPECT_EQ(owner.asked, 50) << "each connection may be to somebody else";
}

} // namespace
} // namespace orvane
