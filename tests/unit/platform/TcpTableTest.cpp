#include "OrvanePlatform/posix/TcpTable.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <bit>

namespace orvane::posix::tcp_table {
namespace {

const Address loopback = mappedAddress({127, 0, 0, 1});
const Address ipv6Loopback{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
const Address any = mappedAddress({0, 0, 0, 0});
const Address ipv6Any{};

constexpr quint32 us = 1000;
constexpr quint32 them = 1001;
const End ours{loopback, 40000};
const End theirs{loopback, 47600};

Row listener(const Address& address, quint32 owner, quint16 port = 47600) {
    return {.local = {address, port}, .remote = {}, .listens = true, .owner = owner, .isHeld = true};
}

Row accepted(quint32 owner) {
    return {.local = theirs, .remote = ours, .listens = false, .owner = owner, .isHeld = true};
}

TEST(TcpTable, ReadsWhatTheKernelWrites) {
    if (std::endian::native != std::endian::little) {
        FAIL() << "the texts below are those of a little-endian machine";
    }
    const auto rows = parse("  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   "
                            "uid  timeout inode        \n"
                            "   0: 0100007F:B9F0 00000000:0000 0A 00000000:00000000 00:00000000 00000000  "
                            "1000        0 41611 1 000 100\n"
                            "  12: 0100007F:B9F0 0100007F:9C40 01 00000000:00000000 02:000004A2 00000000  "
                            "1001        0 0 1 000 20 4\n"
                            "   2: 04030201:0016 0100007F:9C40 01 00000000:00000000 02:000004A2 00000000     "
                            "0        0 7 1 000 20 4");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0], (Row{{loopback, 47600}, {any, 0}, true, 1000, true}));
    EXPECT_EQ(rows[1], (Row{theirs, ours, false, 1001, false}));
    EXPECT_EQ(rows[2].local, (End{mappedAddress({1, 2, 3, 4}), 22}));
}

TEST(TcpTable, ReadsTheTableOfIpv6) {
    const auto rows = parse("  sl  local_address                         remote_address                      "
                            "  st tx_queue rx_queue\n"
                            "   0: 00000000000000000000000000000000:B9F0 "
                            "00000000000000000000000000000000:0000 0A 00000000:00000000 "
                            "00:00000000 00000000  1000        0 5 1 0\n"
                            "   1: 00000000000000000000000001000000:B9F0 "
                            "00000000000000000000000000000000:0000 0A 00000000:00000000 "
                            "00:00000000 00000000  1000        0 5 1 0\n"
                            "   2: 0000000000000000FFFF00000100007F:B9F0 "
                            "0000000000000000FFFF00000100007F:9C40 01 00000000:00000000 "
                            "00:00000000 00000000  1001        0 5 1 0\n");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].local, (End{ipv6Any, 47600}));
    EXPECT_EQ(rows[1].local, (End{ipv6Loopback, 47600}));
    EXPECT_EQ(rows[2], accepted(1001));
}

TEST(TcpTable, PassesOverWhatIsNoRow) {
    const QByteArray row = "0: 0100007F:B9F0 00000000:0000 0A 0:0 0:0 0 1000 0 9";
    ASSERT_EQ(parse(row).size(), 1U);
    for (qsizetype size = 0; size < row.size(); ++size)
        EXPECT_TRUE(parse(row.first(size)).empty()) << size;
    for (const char* text : {"", "\n\n", "garbage", "0: 0100007F 00000000:0000 0A 0:0 0:0 0 1000 0 9 1",
                             "0: 0100007F:B9F0 00000000:0000 0A 0:0 0:0 0 nobody 0 9 1",
                             "0: 0100007G:B9F0 00000000:0000 0A 0:0 0:0 0 1000 0 9 1",
                             "0: 0100007F:1B9F0 00000000:0000 0A 0:0 0:0 0 1000 0 9 1",
                             "0: 7F:B9F0 00000000:0000 0A 0:0 0:0 0 1000 0 9 1"})
        EXPECT_TRUE(parse(text).empty()) << text;
}

