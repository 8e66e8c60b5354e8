#include "OrvaneCore/marking/overlay/OverlayKeys.h"

namespace orvane {

std::optional<OverlayCommand> overlayCommand(int carbonKeyCode, Qt::KeyboardModifiers modifiers) {
    constexpr int letterZ = 6;
    constexpr Qt::KeyboardModifiers otherMeaning = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (carbonKeyCode == letterZ && (modifiers & (otherMeaning | Qt::ShiftModifier)) == Qt::ControlModifier)
        return OverlayCommand::deleteMark;
    if (modifiers & otherMeaning)
        return std::nullopt;
    switch (carbonKeyCode) {
    case 36: // Return
    case 76: // Enter of the keypad
        return OverlayCommand::submit;
    case 53: // Escape
        return OverlayCommand::cancel;
    case 51: // Delete (backwards)
        return OverlayCommand::deleteMark;
    case 46: // M
        return OverlayCommand::toggleMarkup;
    case 11: // B
        return OverlayCommand::toggleSpotlight;
    case 31: // O
        return OverlayCommand::toggleOcr;
    case 34: // I
        return OverlayCommand::toggleImage;
    case 1: // S
        return OverlayCommand::toggleSend;
    case 48:  // Tab
    case 2:   // D
    case 124: // Right arrow
        return OverlayCommand::nextTarget;
    case 0:   // A
    case 123: // Left arrow
        return OverlayCommand::previousTarget;
    default:
        return std::nullopt;
    }
}

} // namespace orvane
