#pragma once

#include "OrvaneCore/base/Clock.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace orvane::test {

/// A clock that a test moves. It serves one sleeper, and a test that moves it waits until the sleeper has
/// done what it woke for and sleeps again; so everything happens in one order, and nothing takes time.
class FakeClock final : public Clock {
public:
    explicit FakeClock(QDateTime begin = {{2026, 3, 4}, {5, 6, 7}, Qt::UTC})
        : m_begin(std::move(begin)) {}

    QDateTime now() override {
        const std::scoped_lock lock(m_mutex);
        return m_begin.addMSecs(std::chrono::duration_cast<std::chrono::milliseconds>(m_now).count());
    }

    Monotonic monotonic() override {
        const std::scoped_lock lock(m_mutex);
        return m_now;
    }

    bool sleepUntil(Monotonic moment, const std::stop_token& stop) override {
        std::unique_lock lock(m_mutex);
        m_wake = moment;
        m_asleep = true;
        ++m_sleeps;
        m_changed.notify_all();
        const bool due = m_changed.wait(lock, stop, [&] { return m_now >= moment; });
        m_asleep = false;
        return due && !stop.stop_requested();
    }

    /// Moves time on, from one moment at which the sleeper is due to the next.
    void advance(std::chrono::milliseconds time) {
        std::unique_lock lock(m_mutex);
        const Monotonic end = m_now + time;
        while (m_asleep && m_wake <= end) {
            m_now = std::max(m_now, m_wake);
            const int before = m_sleeps;
            m_changed.notify_all();
            await(lock, [&] { return m_sleeps > before; });
        }
        m_now = end;
    }

    /// Moves time on and waits for nobody.
    void jump(std::chrono::milliseconds time) {
        const std::scoped_lock lock(m_mutex);
        m_now += time;
        m_changed.notify_all();
    }

    void awaitSleeper() {
        std::unique_lock lock(m_mutex);
        await(lock, [&] { return m_asleep; });
    }

    int sleeps() {
        const std::scoped_lock lock(m_mutex);
        return m_sleeps;
    }

private:
    template <class Condition>
    void await(std::unique_lock<std::mutex>& lock, Condition condition) {
        if (!m_changed.wait_for(lock, std::chrono::seconds(20), condition))
            throw std::runtime_error("nobody sleeps on this clock");
    }

    QDateTime m_begin;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    Monotonic m_now{0};
    Monotonic m_wake{0};
    bool m_asleep = false;
    int m_sleeps = 0;
};

} // namespace orvane::test
