#include "OrvaneCore/marking/overlay/MarkerManager.h"

#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/platform/SettingsStore.h"

#include <algorithm>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QString imageModeKey = u"ImageMode"_s;

void number(Marker& marker, std::size_t position) {
    marker.index = static_cast<int>(position) + 1;
    marker.color = marker_palette::border(marker.index);
}

} // namespace

MarkerManager::MarkerManager(SettingsStore& settings)
    : m_settings(settings)
    , m_markupColor(QColor::fromRgb(markup_colors::defaultColor))
    , m_markupStrokeWidth(markup_colors::strokePresets[1]) {}

Marker MarkerManager::add(const QRectF& rect, const QString& label) {
    Marker marker{.rect = rect, .label = label};
    number(marker, m_markers.size());
    m_markers.push_back(marker);
    changed();
    return marker;
}

void MarkerManager::updateLabel(const QUuid& id, const QString& label) {
    if (Marker* found = marker(id))
        assign(found->label, label);
}

void MarkerManager::updateRect(const QUuid& id, const QRectF& rect) {
    if (Marker* found = marker(id))
        assign(found->rect, rect);
}

void MarkerManager::remove(const QUuid& id) {
    if (std::erase_if(m_markers, [&id](const Marker& candidate) { return candidate.id == id; }) == 0)
        return;
    for (std::size_t i = 0; i < m_markers.size(); ++i)
        number(m_markers[i], i);
    if (m_selectedMarkerId == id)
        m_selectedMarkerId.reset();
    changed();
}

void MarkerManager::clearAll() {
    m_markers.clear();
    m_annotations.clear();
    m_selectedAnnotationId.reset();
    m_selectedMarkerId.reset();
    changed();
}

void MarkerManager::setOverlayActive(bool active) {
    assign(m_isOverlayActive, active);
}

void MarkerManager::setSpotlightMode(bool on) {
    assign(m_modes.spotlight, on);
}

void MarkerManager::setOcrMode(bool on) {
    if (on)
        setImageMode(false);
    MarkupModes modes = m_modes;
    modes.ocr = on;
    modes.directSend = modes.directSend && !on;
    assign(m_modes, modes);
}

void MarkerManager::setImageMode(bool on) {
    m_settings.setValue(imageModeKey, on);
    takeImageMode(on);
}

void MarkerManager::setDirectSend(bool on) {
    MarkupModes modes = m_modes;
    modes.directSend = on;
    modes.ocr = modes.ocr && !on;
    assign(m_modes, modes);
}

void MarkerManager::restoreImageMode() {
    takeImageMode(m_settings.value(imageModeKey).toBool());
}

void MarkerManager::takeImageMode(bool on) {
    MarkupModes modes = m_modes;
    modes.image = on;
    modes.ocr = modes.ocr && !on;
    assign(m_modes, modes);
}

void MarkerManager::setMarkupMode(bool on) {
    assign(m_markupMode, on);
}

void MarkerManager::setSelectedMarkerId(const std::optional<QUuid>& id) {
    assign(m_selectedMarkerId, id);
}

void MarkerManager::setCurrentSendTarget(const std::optional<SendTarget>& target) {
    assign(m_currentSendTarget, target);
}

void MarkerManager::setLastSendOutcome(const std::optional<SendOutcome>& outcome) {
    assign(m_lastSendOutcome, outcome);
}

SubmitRequest MarkerManager::submitRequest() const {
    return {.markers = m_markers,
            .annotations = m_annotations,
            .modes = m_modes,
            .sendTarget = m_currentSendTarget};
}

void MarkerManager::setCurrentTool(AnnotationTool tool) {
    m_currentTool = tool;
    if (tool == AnnotationTool::region) {
        m_selectedAnnotationId.reset();
    } else {
        m_selectedMarkerId.reset();
    }
    changed();
}

void MarkerManager::setMarkupColor(const QColor& color) {
    assign(m_markupColor, color);
}

void MarkerManager::setMarkupStrokeWidth(qreal width) {
    assign(m_markupStrokeWidth, width);
}

void MarkerManager::setSelectedAnnotationId(const std::optional<QUuid>& id) {
    assign(m_selectedAnnotationId, id);
}

void MarkerManager::setAnnotations(std::vector<Annotation> annotations) {
    m_annotations = std::move(annotations);
    changed();
}

void MarkerManager::addAnnotation(const Annotation& annotation) {
    m_annotations.push_back(annotation);
    m_selectedAnnotationId = annotation.id;
    changed();
}

void MarkerManager::updateAnnotation(const Annotation& annotation) {
    const auto found =
        std::find_if(m_annotations.begin(), m_annotations.end(),
                     [&annotation](const Annotation& candidate) { return candidate.id == annotation.id; });
    if (found == m_annotations.end())
        return;
    *found = annotation;
    changed();
}

void MarkerManager::removeAnnotation(const QUuid& id) {
    if (std::erase_if(m_annotations, [&id](const Annotation& candidate) { return candidate.id == id; }) == 0)
        return;
    if (m_selectedAnnotationId == id)
        m_selectedAnnotationId.reset();
    changed();
}

bool MarkerManager::canHit(const Annotation& /*annotation*/) const {
    return true;
}

bool MarkerManager::canChange(const Annotation& /*annotation*/) const {
    return true;
}

Observers::Subscription MarkerManager::observe(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

template <typename Value>
void MarkerManager::assign(Value& member, const Value& value) {
    if (member == value)
        return;
    member = value;
    changed();
}

Marker* MarkerManager::marker(const QUuid& id) {
    const auto found = std::find_if(m_markers.begin(), m_markers.end(),
                                    [&id](const Marker& candidate) { return candidate.id == id; });
    return found == m_markers.end() ? nullptr : &*found;
}

void MarkerManager::changed() {
    m_observers.notify();
}

} // namespace orvane
