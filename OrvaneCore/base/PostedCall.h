#pragma once

#include <QEvent>
#include <QObject>

#include <functional>
#include <utility>

namespace orvane {

/// A call that is made on the thread of an object, by that thread's event loop and in the order of posting.
/// It is dropped when the object goes first. The object's `customEvent` hands its events to `run`.
class PostedCall final : public QEvent {
public:
    /// Any thread; the receiver exists.
    static void post(QObject& receiver, std::function<void()> call);

    /// Makes the call if the event is one.
    static void run(QEvent& event);

private:
    explicit PostedCall(std::function<void()> call);

    const std::function<void()> m_call;
};

/// Makes the calls that are posted to it, on the thread that it was made on.
class CallReceiver final : public QObject {
public:
    /// Any thread.
    void post(std::function<void()> call) { PostedCall::post(*this, std::move(call)); }

protected:
    void customEvent(QEvent* event) override { PostedCall::run(*event); }
};

} // namespace orvane
