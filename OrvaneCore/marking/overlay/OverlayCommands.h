#pragma once

#include "OrvaneCore/marking/overlay/OverlayCommand.h"

#include <functional>

namespace orvane {

class MarkerManager;
class SendTargets;

/// Carries out what keys and buttons ask of the overlay, on the document that all its views show. Main
/// thread.
class OverlayCommands {
public:
    /// The document and the targets outlive this object. `submit` and `cancel` are called for the commands of
    /// these names, whatever the document holds.
    OverlayCommands(MarkerManager& manager, const SendTargets& targets, std::function<void()> submit,
                    std::function<void()> cancel);

    void perform(OverlayCommand command);

private:
    void deleteMark();
    void toggleMarkup();
    void toggleSend();
    void stepTarget(bool forward);

    MarkerManager& m_manager;
    const SendTargets& m_targets;
    std::function<void()> m_submit;
    std::function<void()> m_cancel;
};

} // namespace orvane
