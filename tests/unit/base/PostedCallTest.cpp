#include "OrvaneCore/base/PostedCall.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <string>

namespace orvane {
namespace {

class PostedCallTest : public testing::Test {
private:
    int m_argumentCount = 0;
    // Without one no event reaches its object.
    QCoreApplication m_application{m_argumentCount, nullptr};
};

TEST_F(PostedCallTest, IsMadeByTheEventLoopInTheOrderOfPosting) {
    CallReceiver receiver;
    std::string calls;
    receiver.post([&] { calls += 'a'; });
    receiver.post([&] { calls += 'b'; });
    EXPECT_EQ(calls, "");
    QCoreApplication::sendPostedEvents(&receiver);
    EXPECT_EQ(calls, "ab");
    QCoreApplication::sendPostedEvents(&receiver);
    EXPECT_EQ(calls, "ab");
}

TEST_F(PostedCallTest, IsDroppedWithItsReceiver) {
    int calls = 0;
    {
        CallReceiver receiver;
        receiver.post([&] { ++calls; });
    }
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(calls, 0);
}

TEST_F(PostedCallTest, IsWhatOtherEventsAreNot) {
    QEvent other(static_cast<QEvent::Type>(QEvent::User + 1));
    PostedCall::run(other);
    int calls = 0;
    CallReceiver receiver;
    receiver.post([&] { ++calls; });
    QCoreApplication::sendPostedEvents(&receiver);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace orvane
