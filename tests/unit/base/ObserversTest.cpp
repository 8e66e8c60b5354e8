#include "OrvaneCore/base/Observers.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

using Subscription = Observers::Subscription;

TEST(Observers, AreCalledInTheOrderInWhichTheyCame) {
    Observers observers;
    std::string calls;
    const Subscription first = observers.add([&] { calls += 'a'; });
    const Subscription second = observers.add([&] { calls += 'b'; });
    observers.notify();
    observers.notify();
    EXPECT_EQ(calls, "abab");
}

TEST(Observers, AreNotCalledAfterTheirSubscription) {
    Observers observers;
    int calls = 0;
    {
        const Subscription subscription = observers.add([&] { ++calls; });
        observers.notify();
    }
    observers.notify();
    EXPECT_EQ(calls, 1);
}

TEST(Observers, FollowAMovedSubscription) {
    Observers observers;
    int first = 0;
    int second = 0;
    Subscription kept = observers.add([&] { ++first; });
    kept = observers.add([&] { ++second; });
    std::optional<Subscription> moved = std::move(kept);
    observers.notify();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    moved.reset();
    observers.notify();
    EXPECT_EQ(second, 1);
}

TEST(Observers, MayEndAndAddSubscriptionsWhileTheyAreCalled) {
    Observers observers;
    std::string calls;
    std::optional<Subscription> own;
    std::optional<Subscription> other;
    Subscription added;
    own = observers.add([&] {
        calls += 'a';
        own.reset();
        other.reset();
        added = observers.add([&] { calls += 'c'; });
    });
    other = observers.add([&] { calls += 'b'; });
    observers.notify();
    EXPECT_EQ(calls, "a");
    observers.notify();
    EXPECT_EQ(calls, "ac");
}

TEST(Observers, ThatEndOneAnotherDoNotKeepTheNextFromItsCall) {
    Observers observers;
    std::string calls;
    std::optional<Subscription> second;
    const Subscription first = observers.add([&] { second.reset(); });
    second = observers.add([&] { calls += 'b'; });
    const Subscription third = observers.add([&] { calls += 'c'; });
    observers.notify();
    EXPECT_EQ(calls, "c");
}

TEST(Observers, MayGoBeforeTheirSubscriptionsAndWhileTheyCall) {
    std::optional<Observers> observers(std::in_place);
    int calls = 0;
    const Subscription first = observers->add([&] {
        ++calls;
        observers.reset();
    });
    const Subscription second = observers->add([&] { ++calls; });
    observers->notify();
    EXPECT_EQ(calls, 2);
}

} // namespace orvane
