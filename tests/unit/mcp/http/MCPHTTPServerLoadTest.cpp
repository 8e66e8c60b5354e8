#include "OrvaneCore/mcp/http/MCPHTTPServer.h"

#include "OrvaneCore/mcp/http/MCPHTTPListener.h"
#include "tests/unit/mcp/http/HostFixture.h"

#include <ctime>
#include <memory>
#include <thread>
#include <vector>

#include <sys/resource.h>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using test::eventually;
using test::RawConnection;

class MCPHTTPServerLoadTest : public HostFixture {
protected:
    /// More than the kernel buffers for a connection.
    const QString m_large = QString(16 * mebibyte, u'x');

    /// Tools named "slow" wait at the gate.
    void holdSlowTools() {
        m_handler.answer = [this](const QString& name, const QJsonObject&) {
            if (name == u"slow")
                m_gate.pass();
            return QJsonObject();
        };
    }

    static QByteArray result() {
        return reply("200 OK", "application/json", R"({"id":1,"jsonrpc":"2.0","result":{}})");
    }
};

/// Sets how many descriptors the process may have open, and puts back what was.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t count) {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_before), 0);
        rlimit wanted = m_before;
        wanted.rlim_cur = count;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &wanted), 0);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit m_before{};
};

TEST_F(MCPHTTPServerLoadTest, ToolsRunSideBySide) {
    startHost();
    holdSlowTools();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (int number = 0; number < 16; ++number) {
        connections.push_back(std::make_unique<RawConnection>(m_port));
        connections.back()->send(post(toolCall("slow")));
    }
    EXPECT_TRUE(eventually([&] { return m_gate.waiting() == 16; }));
    // With all of them waiting, the quick ones go on.
    EXPECT_TRUE(isAlive());
    m_gate.open();
    for (const auto& connection : connections)
        EXPECT_EQ(connection->readToEnd(), result());
}

TEST_F(MCPHTTPServerLoadTest, MessagesBeyondTheThreadsWaitForOne) {
    startHost();
    holdSlowTools();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (int number = 0; number < 100; ++number) {
        connections.push_back(std::make_unique<RawConnection>(m_port));
        connections.back()->send(post(toolCall("slow")));
    }
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() >= 16; }));
    // What needs no tool does not wait.
    EXPECT_TRUE(exchange("GET /health HTTP/1.1\r\n\r\n").startsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_LT(m_gate.waiting(), 100);
    m_gate.open();
    for (const auto& connection : connections)
        EXPECT_EQ(connection->readToEnd(), result());
    EXPECT_EQ(m_handler.calls().size(), 100u);
}

TEST_F(MCPHTTPServerLoadTest, StopForgetsWhatWaitsForAThread) {
    startHost();
    holdSlowTools();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (int number = 0; number < 100; ++number) {
        connections.push_back(std::make_unique<RawConnection>(m_port));
        connections.back()->send(post(toolCall("slow")));
    }
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() >= 16; }));
    m_host->stop();
    m_gate.open();
    m_host.reset();
    EXPECT_LT(m_handler.calls().size(), 100u);
}

TEST_F(MCPHTTPServerLoadTest, ServesFiveHundredConnectionsAtOnce) {
    constexpr int count = 500;
    const DescriptorLimit room(2 * count + 200);
    startHost();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (int number = 0; number < count; ++number) {
        connections.push_back(std::make_unique<RawConnection>(m_port));
        ASSERT_TRUE(connections.back()->connected()) << number;
    }
    for (int number = 0; number < count; ++number)
        ASSERT_TRUE(connections[number]->send(ping(number).chopped(1)));
    // A newcomer is served while all of them are in the middle of their request.
    EXPECT_TRUE(isAlive());
    for (int number = 0; number < count; ++number)
        ASSERT_TRUE(connections[number]->send("}"));
    for (int number = 0; number < count; ++number)
        EXPECT_EQ(connections[number]->readToEnd(), pong(number));
}

TEST_F(MCPHTTPServerLoadTest, ConnectionsBeyondThoseItServesWaitUntilOthersEnd) {
    constexpr size_t more = 10;
    constexpr size_t count = MCPHTTPListener::maxConnections + more;
    const DescriptorLimit room(2 * count + 200);
    startHost();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (size_t number = 0; number < count; ++number) {
        connections.push_back(std::make_unique<RawConnection>(m_port));
        ASSERT_TRUE(connections.back()->connected()) << number;
    }
    ASSERT_TRUE(connections.back()->send(ping(1)));
    EXPECT_EQ(connections.back()->read(1, 300), std::nullopt);
    for (size_t number = 0; number < more; ++number)
        connections[number]->close();
    EXPECT_EQ(connections.back()->readToEnd(), pong(1));
    connections.clear();
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLoadTest, AcceptsAgainAfterAStopWithAllTheConnectionsItServes) {
    constexpr size_t count = MCPHTTPListener::maxConnections + 10;
    const DescriptorLimit room(2 * count + 200);
    startHost();
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (size_t number = 0; number < count; ++number)
        connections.push_back(std::make_unique<RawConnection>(m_port));
    ASSERT_TRUE(connections.back()->send(ping(1)));
    EXPECT_EQ(connections.back()->read(1, 300), std::nullopt);
    m_host->stop();
    connections.clear();
    ASSERT_EQ(m_host->start(m_port, 1), m_port);
    EXPECT_TRUE(isAlive());
}

