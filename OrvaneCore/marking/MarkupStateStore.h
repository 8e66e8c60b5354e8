#pragma once

#include "OrvaneCore/base/Observers.h"
#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/AnnotationTool.h"

#include <QColor>
#include <QUuid>

#include <functional>
#include <optional>
#include <vector>

namespace orvane {

/// What a palette of drawing tools shows and changes, whoever keeps it. Main thread.
class MarkupStateStore {
public:
    virtual ~MarkupStateStore() = default;
    MarkupStateStore(const MarkupStateStore&) = delete;
    MarkupStateStore& operator=(const MarkupStateStore&) = delete;

    virtual AnnotationTool currentTool() const = 0;
    virtual void setCurrentTool(AnnotationTool tool) = 0;
    /// That of new annotations.
    virtual QColor markupColor() const = 0;
    virtual void setMarkupColor(const QColor& color) = 0;
    /// That of new annotations, in points.
    virtual qreal markupStrokeWidth() const = 0;
    virtual void setMarkupStrokeWidth(qreal width) = 0;
    virtual std::optional<QUuid> selectedAnnotationId() const = 0;
    virtual void setSelectedAnnotationId(const std::optional<QUuid>& id) = 0;
    /// The order is that of creation; later ones lie on top.
    virtual const std::vector<Annotation>& annotations() const = 0;
    virtual void setAnnotations(std::vector<Annotation> annotations) = 0;
    /// Whether the user may move, reshape, restyle and remove it.
    virtual bool canChange(const Annotation& annotation) const = 0;

    /// Called after each change of anything that the store keeps.
    [[nodiscard]] virtual Observers::Subscription observe(std::function<void()> changed) = 0;

protected:
    MarkupStateStore() = default;
};

/// The one with that id, until the store changes; null when there is none.
const Annotation* findAnnotation(const MarkupStateStore& store, const QUuid& id);
const Annotation* selectedAnnotation(const MarkupStateStore& store);

} // namespace orvane