TEST(TcpTable, KnowsTheLoopbackInterface) {
    EXPECT_TRUE(isLoopback(loopback));
    EXPECT_TRUE(isLoopback(mappedAddress({127, 9, 9, 9})));
    EXPECT_TRUE(isLoopback(ipv6Loopback));
    EXPECT_FALSE(isLoopback(any));
    EXPECT_FALSE(isLoopback(ipv6Any));
    EXPECT_FALSE(isLoopback(mappedAddress({10, 0, 0, 1})));
    EXPECT_FALSE(isLoopback(Address{0x20, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 127, 0, 0, 1}));
}

TEST(TcpTableOwner, IsWhoListensThere) {
    EXPECT_EQ(ownerOfOtherEnd({listener(loopback, us)}, ours, theirs), us);
    EXPECT_EQ(ownerOfOtherEnd({listener(any, us)}, ours, theirs), us);
    EXPECT_EQ(ownerOfOtherEnd({listener(ipv6Any, us)}, ours, theirs), us);
    EXPECT_EQ(ownerOfOtherEnd({listener(ipv6Loopback, us)}, {ipv6Loopback, 1}, {ipv6Loopback, 47600}), us);
    EXPECT_EQ(ownerOfOtherEnd({listener(ipv6Any, us)}, {ipv6Loopback, 1}, {ipv6Loopback, 47600}), us);
}

TEST(TcpTableOwner, IsNobodyWhereNobodyListens) {
    EXPECT_EQ(ownerOfOtherEnd({}, ours, theirs), std::nullopt);
    EXPECT_EQ(ownerOfOtherEnd({listener(loopback, us, 47601), listener(ipv6Loopback, us),
                               listener(mappedAddress({127, 0, 0, 2}), us)},
                              ours, theirs),
              std::nullopt);
    EXPECT_EQ(ownerOfOtherEnd({listener(any, us)}, {ipv6Loopback, 1}, {ipv6Loopback, 47600}), std::nullopt);
}

TEST(TcpTableOwner, IsWhoListensThereBeforeWhoListensEverywhere) {
    EXPECT_EQ(
        ownerOfOtherEnd({listener(any, us), listener(loopback, them), listener(ipv6Any, us)}, ours, theirs),
        them);
    EXPECT_EQ(ownerOfOtherEnd({listener(ipv6Any, them), listener(loopback, us)}, ours, theirs), us);
}

TEST(TcpTableOwner, IsNobodyWhereTheyAreSeveral) {
    EXPECT_EQ(ownerOfOtherEnd({listener(any, us), listener(ipv6Any, them)}, ours, theirs), std::nullopt);
    EXPECT_EQ(ownerOfOtherEnd({listener(loopback, us), listener(loopback, them)}, ours, theirs),
              std::nullopt);
    EXPECT_EQ(ownerOfOtherEnd({listener(loopback, us), listener(loopback, us)}, ours, theirs), us);
}

TEST(TcpTableOwner, IsWhoHasAcceptedTheConnectionWhoeverListensByNow) {
    EXPECT_EQ(ownerOfOtherEnd({listener(loopback, us), accepted(them)}, ours, theirs), them);
    EXPECT_EQ(ownerOfOtherEnd({accepted(us), listener(loopback, them)}, ours, theirs), us);
    EXPECT_EQ(ownerOfOtherEnd({accepted(us)}, ours, theirs), us);
}

TEST(TcpTableOwner, OtherConnectionsTellNothing) {
    Row waiting = accepted(0);
    waiting.isHeld = false;
    EXPECT_EQ(ownerOfOtherEnd({waiting, listener(loopback, us)}, ours, theirs), us);
    EXPECT_EQ(ownerOfOtherEnd({waiting}, ours, theirs), std::nullopt);
    Row otherClient = accepted(them);
    otherClient.remote.port = 40001;
    // Our own end of it is a row of its own.
    const Row ourEnd{.local = ours, .remote = theirs, .listens = false, .owner = us, .isHeld = true};
    EXPECT_EQ(ownerOfOtherEnd({otherClient, ourEnd}, ours, theirs), std::nullopt);
}

} // namespace
} // namespace orvane::posix::tcp_table
