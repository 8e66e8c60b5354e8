#pragma once

#include <functional>
#include <map>
#include <memory>

namespace orvane {

/// Those who want to know when something has changed. One thread. What it calls may add and end
/// subscriptions, its own among them.
class Observers {
    using Calls = std::map<int, std::function<void()>>;

public:
    /// Lasts as long as this object lives; the observed may go first.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Subscription&& other) noexcept;
        Subscription& operator=(Subscription&& other) noexcept;
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;
        ~Subscription();

    private:
        friend class Observers;
        Subscription(std::weak_ptr<Calls> calls, int number);
        void end();

        std::weak_ptr<Calls> m_calls;
        int m_number = 0;
    };

    [[nodiscard]] Subscription add(std::function<void()> call);

    /// Calls all, in the order in which they came.
    void notify() const;

private:
    std::shared_ptr<Calls> m_calls = std::make_shared<Calls>();
    int m_next = 0;
};

} // namespace orvane
