#include "OrvaneCore/marking/overlay/OverlayCommands.h"

#include "OrvaneCore/marking/editing/AnnotationRemoval.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/send/SendTargets.h"

#include <utility>

namespace orvane {

OverlayCommands::OverlayCommands(MarkerManager& manager, const SendTargets& targets,
                                 std::function<void()> submit, std::function<void()> cancel)
    : m_manager(manager)
    , m_targets(targets)
    , m_submit(std::move(submit))
    , m_cancel(std::move(cancel)) {}

void OverlayCommands::perform(OverlayCommand command) {
    const MarkupModes modes = m_manager.modes();
    switch (command) {
    case OverlayCommand::submit:
        m_submit();
        break;
    case OverlayCommand::cancel:
        m_cancel();
        break;
    case OverlayCommand::deleteMark:
        deleteMark();
        break;
    case OverlayCommand::toggleMarkup:
        toggleMarkup();
        break;
    case OverlayCommand::toggleSpotlight:
        m_manager.setSpotlightMode(!modes.spotlight);
        break;
    case OverlayCommand::toggleOcr:
        m_manager.setOcrMode(!modes.ocr);
        break;
    case OverlayCommand::toggleImage:
        m_manager.setImageMode(!modes.image);
        break;
    case OverlayCommand::toggleSend:
        toggleSend();
        break;
    case OverlayCommand::nextTarget:
        stepTarget(true);
        break;
    case OverlayCommand::previousTarget:
        stepTarget(false);
        break;
    }
}

void OverlayCommands::deleteMark() {
    if (removeSelectedAnnotation(m_manager))
        return;
    if (const std::optional<QUuid> marker = m_manager.selectedMarkerId()) {
        m_manager.remove(*marker);
        return;
    }
    if (m_manager.markupMode() && removeLastAnnotation(m_manager))
        return;
    if (m_manager.markers().empty())
        return;
    // The id is copied: what it is read from goes with the marker.
    const QUuid last = m_manager.markers().back().id;
    m_manager.remove(last);
}

void OverlayCommands::toggleMarkup() {
    const bool on = !m_manager.markupMode();
    m_manager.setMarkupMode(on);
    const AnnotationTool tool = m_manager.currentTool();
    if (!on) {
        m_manager.setCurrentTool(AnnotationTool::region);
    } else {
        m_manager.setCurrentTool(tool == AnnotationTool::region ? AnnotationTool::select : tool);
    }
}

void OverlayCommands::toggleSend() {
    const bool on = !m_manager.modes().directSend;
    m_manager.setDirectSend(on);
    if (!on)
        return;
    const std::vector<SendTarget>& targets = m_targets.runningTargetsOrdered();
    m_manager.setCurrentSendTarget(targets.empty() ? std::nullopt : std::optional(targets.front()));
}

void OverlayCommands::stepTarget(bool forward) {
    if (!m_manager.modes().directSend)
        return;
    m_manager.setCurrentSendTarget(
        SendTargets::step(m_targets.runningAllowed(), m_manager.currentSendTarget(), forward));
}

} // namespace orvane
