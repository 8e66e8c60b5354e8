#include "OrvanePlatform/posix/EndNotifier.h"

#include <QSocketNotifier>

#include <utility>

namespace orvane::posix {

EndNotifier::EndNotifier(std::function<void()> handler) {
    if (m_signals.descriptor() < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [notifier = m_notifier.get(), handler = std::move(handler)] {
                         // The byte stays where it is, and one call is enough.
                         notifier->setEnabled(false);
                         handler();
                     });
}

EndNotifier::~EndNotifier() = default;

} // namespace orvane::posix
