#include "OrvaneCore/mcp/http/MCPHTTPServer.h"

#include "tests/unit/mcp/http/HostFixture.h"

#include <QElapsedTimer>

#include <thread>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using test::eventually;
using test::RawConnection;

class MCPHTTPServerLifeTest : public HostFixture {};

TEST_F(MCPHTTPServerLifeTest, ASilentConnectionIsDroppedWithoutAWord) {
    startHost(mebibyte, 0.2);
    RawConnection silent(m_port);
    RawConnection halfway(m_port);
    halfway.send("POST /mcp HTTP/1.1\r\nContent-Length: 5\r\n\r\n1");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(silent.readToEnd(), QByteArray());
    EXPECT_EQ(halfway.readToEnd(), QByteArray());
    EXPECT_LT(timer.elapsed(), 10000);
}

TEST_F(MCPHTTPServerLifeTest, ALifeIsNotProlongedByWhatTheClientSends) {
    startHost(mebibyte, 0.3);
    RawConnection connection(m_port);
    const bool dropped = eventually([&] {
        connection.send("x");
        return connection.read(1, 10).has_value();
    });
    EXPECT_TRUE(dropped);
}

TEST_F(MCPHTTPServerLifeTest, ALifeIsAsLongAsItWasGiven) {
    startHost(mebibyte, 1.0);
    RawConnection connection(m_port);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(connection.readToEnd(), QByteArray());
    EXPECT_GE(timer.elapsed(), 950);
}

TEST_F(MCPHTTPServerLifeTest, AToolThatOutlivesItsConnectionStillFinishes) {
    startHost(mebibyte, 0.2);
    std::atomic<bool> finished = false;
    m_handler.answer = [&](const QString& name, const QJsonObject&) {
        if (name == u"slow") {
            m_gate.pass();
            finished = true;
        }
        return QJsonObject();
    };
    EXPECT_EQ(exchange(post(toolCall("slow"))), "");
    EXPECT_FALSE(finished);
    m_gate.open();
    EXPECT_TRUE(eventually([&] { return finished.load(); }));
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, AToolRunsForAClientThatDoesNotWait) {
    startHost();
    {
        RawConnection connection(m_port);
        connection.send(post(toolCall("forgotten")));
    }
    EXPECT_TRUE(eventually([&] { return m_handler.calls().size() == 1; }));
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, ListensOnTheLoopbackInterfaceAlone) {
    startHost();
    const int other = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = RawConnection::addressOf(m_port);
    // A second loopback address: a socket bound to every interface would answer there.
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
    EXPECT_NE(::connect(other, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(other);
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, TakesThePreferredPort) {
    startHost();
    const int port = m_port;
    m_host->stop();
    EXPECT_EQ(m_host->start(port, 1), port);
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, NeverSharesAPort) {
    startHost();
    MCPHTTPServer second(m_server, QString::fromLatin1(token), mebibyte, 30);
    EXPECT_EQ(second.start(m_port, 1), std::nullopt);
    const std::optional<int> next = second.start(m_port, 50);
    ASSERT_TRUE(next);
    EXPECT_GT(*next, m_port);
    EXPECT_LT(*next, m_port + 50);
}

/// A listening socket of somebody else's.
class ForeignListener {
public:
    explicit ForeignListener(in_addr_t interface)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int on = 1;
        ::setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        ::setsockopt(m_socket, SOL_SOCKET, SO_REUSEPORT, &on, sizeof on);
        sockaddr_in address = RawConnection::addressOf(0);
        address.sin_addr.s_addr = htonl(interface);
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket, 1), 0);
    }
    ~ForeignListener() { ::close(m_socket); }
    ForeignListener(const ForeignListener&) = delete;
    ForeignListener& operator=(const ForeignListener&) = delete;

    int port() const {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }

private:
    int m_socket;
};

