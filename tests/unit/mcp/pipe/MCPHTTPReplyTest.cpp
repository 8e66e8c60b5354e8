#include "OrvaneCore/mcp/pipe/MCPHTTPReply.h"

#include "tests/unit/mcp/pipe/ScriptedHost.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using State = MCPHTTPReply::State;

MCPHTTPReply taken(QByteArrayView bytes) {
    MCPHTTPReply reply;
    reply.take(bytes);
    return reply;
}

TEST(MCPHTTPReplyTest, TakesAWholeReply) {
    const MCPHTTPReply reply = taken(httpReply("200 OK", "{\"a\":1}"));
    EXPECT_EQ(reply.state(), State::complete);
    EXPECT_EQ(reply.status(), 200);
    EXPECT_EQ(reply.body(), "{\"a\":1}");
}

TEST(MCPHTTPReplyTest, TakesAnEmptyBody) {
    const MCPHTTPReply reply = taken(httpReply("202 Accepted", ""));
    EXPECT_EQ(reply.state(), State::complete);
    EXPECT_EQ(reply.status(), 202);
    EXPECT_EQ(reply.body(), "");
}

TEST(MCPHTTPReplyTest, EveryCutGivesTheSame) {
    const QByteArray bytes = httpReply("200 OK", "one\r\n\r\ntwo");
    for (qsizetype at = 0; at <= bytes.size(); ++at) {
        MCPHTTPReply reply;
        reply.take(bytes.first(at));
        EXPECT_EQ(reply.state() == State::complete, at == bytes.size()) << at;
        reply.take(bytes.sliced(at));
        EXPECT_EQ(reply.state(), State::complete) << at;
        EXPECT_EQ(reply.body(), "one\r\n\r\ntwo") << at;
    }
    MCPHTTPReply byteByByte;
    for (const char byte : bytes)
        byteByByte.take(QByteArrayView(&byte, 1));
    EXPECT_EQ(byteByByte.state(), State::complete);
    EXPECT_EQ(byteByByte.body(), "one\r\n\r\ntwo");
}

TEST(MCPHTTPReplyTest, KnowsTheStatusBeforeTheBodyHasCome) {
    const MCPHTTPReply reply = taken(httpReply("500 Error", "sorry").chopped(1));
    EXPECT_EQ(reply.state(), State::body);
    EXPECT_EQ(reply.status(), 500);
    EXPECT_EQ(reply.body(), "sorr");
}

TEST(MCPHTTPReplyTest, KnowsNoStatusBeforeTheHeadHasCome) {
    const MCPHTTPReply reply = taken("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n");
    EXPECT_EQ(reply.state(), State::head);
    EXPECT_EQ(reply.status(), 0);
}

TEST(MCPHTTPReplyTest, PassesOverWhatFollows) {
    MCPHTTPReply reply = taken(httpReply("200 OK", "ab") + "cd");
    EXPECT_EQ(reply.state(), State::complete);
    EXPECT_EQ(reply.body(), "ab");
    reply.take("ef");
    EXPECT_EQ(reply.body(), "ab");
}

TEST(MCPHTTPReplyTest, TakesOtherMannersOfWriting) {
    for (const QByteArrayView head :
         {"HTTP/1.0 200 OK\r\nContent-Length: 2", "HTTP/1.1 200\r\ncontent-length:2",
          "HTTP/1.1 200 \r\nCONTENT-LENGTH:\t2 ", "HTTP/1.1 200 Very Well Indeed\r\nX:\r\nContent-Length: 2",
          "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Length: 2",
          "HTTP/1.1 200 OK\r\nContent-Length: 0002"}) {
        const MCPHTTPReply reply = taken(head.toByteArray() + "\r\n\r\nab");
        EXPECT_EQ(reply.state(), State::complete) << head.data();
        EXPECT_EQ(reply.status(), 200) << head.data();
        EXPECT_EQ(reply.body(), "ab") << head.data();
    }
}

class MCPHTTPReplyGarbage : public testing::TestWithParam<QByteArray> {};

TEST_P(MCPHTTPReplyGarbage, IsMalformed) {
    MCPHTTPReply reply = taken(GetParam() + "\r\n\r\nab");
    EXPECT_EQ(reply.state(), State::malformed);
    reply.take(httpReply("200 OK", "late"));
    EXPECT_EQ(reply.state(), State::malformed);
}

INSTANTIATE_TEST_SUITE_P(
    All, MCPHTTPReplyGarbage,
    testing::Values("", "\r\n", "garbage", "HTTP/1.1", "HTTP/1.1 ", "HTTP/1.1 20", "HTTP/1.1 2000 OK",
                    "HTTP/1.1 20x OK", "HTTP/1.1 -20 OK", "HTTP/1.1  200 OK", "HTTP/2 200 OK",
                    "HTTP/1. 200 OK", "http/1.1 200 OK", "ICY 200 OK", " HTTP/1.1 200 OK", "HTTP/1.1\t200 OK",
                    "HTTP/1.1 000 No", "HTTP/1.1 200 OK\r\nno header", "HTTP/1.1 200 OK\r\n: nameless",
                    "HTTP/1.1 200 OK\r\nContent-Length:", "HTTP/1.1 200 OK\r\nContent-Length: two",
                    "HTTP/1.1 200 OK\r\nContent-Length: -2", "HTTP/1.1 200 OK\r\nContent-Length: +2",
                    "HTTP/1.1 200 OK\r\nContent-Length: 2 2", "HTTP/1.1 200 OK\r\nContent-Length: 0x2",
                    "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999",
                    "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Length: 3"));

TEST(MCPHTTPReplyTest, ABodyWhoseLengthIsNotToldIsNeverWhole) {
    for (const QByteArrayView head : {"HTTP/1.1 200 OK", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked",
                                      "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nTransfer-Encoding: chunked"}) {
        const MCPHTTPReply reply = taken(head.toByteArray() + "\r\n\r\n0\r\n\r\n");
        EXPECT_EQ(reply.state(), State::body);
        EXPECT_EQ(reply.status(), 200);
    }
}

TEST(MCPHTTPReplyTest, AHeadHasALimit) {
    const QByteArray start = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nX: ";
    const QByteArray full = start + QByteArray(MCPHTTPReply::largestHead - start.size(), 'x');
    EXPECT_EQ(taken(full + "\r\n\r\n").state(), State::complete);
    EXPECT_EQ(taken(full + "x\r\n\r\n").state(), State::malformed);
    // Without an end it is not waited for.
    EXPECT_EQ(taken(full).state(), State::head);
    EXPECT_EQ(taken(full + "xxxx").state(), State::malformed);
}

TEST(MCPHTTPReplyTest, ABodyHasNone) {
    const QByteArray body(qsizetype{32} * 1024 * 1024, 'b');
    const QByteArray bytes = httpReply("200 OK", body);
    MCPHTTPReply reply;
    for (qsizetype at = 0; at < bytes.size(); at += 100'000)
        reply.take(QByteArrayView(bytes).sliced(at, std::min<qsizetype>(100'000, bytes.size() - at)));
    EXPECT_EQ(reply.state(), State::complete);
    EXPECT_EQ(reply.body(), body);
}

} // namespace
} // namespace orvane
