#pragma once

#include "OrvaneCore/marking/overlay/OverlayCommand.h"

#include <optional>

namespace orvane {

/// What a key does while the overlay has the keyboard, by its place on the keyboard: a virtual key code as
/// in `Shortcut::carbonKeyCode`. Nothing for a key that the overlay leaves alone.
std::optional<OverlayCommand> overlayCommand(int carbonKeyCode);

} // namespace orvane
