#include "OrvanePlatform/ocr/reading/FairPool.h"

#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <stdexcept>

namespace orvane::ocr {
namespace {

using Pool = FairPool<int>;

bool never() {
    return false;
}

bool always() {
    return true;
}

class FairPoolTest : public testing::Test {
protected:
    int m_made = 0;
    Pool m_pool{2, [this] { return std::make_unique<int>(++m_made); }};
};

TEST_F(FairPoolTest, MakesWhatIsWantedAtOnceAndNoMore) {
    for (int round = 0; round < 3; ++round) {
        const Pool::Loan one = m_pool.take(never);
        EXPECT_EQ(*one, 1);
    }
    const Pool::Loan one = m_pool.take(never);
    const Pool::Loan two = m_pool.take(never);
    EXPECT_EQ(*one, 1);
    EXPECT_EQ(*two, 2);
    EXPECT_EQ(m_made, 2);
}

TEST_F(FairPoolTest, GivesNoneWhenTimeIsUpBeforeOneIsFree) {
    const Pool::Loan one = m_pool.take(always);
    const Pool::Loan two = m_pool.take(always);
    EXPECT_TRUE(one);
    EXPECT_TRUE(two);
    EXPECT_FALSE(m_pool.take(always));
}

TEST_F(FairPoolTest, WhoGaveUpStandsInNobodysWay) {
    const Pool::Loan one = m_pool.take(never);
    {
        const Pool::Loan two = m_pool.take(never);
        EXPECT_FALSE(m_pool.take(always));
    }
    EXPECT_TRUE(m_pool.take(never));
}

TEST_F(FairPoolTest, ServesInTheOrderOfComing) {
    std::optional<Pool::Loan> one(m_pool.take(never));
    const Pool::Loan two = m_pool.take(never);
    std::atomic<int> asked = 0;
    std::atomic<int> served = 0;
    const auto waitAndCount = [&](std::atomic<int>& place, std::atomic<int>& looks) {
        const Pool::Loan loan = m_pool.take([&looks] {
            ++looks;
            return false;
        });
        place = ++served;
    };
    std::atomic<int> firstPlace = 0;
    std::atomic<int> secondPlace = 0;
    const auto first = std::async(std::launch::async, [&] { waitAndCount(firstPlace, asked); });
    // It asks whether time is up while it waits, so by then it has its place in the row.
    ASSERT_TRUE(test::eventually([&] { return asked > 0; }));
    std::atomic<int> askedBySecond = 0;
    const auto second = std::async(std::launch::async, [&] { waitAndCount(secondPlace, askedBySecond); });
    ASSERT_TRUE(test::eventually([&] { return askedBySecond > 0; }));

    one.reset();
    first.wait();
    second.wait();

    EXPECT_EQ(firstPlace, 1);
    EXPECT_EQ(secondPlace, 2);
}

TEST(FairPoolFailure, WhatCouldNotBeMadeIsTriedAgain) {
    int tries = 0;
    Pool pool(1, [&tries]() -> std::unique_ptr<int> {
        if (++tries == 1)
            throw std::runtime_error("no data");
        return std::make_unique<int>(tries);
    });

    EXPECT_THROW(pool.take(never), std::runtime_error);
    EXPECT_EQ(*pool.take(never), 2);
}

} // namespace
} // namespace orvane::ocr
