#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"

#include <cstddef>

namespace orvane::x11 {

class X11Session;

/// The keyboard of an X display. A letter tells the alphabet of its layout; for other keys the server is
/// asked for the layout's letters.
class X11DesktopKeyboard final : public DesktopKeyboard {
public:
    /// The session outlives this object.
    explicit X11DesktopKeyboard(X11Session& session);

    std::optional<int> keyCode(const NativeKey& key) override;

private:
    bool isLatin(std::size_t layout) const;

    X11Session& m_session;
};

} // namespace orvane::x11
