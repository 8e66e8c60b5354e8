#include "OrvanePlatform/posix/GiveWay.h"

#include <gtest/gtest.h>

#include <algorithm>
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

} // namespace
} // namespace orvane::posix
