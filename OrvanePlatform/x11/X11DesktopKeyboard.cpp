#include "OrvanePlatform/x11/X11DesktopKeyboard.h"

#include "OrvanePlatform/x11/CarbonKeys.h"

namespace orvane::x11 {

std::optional<int> X11DesktopKeyboard::keyCode(quint32 nativeScanCode) const {
    return carbonKeyCodeAt(nativeScanCode);
}

} // namespace orvane::x11
