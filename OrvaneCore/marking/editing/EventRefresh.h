#pragma once

#include <functional>
#include <utility>

namespace orvane {

/// Brings a view up to date: at once when something has changed, and once, at its end, for an event that the
/// view handles, however much that changes. Main thread.
class EventRefresh {
public:
    /// Lasts while the view handles an event. Events that come up within another one are part of it.
    class Event {
    public:
        /// `refresh` outlives this object.
        explicit Event(EventRefresh& refresh)
            : m_refresh(refresh) {
            ++m_refresh.m_events;
        }
        ~Event() {
            --m_refresh.m_events;
            m_refresh.request();
        }
        Event(const Event&) = delete;
        Event& operator=(const Event&) = delete;

    private:
        EventRefresh& m_refresh;
    };

    /// `refresh` shows all that is to be shown now.
    explicit EventRefresh(std::function<void()> refresh)
        : m_refresh(std::move(refresh)) {}

    /// What the view shows may have changed.
    void request() const {
        if (m_events == 0)
            m_refresh();
    }

private:
    std::function<void()> m_refresh;
    int m_events = 0;
};

} // namespace orvane
