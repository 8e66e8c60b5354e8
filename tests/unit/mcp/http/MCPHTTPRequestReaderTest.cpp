#include "OrvaneCore/mcp/http/MCPHTTPRequestReader.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

namespace orvane {
namespace {

using State = MCPHTTPRequestReader::State;

constexpr qsizetype mebibyte = qsizetype{1024} * 1024;
constexpr qsizetype limit = 8 * mebibyte;

/// Appends byte by byte; the state after each byte but the last must be incomplete.
State drip(MCPHTTPRequestReader& reader, const QByteArray& data) {
    State state = State::incomplete;
    for (qsizetype at = 0; at < data.size(); ++at) {
        EXPECT_EQ(state, State::incomplete) << "before byte " << at;
        if (state != State::incomplete)
            break;
        state = reader.append(QByteArrayView(data).sliced(at, 1));
    }
    return state;
}

TEST(MCPHTTPRequestReaderTest, IsCompleteWithTheLastByteOfTheBody) {
    MCPHTTPRequestReader reader(limit);
    EXPECT_EQ(drip(reader, "POST /mcp HTTP/1.1\r\nContent-Length: 4\r\n\r\n1\r\n2"), State::complete);
    const MCPHTTPRequest request = reader.take();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/mcp");
    EXPECT_EQ(request.header("CONTENT-LENGTH"), QByteArrayView("4"));
    EXPECT_EQ(request.body, "1\r\n2");
}

TEST(MCPHTTPRequestReaderTest, WithoutALengthIsCompleteWithItsHead) {
    for (const QByteArray length : {"", "Content-Length: 0\r\n", "Content-Length: -5\r\n",
                                    "Content-Length: x\r\n", "Transfer-Encoding: chunked\r\n"}) {
        MCPHTTPRequestReader reader(limit);
        EXPECT_EQ(drip(reader, "POST /mcp HTTP/1.1\r\n" + length + "\r\n"), State::complete)
            << length.toStdString();
        EXPECT_EQ(reader.take().body, "");
    }
}

TEST(MCPHTTPRequestReaderTest, KeepsWhatComesInTheSamePiece) {
    MCPHTTPRequestReader reader(limit);
    EXPECT_EQ(reader.append("POST / HTTP/1.1\r\nContent-Length: 2\r\n\r\n{"), State::incomplete);
    EXPECT_EQ(reader.append("}POST / HTTP/1.1\r\n\r\n"), State::complete);
    EXPECT_EQ(reader.take().body, "{}POST / HTTP/1.1\r\n\r\n");
}

TEST(MCPHTTPRequestReaderTest, AHeadThatIsNoRequestsStaysSo) {
    MCPHTTPRequestReader reader(limit);
    EXPECT_EQ(reader.append("\r\n\r\n"), State::incomplete);
    EXPECT_EQ(reader.append("GET /health HTTP/1.1\r\n\r\n"), State::incomplete);
}

TEST(MCPHTTPRequestReaderTest, TheLimitIsForHeadAndBodyTogether) {
    const QByteArray head = "POST / HTTP/1.1\r\nContent-Length: 10\r\n\r\n";
    MCPHTTPRequestReader justEnough(head.size() + 10);
    EXPECT_EQ(justEnough.append(head + "0123456789"), State::complete);
    MCPHTTPRequestReader oneLess(head.size() + 9);
    EXPECT_EQ(oneLess.append(head + "012345678"), State::incomplete);
    EXPECT_EQ(oneLess.append("9"), State::tooLarge);
    MCPHTTPRequestReader headAlone(10);
    EXPECT_EQ(headAlone.append("GET / HTTP/"), State::tooLarge);
}

TEST(MCPHTTPRequestReaderTest, MoreThanTheLimitInOnePieceIsTooLargeThoughTheRequestIsThere) {
    MCPHTTPRequestReader reader(30);
    EXPECT_EQ(reader.append("GET / HTTP/1.1\r\n\r\nand thirteen more"), State::tooLarge);
}

/// Work that grows with the square of the size would take hours.
constexpr int linearTimeMs = 20000;

TEST(MCPHTTPRequestReaderTest, ReadsALargeRequestByteByByteInLinearTime) {
    const QByteArray head = "POST /mcp HTTP/1.1\r\nContent-Length: 8000000\r\n\r\n";
    const QElapsedTimer timer = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    MCPHTTPRequestReader reader(limit);
    State state = State::incomplete;
    for (const char byte : head + QByteArray(8000000, 'x'))
        state = reader.append(QByteArrayView(&byte, 1));
    EXPECT_EQ(state, State::complete);
    EXPECT_LT(timer.elapsed(), linearTimeMs);
}

TEST(MCPHTTPRequestReaderTest, SearchesAHugeHeadByteByByteInLinearTime) {
    QElapsedTimer timer;
    timer.start();
    MCPHTTPRequestReader reader(limit);
    State state = State::incomplete;
    for (qsizetype at = 0; at < limit; ++at)
        state = reader.append(QByteArrayView("\r\n\r", 3).sliced(at % 3, 1));
    EXPECT_EQ(state, State::incomplete);
    EXPECT_EQ(reader.append("\n"), State::tooLarge);
    EXPECT_LT(timer.elapsed(), linearTimeMs);
}

TEST(MCPHTTPRequestReaderTest, ReadsAFloodOfHeaders) {
    QByteArray head = "POST /mcp HTTP/1.1\r\nContent-Length: 5\r\n";
    head.reserve(limit);
    for (int number = 0; head.size() < limit - 64; ++number)
        head += QByteArray::number(number, 36) + ":\r\n";
    head += "Last: one\r\n\r\n";
    QElapsedTimer timer;
    timer.start();
    MCPHTTPRequestReader reader(limit);
    EXPECT_EQ(reader.append(head), State::incomplete);
    EXPECT_EQ(reader.append("12345"), State::complete);
    const MCPHTTPRequest request = reader.take();
    EXPECT_EQ(request.header("last"), QByteArrayView("one"));
    EXPECT_EQ(request.header("zz"), QByteArrayView(""));
    EXPECT_EQ(request.body, "12345");
    EXPECT_LT(timer.elapsed(), linearTimeMs);
}

} // namespace
} // namespace orvane
