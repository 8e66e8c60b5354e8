#include "OrvaneCore/settings/LoginItem.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"

namespace orvane {

using namespace Qt::StringLiterals;

LoginItem::LoginItem(AutostartEntry& entry)
    : m_entry(entry) {}

bool LoginItem::isEnabled() const {
    return m_entry.isRegistered();
}

void LoginItem::setEnabled(bool enabled) {
    if (isEnabled() == enabled)
        return;
    try {
        if (enabled) {
            m_entry.registerEntry();
        } else {
            m_entry.unregisterEntry();
        }
    } catch (const PlatformError& error) {
        logLine(
            u"login item %1 failed: %2"_s.arg(enabled ? u"register"_s : u"unregister"_s, error.message()));
    }
}

} // namespace orvane
