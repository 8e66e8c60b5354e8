#pragma once

#include "OrvaneCore/marking/MarkupStateStore.h"

namespace orvane {

/// The shapes of a surface that is drawn on, and what the user may do to them. It knows nothing of those who
/// show it; they observe it. Main thread. Geometry is in global points, y down.
class AnnotationDocument : public MarkupStateStore {
public:
    /// Appends and selects it.
    virtual void addAnnotation(const Annotation& annotation) = 0;
    /// Replaces the one with the same id. An unknown id changes nothing.
    virtual void updateAnnotation(const Annotation& annotation) = 0;
    /// Every one with that id.
    virtual void removeAnnotation(const QUuid& id) = 0;

    /// Whether a click may pick it up. What may be hit and not changed can be selected only.
    virtual bool canHit(const Annotation& annotation) const = 0;
    /// Who draws a shape that is drawn now.
    virtual Annotation::Role roleOfNew() const = 0;
};

} // namespace orvane
