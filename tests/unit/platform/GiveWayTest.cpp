#include "OrvanePlatform/posix/GiveWay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

int niceValue() {
    return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
}

TEST(GiveWayTest, TheCallingThreadGivesWayAndNoOther) {
    const int before = niceValue();
    int after = before;
    std::thread([&after] {
        giveWay();
        after = niceValue();
    }).join();
    EXPECT_EQ(after, std::max(before, 10));
    EXPECT_EQ(niceValue(), before);
}

TEST(GiveWayTest, WorkGivesWayAndWhoeverWaitsForItDoesNot) {
    const int before = niceValue();
    int during = before;
    std::thread::id worker;
    runGivingWay([&] {
        during = niceValue();
        worker = std::this_thread::get_id();
    });
    EXPECT_EQ(during, std::max(before, 10));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(niceValue(), before);
    EXPECT_THROW(runGivingWay([] { throw std::runtime_error("refused"); }), std::runtime_error);
}

} // namespace
} // namespace orvane::posix
