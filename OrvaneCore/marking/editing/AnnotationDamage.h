#pragma once

#include "OrvaneCore/marking/editing/AnnotationScene.h"

#include <QRegion>

namespace orvane {

/// Every point of the view that may look different in the two scenes, and little more; in the view of
/// `after`. All of it when its place or its size differ, nothing when the scenes are equal. Cheap enough for
/// every move of the pointer. To paint `after` within it, on the picture of `before`, gives all of the
/// picture of `after`: to the pixel, but for pictures that are drawn scaled or turned, which may differ by a
/// grey level or two that no eye sees. Needs a QGuiApplication; any thread.
QRegion damage(const AnnotationScene& before, const AnnotationScene& after);

} // namespace orvane