TEST_F(MCPHTTPServerLoadTest, ReadsALargeRequestInSmallPieces) {
    startHost();
    const QByteArray request = post(R"({"id":1,"method":"tools/call","params":{"name":")" +
                                    QByteArray(8 * mebibyte - 1024, 'n') + R"("}})");
    RawConnection connection(m_port);
    for (qsizetype at = 0; at < request.size(); at += 1024)
        ASSERT_TRUE(connection.send(request.sliced(at, qMin(qsizetype{1024}, request.size() - at))));
    EXPECT_EQ(connection.readToEnd(), result());
    ASSERT_EQ(m_handler.calls().size(), 1u);
    EXPECT_EQ(m_handler.calls()[0].name.size(), 8 * mebibyte - 1024);
}

TEST_F(MCPHTTPServerLoadTest, SendsALargeReplyToASlowReader) {
    startHost();
    m_handler.answer = [this](const QString& name, const QJsonObject&) {
        return name == u"large" ? QJsonObject{{u"text"_s, m_large}} : QJsonObject();
    };
    RawConnection slow(m_port, 64 * 1024);
    slow.send(post(toolCall("large")));
    QByteArray received = slow.read(1).value_or(QByteArray());
    // In the middle of it others are served.
    EXPECT_TRUE(isAlive());
    received += slow.readToEnd().value_or(QByteArray());
    EXPECT_EQ(received, reply("200 OK", "application/json",
                              R"({"id":1,"jsonrpc":"2.0","result":{"text":")" + m_large.toLatin1() + "\"}}"));
}

TEST_F(MCPHTTPServerLoadTest, ALargeReplyArrivesWholeThoughTheClientHasSentMore) {
    startHost();
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        m_gate.pass();
        return QJsonObject{{u"text"_s, m_large}};
    };
    RawConnection connection(m_port, 64 * 1024);
    connection.send(post(toolCall("large")));
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));
    connection.send("GET /health HTTP/1.1\r\n\r\n");
    m_gate.open();
    const QByteArray received = connection.readToEnd().value_or(QByteArray());
    EXPECT_TRUE(received.endsWith("\"}}"));
    EXPECT_GT(received.size(), m_large.size());
    EXPECT_FALSE(connection.wasReset());
}

TEST_F(MCPHTTPServerLoadTest, AReaderThatStandsStillLosesItsConnection) {
    startHost(8 * mebibyte, 3.0);
    m_handler.answer = [this](const QString&, const QJsonObject&) {
        return QJsonObject{{u"text"_s, m_large}};
    };
    RawConnection still(m_port, 64 * 1024);
    still.send(post(toolCall("large")));
    ASSERT_EQ(still.read(1)->size(), 1);
    // Another connection that was made later has ended: so has this one.
    RawConnection later(m_port);
    EXPECT_EQ(later.readToEnd(), QByteArray());
    const std::optional<QByteArray> rest = still.readToEnd();
    ASSERT_TRUE(rest);
    EXPECT_LT(rest->size(), m_large.size());
}

TEST_F(MCPHTTPServerLoadTest, SurvivesClientsThatVanish) {
    startHost();
    m_handler.answer = [this](const QString& name, const QJsonObject&) {
        if (name == u"slow")
            m_gate.pass();
        return QJsonObject{{u"text"_s, m_large}};
    };
    {
        RawConnection inTheReply(m_port, 64 * 1024);
        inTheReply.send(post(toolCall("large")));
        ASSERT_EQ(inTheReply.read(1)->size(), 1);
        inTheReply.reset();
    }
    {
        RawConnection beforeTheReply(m_port);
        beforeTheReply.send(post(toolCall("slow")));
        ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 1; }));
        beforeTheReply.reset();
    }
    {
        RawConnection inTheRequest(m_port);
        inTheRequest.send("POST /mcp HTTP/1.1\r\nContent-Le");
        inTheRequest.reset();
    }
    RawConnection(m_port).reset();
    m_gate.open();
    EXPECT_TRUE(exchange("GET /health HTTP/1.1\r\n\r\n").startsWith("HTTP/1.1 200 OK\r\n"));
}

TEST_F(MCPHTTPServerLoadTest, WaitingForAToolTakesNoTimeOfTheProcessor) {
    startHost();
    holdSlowTools();
    RawConnection reset(m_port);
    reset.send(post(toolCall("slow")));
    RawConnection ended(m_port);
    ended.send(post(toolCall("slow")));
    RawConnection talking(m_port);
    talking.send(post(toolCall("slow")));
    ASSERT_TRUE(eventually([&] { return m_gate.waiting() == 3; }));
    reset.reset();
    ended.endSending();
    talking.send("more");
    const std::clock_t before = std::clock();
    EXPECT_EQ(talking.read(1, 500), std::nullopt);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 5);
    m_gate.open();
    EXPECT_EQ(ended.readToEnd(), result());
    EXPECT_EQ(talking.readToEnd(), result());
}

TEST_F(MCPHTTPServerLoadTest, StopsInTheMiddleOfEverything) {
    startHost();
    std::atomic<bool> over = false;
    std::vector<std::jthread> clients;
    clients.reserve(4);
    for (int number = 0; number < 4; ++number) {
        clients.emplace_back([&] {
            while (!over)
                exchange(post(toolCall("quick")));
        });
    }
    for (int round = 0; round < 20; ++round) {
        const size_t before = m_handler.calls().size();
        EXPECT_TRUE(eventually([&] { return m_handler.calls().size() > before + 5; }));
        m_host->stop();
        EXPECT_TRUE(m_host->start(m_port, 1));
    }
    m_host.reset();
    over = true;
}

} // namespace
} // namespace orvane
