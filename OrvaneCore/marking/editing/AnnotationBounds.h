#pragma once

#include "OrvaneCore/marking/editing/AnnotationScene.h"
#include "OrvaneCore/surface/VisualBounds.h"

#include <QRect>

namespace orvane {

/// The bounds of the shapes that a scene shows, in its view. Needs a QGuiApplication; any thread.
class AnnotationBounds {
public:
    /// The scene outlives this object.
    explicit AnnotationBounds(const AnnotationScene& scene);

    /// The whole view.
    QRect view() const { return m_view; }
    VisualBounds annotation(const Annotation& annotation) const;
    VisualBounds draft() const;
    /// The marks of the selected shape.
    VisualBounds selection() const;

private:
    const AnnotationScene& m_scene;
    QRect m_view;
};

} // namespace orvane
