#pragma once

#include "OrvaneCore/marking/overlay/OverlayCommand.h"

#include <Qt>

#include <optional>

namespace orvane {

/// What a key does while the overlay has the keyboard: a virtual key code as in `Shortcut::carbonKeyCode`,
/// and the modifiers that are down. Nothing for a key that the overlay leaves alone.
std::optional<OverlayCommand> overlayCommand(int carbonKeyCode, Qt::KeyboardModifiers modifiers);

} // namespace orvane
