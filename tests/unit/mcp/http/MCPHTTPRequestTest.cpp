#include "OrvaneCore/mcp/http/MCPHTTPRequest.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orvane {
namespace {

QByteArray valueOrNone(const MCPHTTPRequest& request, QByteArrayView name) {
    const std::optional<QByteArrayView> value = request.header(name);
    return value ? value->toByteArray() : QByteArray("(none)");
}

TEST(MCPHTTPRequestTest, ReadsAllParts) {
    const auto request = MCPHTTPRequest::parse("POST /mcp?a=b%20c HTTP/1.1\r\n"
                                               "Host: 127.0.0.1:47600\r\n"
                                               "Content-Length: 3\r\n"
                                               "\r\n"
                                               "abc");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->method, "POST");
    EXPECT_EQ(request->path, "/mcp?a=b%20c");
    EXPECT_EQ(request->header("host"), QByteArrayView("127.0.0.1:47600"));
    EXPECT_EQ(request->contentLength(), 3);
    EXPECT_EQ(request->body, "abc");
}

TEST(MCPHTTPRequestTest, KeepsAllThatFollowsTheHead) {
    const auto request =
        MCPHTTPRequest::parse("POST /mcp HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}GET / HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->body, "{}GET / HTTP/1.1\r\n\r\n");
}

TEST(MCPHTTPRequestTest, TheHeadEndsAtTheFirstEmptyLine) {
    const auto request = MCPHTTPRequest::parse("POST / HTTP/1.1\r\nA: 1\r\n\r\nB: 2\r\n\r\n\xff");
    ASSERT_TRUE(request);
    EXPECT_EQ(valueOrNone(*request, "a"), "1");
    EXPECT_EQ(valueOrNone(*request, "b"), "(none)");
    EXPECT_EQ(request->body, "B: 2\r\n\r\n\xff");
}

struct RequestLineCase {
    QByteArray line;
    /// "method path", empty where there is no request.
    QByteArray read;
};

std::ostream& operator<<(std::ostream& out, const RequestLineCase& row) {
    return out << '"' << row.line.toStdString() << '"';
}

class RequestLineTest : public testing::TestWithParam<RequestLineCase> {};

TEST_P(RequestLineTest, NeedsAMethodAPathAndAVersion) {
    const auto request = MCPHTTPRequest::parse(GetParam().line + "\r\nA: b\r\n\r\n");
    EXPECT_EQ(request ? request->method + ' ' + request->path : QByteArray(), GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, RequestLineTest,
    testing::Values(RequestLineCase{"GET /health HTTP/1.1", "GET /health"},
                    RequestLineCase{"GET /health HTTP/1.0", "GET /health"},
                    RequestLineCase{"GET /health HTTP/", "GET /health"},
                    RequestLineCase{"post /MCP HTTP/9.9junk", "post /MCP"},
                    RequestLineCase{"  GET   /health   HTTP/1.1  ", "GET /health"},
                    RequestLineCase{"GET /health HTTP/1.1 and more", "GET /health"},
                    RequestLineCase{"G\tET /a\tb HTTP/1.1", "G\tET /a\tb"},
                    RequestLineCase{"GR\xc3\x9cN /\xe2\x82\xac HTTP/1.1", "GR\xc3\x9cN /\xe2\x82\xac"},

                    RequestLineCase{"", ""}, RequestLineCase{"   ", ""}, RequestLineCase{"GET", ""},
                    RequestLineCase{"GET /health", ""}, RequestLineCase{"GET HTTP/1.1", ""},
                    RequestLineCase{"GET /health http/1.1", ""}, RequestLineCase{"GET /health HTTPS/1.1", ""},
                    RequestLineCase{"GET /health HTTP", ""}, RequestLineCase{"GET\t/health\tHTTP/1.1", ""},
                    RequestLineCase{"GET / x HTTP/1.1", ""}, RequestLineCase{"GET / \xffHTTP/1.1", ""}));

struct HeadCase {
    QByteArray data;
    bool complete;
};

class HeadEndTest : public testing::TestWithParam<HeadCase> {};

TEST_P(HeadEndTest, WantsAnEmptyLine) {
    EXPECT_EQ(MCPHTTPRequest::parse(GetParam().data).has_value(), GetParam().complete)
        << GetParam().data.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Heads, HeadEndTest,
                         testing::Values(HeadCase{"GET / HTTP/1.1\r\n\r\n", true},
                                         HeadCase{"GET / HTTP/1.1\r\nA: b\r\n\r\n", true},
                                         HeadCase{"", false}, HeadCase{"GET / HTTP/1.1\r\n\r", false},
                                         HeadCase{"GET / HTTP/1.1\n\n", false},
                                         HeadCase{"GET / HTTP/1.1\r\n\n\r\n", false},
                                         HeadCase{"\r\n\r\n", false},
                                         // An empty line before the request line is the head's end.
                                         HeadCase{"\r\n\r\nGET / HTTP/1.1\r\n\r\n", false},
                                         HeadCase{"\r\nGET / HTTP/1.1\r\n\r\n", false},
                                         HeadCase{"GET / HTTP/1.1\r\nA: \xff\r\n\r\n", false},
                                         HeadCase{"GET / HTTP/1.1\r\nA: \xc3\xa9\r\n\r\n", true}));

TEST(MCPHTTPRequestTest, ReadsHeaders) {
    const auto request = MCPHTTPRequest::parse(QByteArray("GET / HTTP/1.1\r\n"
                                                          "  Padded \t:  a value \t\r\n"
                                                          "UPPER:UP\r\n"
                                                          "lower:low\r\n"
                                                          "colons: http://[::1]:80\r\n"
                                                          "empty:\r\n"
                                                          ": nameless\r\n"
                                                          "no colon here\r\n"
                                                          "Twice: first\r\n"
                                                          "tWICE: second\r\n"
                                                          "folded: one\r\n"
                                                          " two: three\r\n"
                                                          "line feed: a\n\r\n"
                                                          "Authorization : Bearer x\r\n"
                                                          "\r\n"));
    ASSERT_TRUE(request);
    for (const auto& [name, value] : {
             std::pair("padded", "a value"),
             std::pair("Upper", "UP"),
             std::pair("LOWER", "low"),
             std::pair("colons", "http://[::1]:80"),
             std::pair("empty", ""),
             std::pair("", "nameless"),
             std::pair("no colon here", "(none)"),
             std::pair("twice", "second"),
             std::pair("folded", "one"),
             std::pair("two", "three"),
             std::pair("line feed", "a"),
             std::pair("authorization", "Bearer x"),
             std::pair("GET / HTTP/1.1", "(none)"),
             std::pair("absent", "(none)"),
         })
        EXPECT_EQ(valueOrNone(*request, name).toStdString(), value) << name;
}

TEST(MCPHTTPRequestTest, TheRequestLineIsNoHeader) {
    const auto request = MCPHTTPRequest::parse("GET http://x HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->path, "http://x");
    EXPECT_EQ(request->header("get http"), std::nullopt);
}

struct LengthCase {
    QByteArray value;
    qint64 length;
};

class ContentLengthTest : public testing::TestWithParam<LengthCase> {};

TEST_P(ContentLengthTest, IsADecimalNumberOrNothing) {
    const auto request =
        MCPHTTPRequest::parse("POST / HTTP/1.1\r\nContent-Length: " + GetParam().value + "\r\n\r\n");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->contentLength(), GetParam().length) << GetParam().value.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Lengths, ContentLengthTest,
                         testing::Values(LengthCase{"0", 0}, LengthCase{"12", 12}, LengthCase{"007", 7},
                                         LengthCase{"  8 \t", 8}, LengthCase{"+9", 9}, LengthCase{"-5", -5},
                                         LengthCase{"9223372036854775807", 9223372036854775807},
                                         LengthCase{"", 0}, LengthCase{"9223372036854775808", 0},
                                         LengthCase{"abc", 0}, LengthCase{"12abc", 0}, LengthCase{"1 2", 0},
                                         LengthCase{"1,2", 0}, LengthCase{"1.0", 0}, LengthCase{"1e3", 0},
                                         LengthCase{"0x10", 0}, LengthCase{"+", 0}, LengthCase{"-", 0},
                                         LengthCase{"+-5", 0}, LengthCase{"++5", 0},
                                         LengthCase{QByteArray("5\0", 2), 0},
                                         LengthCase{"\xd9\xa5", 0} /* Arabic-Indic five */));

TEST(MCPHTTPRequestTest, WithoutAContentLengthItIsZero) {
    EXPECT_EQ(MCPHTTPRequest::parse("GET / HTTP/1.1\r\n\r\n")->contentLength(), 0);
}

TEST(MCPHTTPRequestTest, TheLastContentLengthCounts) {
    EXPECT_EQ(MCPHTTPRequest::parse("GET / HTTP/1.1\r\nContent-Length: 5\r\ncontent-length: 7\r\n\r\n")
                  ->contentLength(),
              7);
}

} // namespace
} // namespace orvane
