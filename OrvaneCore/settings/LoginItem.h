#pragma once

#include "OrvaneCore/platform/AutostartEntry.h"

namespace orvane {

/// The switch "Launch Orvane at login". Any thread that the entry it was given allows.
class LoginItem {
public:
    /// `entry` must outlive this object.
    explicit LoginItem(AutostartEntry& entry);

    /// Asked of the desktop at each call: the user can change it there as well.
    bool isEnabled() const;

    /// Does nothing when that is so already. A failure is logged and changes nothing else.
    void setEnabled(bool enabled);

private:
    AutostartEntry& m_entry;
};

} // namespace orvane
