#pragma once

#include "OrvaneCore/marking/AnnotationDocument.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "OrvaneCore/send/SendTarget.h"

#include <QRectF>
#include <QString>

namespace orvane {

class SettingsStore;

/// The document behind the overlay: the marks, the modes, the tool, the selection. It knows nothing of those
/// who show it; they observe it. Every mark is the human's own. Main thread. Geometry is in global points, y
/// down.
class MarkerManager final : public AnnotationDocument {
public:
    /// The settings, which keep the image mode, outlive this object.
    explicit MarkerManager(SettingsStore& settings);

    /// Markers are numbered by their place, from 1, and take their colours from their numbers.
    const std::vector<Marker>& markers() const { return m_markers; }
    Marker add(const QRectF& rect, const QString& label);
    /// An unknown id changes nothing, here and in all that follows.
    void updateLabel(const QUuid& id, const QString& label);
    void updateRect(const QUuid& id, const QRectF& rect);
    void remove(const QUuid& id);

    /// Removes all marks and selects nothing; modes, tool and colours stay.
    void clearAll();

    bool isOverlayActive() const { return m_isOverlayActive; }
    void setOverlayActive(bool active);

    const MarkupModes& modes() const { return m_modes; }
    void setSpotlightMode(bool on);
    /// On: turns Direct Send and the image mode off.
    void setOcrMode(bool on);
    /// On: turns text recognition off.
    void setImageMode(bool on);
    /// On: turns text recognition off.
    void setDirectSend(bool on);
    /// Takes the image mode from the settings. Once, at launch.
    void restoreImageMode();

    /// The palette is open.
    bool markupMode() const { return m_markupMode; }
    void setMarkupMode(bool on);

    std::optional<QUuid> selectedMarkerId() const { return m_selectedMarkerId; }
    void setSelectedMarkerId(const std::optional<QUuid>& id);

    const std::optional<SendTarget>& currentSendTarget() const { return m_currentSendTarget; }
    void setCurrentSendTarget(const std::optional<SendTarget>& target);
    const std::optional<SendOutcome>& lastSendOutcome() const { return m_lastSendOutcome; }
    void setLastSendOutcome(const std::optional<SendOutcome>& outcome);

    SubmitRequest submitRequest() const;

    AnnotationTool currentTool() const override { return m_currentTool; }
    /// An annotation and a marker are never selected across tools: `region` lets go of the selected
    /// annotation, every other tool of the selected marker.
    void setCurrentTool(AnnotationTool tool) override;
    QColor markupColor() const override { return m_markupColor; }
    void setMarkupColor(const QColor& color) override;
    qreal markupStrokeWidth() const override { return m_markupStrokeWidth; }
    void setMarkupStrokeWidth(qreal width) override;
    std::optional<QUuid> selectedAnnotationId() const override { return m_selectedAnnotationId; }
    void setSelectedAnnotationId(const std::optional<QUuid>& id) override;
    const std::vector<Annotation>& annotations() const override { return m_annotations; }
    void setAnnotations(std::vector<Annotation> annotations) override;
    void addAnnotation(const Annotation& annotation) override;
    void updateAnnotation(const Annotation& annotation) override;
    void removeAnnotation(const QUuid& id) override;
    bool canHit(const Annotation& annotation) const override;
    bool canChange(const Annotation& annotation) const override;
    Annotation::Role roleOfNew() const override { return Annotation::Role::human; }
    [[nodiscard]] Observers::Subscription observe(std::function<void()> changed) override;

private:
    template <typename Value>
    void assign(Value& member, const Value& value);
    void takeImageMode(bool on);
    Marker* marker(const QUuid& id);
    void changed();

    SettingsStore& m_settings;
    Observers m_observers;
    std::vector<Marker> m_markers;
    bool m_isOverlayActive = false;
    MarkupModes m_modes;
    std::vector<Annotation> m_annotations;
    bool m_markupMode = false;
    AnnotationTool m_currentTool = AnnotationTool::region;
    std::optional<QUuid> m_selectedAnnotationId;
    std::optional<QUuid> m_selectedMarkerId;
    QColor m_markupColor;
    qreal m_markupStrokeWidth;
    std::optional<SendTarget> m_currentSendTarget;
    std::optional<SendOutcome> m_lastSendOutcome;
};

} // namespace orvane
