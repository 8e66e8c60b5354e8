#include "OrvaneCore/mcp/MCPReply.h"

#include "OrvaneCore/base/MessageError.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

TEST(MCPReply, HasItsKeysInTheirOrderAndTheIdAsItIs) {
    EXPECT_EQ(MCPReply::result("1.50", {}).serialised(), R"({"id":1.50,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(MCPReply::result("null", {{u"b"_s, 1}, {u"a"_s, u"}"_s}}).serialised(),
              R"({"id":null,"jsonrpc":"2.0","result":{"a":"}","b":1}})");
    EXPECT_EQ(MCPReply::error("\"x\"", -1, u"no \"y\""_s).serialised(),
              R"({"error":{"code":-1,"message":"no \"y\""},"id":"x","jsonrpc":"2.0"})");
}

TEST(MCPReply, WhatJsonCannotExpressIsThrown) {
    const MCPReply reply = MCPReply::result("1", {{u"x"_s, std::numeric_limits<double>::quiet_NaN()}});
    EXPECT_THROW(reply.serialised(), MessageError);
}

} // namespace
} // namespace orvane
