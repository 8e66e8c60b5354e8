#include "OrvanePlatform/media/video/FrameQueue.h"

#include <gtest/gtest.h>

#include <thread>

namespace orvane::media {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

TimedFrame frameAt(int time) {
    return {QImage(2, 2, QImage::Format_RGB32), microseconds(time)};
}

TEST(FrameQueueTest, GivesFramesInTheirOrder) {
    FrameQueue queue(4);
    EXPECT_TRUE(queue.push(frameAt(1)));
    EXPECT_TRUE(queue.push(frameAt(2)));

    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(1));
    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(2));
    EXPECT_FALSE(queue.take(milliseconds(0)));
}

TEST(FrameQueueTest, TakesNoMoreThanItsCapacity) {
    FrameQueue queue(2);
    EXPECT_TRUE(queue.push(frameAt(1)));
    EXPECT_TRUE(queue.push(frameAt(2)));
    EXPECT_FALSE(queue.push(frameAt(3)));

    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(1));
    EXPECT_TRUE(queue.push(frameAt(4)));
    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(2));
    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(4));
}

TEST(FrameQueueTest, SharesThePixels) {
    FrameQueue queue(1);
    const TimedFrame frame = frameAt(0);
    queue.push(frame);
    EXPECT_EQ(queue.take(milliseconds(0))->picture.constBits(), frame.picture.constBits());
}

TEST(FrameQueueTest, IsOverWhenItIsClosedAndEmpty) {
    FrameQueue queue(2);
    EXPECT_FALSE(queue.isOver());
    queue.push(frameAt(1));
    queue.close();
    EXPECT_FALSE(queue.isOver());
    EXPECT_TRUE(queue.take(milliseconds(0)));
    EXPECT_TRUE(queue.isOver());
}

TEST(FrameQueueTest, ClearedHasRoomAgain) {
    FrameQueue queue(1);
    queue.push(frameAt(1));
    queue.clear();
    EXPECT_TRUE(queue.push(frameAt(2)));
    EXPECT_EQ(queue.take(milliseconds(0))->time, microseconds(2));
}

TEST(FrameQueueTest, WhoWaitsIsWokenByAFrameAndByTheEnd) {
    FrameQueue queue(1);
    std::optional<TimedFrame> first;
    std::optional<TimedFrame> second;
    std::thread taker([&] {
        first = queue.take(std::chrono::minutes(10));
        second = queue.take(std::chrono::minutes(10));
    });
    EXPECT_TRUE(queue.push(frameAt(7)));
    queue.close();
    taker.join();

    ASSERT_TRUE(first);
    EXPECT_EQ(first->time, microseconds(7));
    EXPECT_FALSE(second);
}

} // namespace
} // namespace orvane::media
