#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace orvane::ocr {

/// A bounded number of things that are made when they are first wanted, one user each at a time. Who came
/// first is served first, so that many short uses of one side leave the others their share. Any thread.
template <class Thing>
class FairPool {
public:
    using Make = std::function<std::unique_ptr<Thing>()>;
    using IsTimeUp = std::function<bool()>;

    /// A thing for as long as this lives, which is not longer than the pool; or none.
    class Loan {
    public:
        Loan() = default;
        Loan(FairPool& pool, std::unique_ptr<Thing> thing)
            : m_pool(&pool)
            , m_thing(std::move(thing)) {}
        ~Loan() {
            if (m_thing)
                m_pool->giveBack(std::move(m_thing));
        }
        Loan(Loan&& other) noexcept = default;
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;
        Loan& operator=(Loan&&) = delete;

        explicit operator bool() const { return m_thing != nullptr; }
        Thing& operator*() const { return *m_thing; }

    private:
        FairPool* m_pool = nullptr;
        std::unique_ptr<Thing> m_thing;
    };

    FairPool(std::size_t most, Make make)
        : m_most(most)
        , m_make(std::move(make)) {}

    /// Waits for one; none when time was up before its turn came. Throws on what making it has thrown.
    Loan take(const IsTimeUp& isTimeUp) {
        std::unique_lock lock(m_mutex);
        const std::size_t ticket = m_nextTicket++;
        m_waiting.push_back(ticket);
        const auto isMyTurn = [&] { return m_waiting.front() == ticket && canServe(); };
        // Nobody tells when time is up.
        while (!m_changed.wait_for(lock, glance, isMyTurn)) {
            if (!isTimeUp())
                continue;
            std::erase(m_waiting, ticket);
            m_changed.notify_all();
            return {};
        }
        m_waiting.pop_front();
        m_changed.notify_all();
        if (!m_free.empty()) {
            std::unique_ptr<Thing> thing = std::move(m_free.back());
            m_free.pop_back();
            return {*this, std::move(thing)};
        }
        ++m_made;
        lock.unlock();
        return {*this, makeOne()};
    }

private:
    static constexpr std::chrono::milliseconds glance{50};

    bool canServe() const { return !m_free.empty() || m_made < m_most; }

    std::unique_ptr<Thing> makeOne() {
        try {
            return m_make();
        } catch (...) {
            const std::scoped_lock lock(m_mutex);
            --m_made;
            m_changed.notify_all();
            throw;
        }
    }

    void giveBack(std::unique_ptr<Thing> thing) {
        const std::scoped_lock lock(m_mutex);
        m_free.push_back(std::move(thing));
        m_changed.notify_all();
    }

    std::size_t m_most;
    Make m_make;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::size_t> m_waiting;
    std::size_t m_nextTicket = 0;
    std::size_t m_made = 0;
    std::vector<std::unique_ptr<Thing>> m_free;
};

} // namespace orvane::ocr
