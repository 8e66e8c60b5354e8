#include "OrvaneCore/mcp/http/MCPHTTPResponse.h"

#include <gtest/gtest.h>

#include <utility>

namespace orvane {
namespace {

TEST(MCPHTTPResponseTest, WritesHeadAndBody) {
    EXPECT_EQ(MCPHTTPResponse::json("{}").bytes().toStdString(),
              "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n"
              "Connection: close\r\n\r\n{}");
    EXPECT_EQ(MCPHTTPResponse::plain(202, {}).bytes().toStdString(),
              "HTTP/1.1 202 Accepted\r\nContent-Type: text/plain\r\nContent-Length: 0\r\n"
              "Connection: close\r\n\r\n");
}

TEST(MCPHTTPResponseTest, CountsBytes) {
    EXPECT_TRUE(MCPHTTPResponse::plain(200, "gr\xc3\xbc\xc3\x9f").bytes().contains("Content-Length: 6\r\n"));
}

TEST(MCPHTTPResponseTest, NamesEachStatus) {
    for (const auto& [status, text] :
         {std::pair(200, "OK"), std::pair(202, "Accepted"), std::pair(400, "Bad Request"),
          std::pair(401, "Unauthorized"), std::pair(403, "Forbidden"), std::pair(404, "Not Found"),
          std::pair(413, "Payload Too Large"), std::pair(500, "Error"), std::pair(201, "Error")})
        EXPECT_EQ(MCPHTTPResponse::statusText(status), QByteArrayView(text)) << status;
}

} // namespace
} // namespace orvane
