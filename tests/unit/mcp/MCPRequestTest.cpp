#include "OrvaneCore/mcp/MCPRequest.h"

#include "OrvaneCore/base/MessageError.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

TEST(MCPRequest, KeepsTheIdAsTextAndAllMembersAsValues) {
    const MCPRequest request = MCPRequest::parse(R"({"method":"ping","id": 1.50 ,"params":{"a":[2]}})");
    EXPECT_EQ(request.id, "1.50");
    EXPECT_EQ(request.message[u"method"_s], u"ping"_s);
    EXPECT_EQ(request.message[u"id"_s], 1.5);
    EXPECT_EQ(request.message[u"params"_s][u"a"_s][0], 2);
}

TEST(MCPRequest, WithoutAnIdHasNull) {
    EXPECT_EQ(MCPRequest::parse(R"({"method":"ping"})").id, "null");
    EXPECT_EQ(MCPRequest::parse(R"({"ID":1,"i":{"id":2}})").id, "null");
    EXPECT_EQ(MCPRequest::parse(R"([{"id":1}])").id, "null");
    EXPECT_TRUE(MCPRequest::parse(R"([{"id":1}])").message.isEmpty());
}

TEST(MCPRequest, TakesAnIdOfAnyMagnitudeAndWhatFollowsIt) {
    for (const QByteArray id : {"1e400", "-1e400", "1e-400", "1E+99999999999999999999"}) {
        const MCPRequest request = MCPRequest::parse("{\"a\":1,\"id\":" + id + ",\"b\":2}");
        EXPECT_EQ(request.id, id);
        EXPECT_EQ(request.message[u"a"_s], 1);
        EXPECT_EQ(request.message[u"b"_s], 2);
    }
}

TEST(MCPRequest, OtherNumbersOfThatMagnitudeAreRefused) {
    EXPECT_THROW(MCPRequest::parse(R"({"id":1,"a":1e400})"), MessageError);
    EXPECT_THROW(MCPRequest::parse(R"({"id":1e400,"id":1})"), MessageError);
    EXPECT_THROW(MCPRequest::parse(R"({"id":[1e400]})"), MessageError);
}

TEST(MCPRequest, OfSeveralIdsTheLastCountsForBoth) {
    const MCPRequest request = MCPRequest::parse(R"({"id":1,"\u0069\u0064":2.0})");
    EXPECT_EQ(request.id, "2.0");
    EXPECT_EQ(request.message[u"id"_s], 2);
}

TEST(MCPRequest, AnIdThatIsNoNumberIsWrittenAnew) {
    EXPECT_EQ(MCPRequest::parse("{\r\n \"id\" :\t{\n \"b c\" : [ 1 ,\n\"\\\" \" ],\"a\":2\n }\n}").id,
              R"({"a":2,"b c":[1,"\" "]})");
    EXPECT_EQ(MCPRequest::parse(R"({"id":"\u0041\/"})").id, R"("A/")");
    EXPECT_EQ(MCPRequest::parse(R"({"id": true })").id, "true");
    EXPECT_EQ(MCPRequest::parse(R"({"id":null})").id, "null");
}

} // namespace
} // namespace orvane
