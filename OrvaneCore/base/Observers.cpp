#include "OrvaneCore/base/Observers.h"

#include <utility>
#include <vector>

namespace orvane {

Observers::Subscription::Subscription(std::weak_ptr<Calls> calls, int number)
    : m_calls(std::move(calls))
    , m_number(number) {}

Observers::Subscription::Subscription(Subscription&& other) noexcept
    : m_calls(std::exchange(other.m_calls, {}))
    , m_number(other.m_number) {}

Observers::Subscription& Observers::Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        end();
        m_calls = std::exchange(other.m_calls, {});
        m_number = other.m_number;
    }
    return *this;
}

Observers::Subscription::~Subscription() {
    end();
}

void Observers::Subscription::end() {
    if (const auto calls = m_calls.lock())
        calls->erase(m_number);
}

Observers::Subscription Observers::add(std::function<void()> call) {
    const int number = m_next++;
    m_calls->emplace(number, std::move(call));
    return {m_calls, number};
}

void Observers::notify() const {
    // A call may end others, and even this object.
    const std::shared_ptr<Calls> calls = m_calls;
    std::vector<int> numbers;
    numbers.reserve(calls->size());
    for (const auto& [number, call] : *calls)
        numbers.push_back(number);
    for (const int number : numbers) {
        const auto found = calls->find(number);
        if (found == calls->end())
            continue;
        const auto call = found->second;
        call();
    }
}

} // namespace orvane
