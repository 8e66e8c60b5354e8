#include "OrvaneCore/mcp/MCPEndpointInfo.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

const MCPEndpointInfo sample{u"http://127.0.0.1:47603/mcp"_s, 47603, QString(64, u'a'), 4242, u"0.1.0"_s,
                             u"2026-11-15T09:26:11Z"_s};

QByteArray sampleText() {
    return R"({
    "pid": 4242,
    "port": 47603,
    "startedAt": "2026-11-15T09:26:11Z",
    "token": ")" +
           QByteArray(64, 'a') + R"(",
    "url": "http://127.0.0.1:47603/mcp",
    "version": "0.1.0"
}
)";
}

TEST(MCPEndpointInfoTest, IsWrittenForPeopleWithItsKeysInOrder) {
    EXPECT_EQ(sample.encoded(), sampleText());
}

TEST(MCPEndpointInfoTest, ComesBackAsItWas) {
    EXPECT_EQ(MCPEndpointInfo::decoded(sample.encoded()), sample);

    MCPEndpointInfo odd = sample;
    odd.token = u"\"\\\n日本"_s;
    odd.port = -1;
    odd.pid = std::numeric_limits<qint32>::min();
    EXPECT_EQ(MCPEndpointInfo::decoded(odd.encoded()), odd);
}

TEST(MCPEndpointInfoTest, DescribesAHostOfThisVersion) {
    const QDateTime start(QDate(2026, 11, 15), QTime(10, 26, 11, 482), Qt::OffsetFromUTC, 3600);
    EXPECT_EQ(MCPEndpointInfo::ofHost(47603, QString(64, u'a'), 4242, start), sample);
}

TEST(MCPEndpointInfoTest, IgnoresFurtherKeysAndTheLayout) {
    const QByteArray text = R"({"version":"0.1.0","url":"http://127.0.0.1:47603/mcp","more":[1],"pid":4242,)"
                            R"("startedAt":"2026-11-15T09:26:11Z","port":47603.0,"token":")" +
                            QByteArray(64, 'a') + "\"}";
    EXPECT_EQ(MCPEndpointInfo::decoded(text), sample);
}

struct Damage {
    QByteArray from;
    QByteArray to;
};

class MCPEndpointInfoDamage : public testing::TestWithParam<Damage> {};

TEST_P(MCPEndpointInfoDamage, MakesItNothing) {
    QByteArray text = sampleText();
    ASSERT_TRUE(text.contains(GetParam().from));
    text.replace(GetParam().from, GetParam().to);
    EXPECT_EQ(MCPEndpointInfo::decoded(text), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    All, MCPEndpointInfoDamage,
    testing::Values(Damage{"\"pid\"", "\"Pid\""}, Damage{"\"port\"", "\"p\""},
                    Damage{"\"startedAt\"", "\"started\""}, Damage{"\"token\"", "\"t\""},
                    Damage{"\"url\"", "\"u\""}, Damage{"\"version\"", "\"v\""}, Damage{"4242", "\"4242\""},
                    Damage{"4242", "4242.5"}, Damage{"4242", "2147483648"}, Damage{"4242", "null"},
                    Damage{"47603,", "\"47603\","}, Damage{"47603,", "1e99,"},
                    Damage{"47603,", "4294967296,"}, Damage{"47603,", "true,"}, Damage{"47603,", "0x1,"},
                    Damage{"\"2026-11-15T09:26:11Z\"", "1763198771"}, Damage{"\"0.1.0\"", "0.1"},
                    Damage{"\"http://127.0.0.1:47603/mcp\"", "[]"}, Damage{"\"http", "\"\xff"},
                    Damage{"\n}", "\n"}, Damage{"\n}", "\n} x"}));

TEST(MCPEndpointInfoTest, IsNothingInOtherText) {
    for (const QByteArray& text :
         {QByteArray(), QByteArray("{}"), QByteArray("[]"), QByteArray("null"), QByteArray("garbage"),
          QByteArray(1000, '\0'), QByteArray(100'000, '['), "[" + sampleText() + "]"})
        EXPECT_EQ(MCPEndpointInfo::decoded(text), std::nullopt) << text.left(20).constData();
}

} // namespace
} // namespace orvane
