#pragma once

#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/mcp/http/MCPHTTPServer.h"
#include "tests/support/Eventually.h"
#include "tests/unit/mcp/FakeToolCallHandler.h"
#include "tests/unit/mcp/http/RawConnection.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <atomic>
#include <latch>
#include <memory>
#include <optional>

namespace orvane {

/// Holds up the tools that pass through it until it is opened.
class Gate {
public:
    void pass() {
        ++m_waiting;
        m_latch.wait();
    }
    void open() {
        if (!m_open.exchange(true))
            m_latch.count_down();
    }
    int waiting() const { return m_waiting; }

private:
    std::latch m_latch{1};
    std::atomic<bool> m_open = false;
    std::atomic<int> m_waiting = 0;
};

/// A host on a port that the kernel chose, with a fake in place of the tools.
class HostFixture : public testing::Test {
protected:
    static constexpr qsizetype mebibyte = qsizetype{1024} * 1024;
    static inline const QByteArray token = "0123456789abcdef";

    /// The tools, which use what a test has, end with the host.
    void TearDown() override {
        m_gate.open();
        m_host.reset();
    }

    void startHost(qsizetype maxRequestBytes = 8 * mebibyte, double connectionTimeoutSeconds = 30) {
        m_host = std::make_unique<MCPHTTPServer>(m_server, QString::fromLatin1(token), maxRequestBytes,
                                                 connectionTimeoutSeconds);
        const std::optional<int> port = m_host->start(0, 1);
        ASSERT_TRUE(port);
        m_port = *port;
    }

    /// A request with a token and a length.
    static QByteArray post(const QByteArray& body, const QByteArray& moreHeaders = {}) {
        return "POST /mcp HTTP/1.1\r\nAuthorization: Bearer " + token +
               "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + moreHeaders + "\r\n" +
               body;
    }

    static QByteArray toolCall(const QByteArray& name) {
        return R"({"id":1,"method":"tools/call","params":{"name":")" + name + R"("}})";
    }

    static QByteArray reply(const QByteArray& status, const QByteArray& type, const QByteArray& body) {
        return "HTTP/1.1 " + status + "\r\nContent-Type: " + type +
               "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
               body;
    }

    static QByteArray pong(int id) {
        return reply("200 OK", "application/json",
                     R"({"id":)" + QByteArray::number(id) + R"(,"jsonrpc":"2.0","result":{}})");
    }

    static QByteArray ping(int id) {
        return post(R"({"id":)" + QByteArray::number(id) + R"(,"method":"ping"})");
    }

    /// All that the host sends on a connection of its own until it closes it.
    QByteArray exchange(const QByteArray& request) const {
        test::RawConnection connection(m_port);
        connection.send(request);
        return connection.readToEnd().value_or("(the connection stays open)");
    }

    /// The JSON object in a reply that must be a 200.
    static QJsonObject messageIn(const QByteArray& bytes) {
        EXPECT_TRUE(bytes.startsWith("HTTP/1.1 200 OK\r\n")) << bytes.toStdString();
        return QJsonDocument::fromJson(bytes.sliced(bytes.indexOf("\r\n\r\n") + 4)).object();
    }

    bool isAlive() const { return exchange(ping(99)) == pong(99); }

    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    FakeToolCallHandler m_handler;
    MCPServer m_server{m_handler};
    Gate m_gate;
    std::unique_ptr<MCPHTTPServer> m_host;
    int m_port = 0;
};

} // namespace orvane
