#include "OrvaneCore/base/PostedCall.h"

#include <QCoreApplication>

#include <utility>

namespace orvane {

PostedCall::PostedCall(std::function<void()> call)
    : QEvent(QEvent::User)
    , m_call(std::move(call)) {}

void PostedCall::post(QObject& receiver, std::function<void()> call) {
    QCoreApplication::postEvent(&receiver, new PostedCall(std::move(call)));
}

void PostedCall::run(QEvent& event) {
    if (event.type() == QEvent::User)
        static_cast<const PostedCall&>(event).m_call();
}

} // namespace orvane
