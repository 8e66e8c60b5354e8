#include "OrvaneCore/marking/editing/EventRefresh.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

class EventRefreshTest : public testing::Test {
protected:
    int refreshes = 0;
    EventRefresh refresh{[this] { ++refreshes; }};
};

} // namespace

TEST_F(EventRefreshTest, OutsideOfEventsEveryRequestIsMetAtOnce) {
    refresh.request();
    EXPECT_EQ(refreshes, 1);
    refresh.request();
    EXPECT_EQ(refreshes, 2);
}

TEST_F(EventRefreshTest, AnEventIsFollowedByOneHoweverMuchItChanges) {
    for (const int requests : {0, 1, 5}) {
        refreshes = 0;
        {
            const EventRefresh::Event event(refresh);
            for (int i = 0; i < requests; ++i)
                refresh.request();
            EXPECT_EQ(refreshes, 0);
        }
        EXPECT_EQ(refreshes, 1);
    }
    refresh.request();
    EXPECT_EQ(refreshes, 2);
}

TEST_F(EventRefreshTest, AnEventWithinAnotherIsPartOfIt) {
    {
        const EventRefresh::Event outer(refresh);
        {
            const EventRefresh::Event inner(refresh);
            refresh.request();
        }
        EXPECT_EQ(refreshes, 0);
    }
    EXPECT_EQ(refreshes, 1);
}

} // namespace orvane
