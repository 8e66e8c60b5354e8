#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"

namespace orvane::x11 {

/// The keyboard of an X display.
class X11DesktopKeyboard final : public DesktopKeyboard {
public:
    std::optional<int> keyCode(quint32 nativeScanCode) const override;
};

} // namespace orvane::x11
