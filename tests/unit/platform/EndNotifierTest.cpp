#include "OrvanePlatform/posix/EndNotifier.h"

#include "tests/support/EventLoop.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>

namespace orvane::posix {
namespace {

using test::eventuallyInLoop;

class EndNotifierTest : public testing::TestWithParam<int> {
private:
    int m_argc = 1;
    char m_name[5] = "test";
    char* m_argv[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argc, m_argv};
};

TEST_P(EndNotifierTest, CallsOnceFromTheLoop) {
    int calls = 0;
    const EndNotifier notifier([&] { ++calls; });
    EXPECT_FALSE(eventuallyInLoop([&] { return calls > 0; }, 50));
    ::raise(GetParam());
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(eventuallyInLoop([&] { return calls == 1; }));
    EXPECT_FALSE(eventuallyInLoop([&] { return calls > 1; }, 50));
}

TEST_P(EndNotifierTest, LetsTheNextEndTheProcess) {
    EXPECT_EXIT(
        {
            const EndNotifier notifier([] {});
            ::raise(GetParam());
            QCoreApplication::processEvents();
            ::raise(GetParam());
        },
        testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(All, EndNotifierTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

} // namespace
} // namespace orvane::posix
