#pragma once

namespace orvane {

/// What the human can ask of the overlay by a key or by a button of its bar.
enum class OverlayCommand {
    submit,
    cancel,
    deleteMark,
    toggleMarkup,
    toggleSpotlight,
    toggleOcr,
    toggleImage,
    toggleSend,
    nextTarget,
    previousTarget,
};

} // namespace orvane