TEST_F(MCPHTTPServerLifeTest, APortOfAListenerThatWouldShareIsTaken) {
    startHost();
    m_host->stop();
    for (const in_addr_t interface : {in_addr_t{INADDR_LOOPBACK}, in_addr_t{INADDR_ANY}}) {
        const ForeignListener foreign(interface);
        EXPECT_EQ(m_host->start(foreign.port(), 1), std::nullopt);
    }
}

TEST_F(MCPHTTPServerLifeTest, APortThatIsNoneCannotBeHad) {
    startHost();
    EXPECT_EQ(m_host->start(65536, 50), std::nullopt);
    EXPECT_EQ(m_host->start(-7, 5), std::nullopt);
    EXPECT_EQ(m_host->start(m_port, 0), std::nullopt);
}

TEST_F(MCPHTTPServerLifeTest, APortWithConnectionsThatAreDyingCanBeHadAgain) {
    startHost();
    // The host closes first, so its port is left in TIME_WAIT.
    EXPECT_TRUE(isAlive());
    const int port = m_port;
    m_host.reset();
    m_host = std::make_unique<MCPHTTPServer>(m_server, QString::fromLatin1(token), mebibyte, 30);
    EXPECT_EQ(m_host->start(port, 1), port);
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, AStartWhileItListensMovesIt) {
    startHost();
    const int port = m_port;
    EXPECT_EQ(m_host->start(port, 1), port);
    EXPECT_TRUE(isAlive());
    const std::optional<int> other = m_host->start(0, 1);
    ASSERT_TRUE(other);
    ASSERT_NE(*other, port);
    EXPECT_FALSE(RawConnection(port).connected());
    m_port = *other;
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLifeTest, StopEndsListeningAndConnections) {
    startHost();
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        m_gate.pass();
        return QJsonObject();
    };
    RawConnection idle(m_port);
    RawConnection busy(m_port);
    busy.send(post(toolCall("slow")));
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));

    m_host->stop();
    EXPECT_EQ(idle.readToEnd(), QByteArray());
    EXPECT_EQ(busy.readToEnd(), QByteArray());
    EXPECT_FALSE(RawConnection(m_port).connected());

    // The reply of the tool finds no connection, and the next start is a new beginning.
    EXPECT_EQ(m_host->start(m_port, 1), m_port);
    m_gate.open();
    EXPECT_TRUE(isAlive());
    m_host->stop();
    m_host->stop();
}

TEST_F(MCPHTTPServerLifeTest, WaitsForRunningToolsAsLongAsItIsTold) {
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        m_gate.pass();
        return QJsonObject();
    };
    startHost();
    test::RawConnection connection(m_port);
    connection.send(post(toolCall("slow")));
    ASSERT_TRUE(test::eventually([&] { return m_gate.waiting() == 1; }));
    m_host->stop();
    EXPECT_FALSE(m_host->waitForTools(std::chrono::milliseconds(0)));
    EXPECT_FALSE(m_host->waitForTools(std::chrono::milliseconds(-5)));
    EXPECT_FALSE(m_host->waitForTools(std::chrono::milliseconds(20)));
    m_gate.open();
    EXPECT_TRUE(m_host->waitForTools(std::chrono::hours(1)));
}

TEST_F(MCPHTTPServerLifeTest, DestructionWaitsForRunningTools) {
    startHost();
    std::atomic<bool> finished = false;
    m_handler.answer = [&](const QString&, const QJsonObject&) {
        m_gate.pass();
        finished = true;
        return QJsonObject();
    };
    RawConnection connection(m_port);
    connection.send(post(toolCall("slow")));
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));
    std::jthread opener([&] {
        // The connection ends first of all.
        EXPECT_EQ(connection.readToEnd(), QByteArray());
        EXPECT_FALSE(finished);
        m_gate.open();
    });
    m_host.reset();
    EXPECT_TRUE(finished);
}

TEST_F(MCPHTTPServerLifeTest, AHostThatNeverStartedEnds) {
    m_host = std::make_unique<MCPHTTPServer>(m_server, QString(), mebibyte, 30);
    m_host->stop();
    m_host.reset();
    EXPECT_FALSE(m_host);
}

} // namespace
} // namespace orvane
