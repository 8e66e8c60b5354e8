#include "OrvaneCore/marking/editing/AnnotationDamage.h"

#include "OrvaneCore/drawing/Identical.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/editing/AnnotationBounds.h"
#include "OrvaneCore/surface/ListDamage.h"

namespace orvane {

namespace {

/// Null is none.
bool bothLookSame(const Annotation* left, const Annotation* right) {
    return left != nullptr && right != nullptr ? annotation_renderer::looksSame(*left, *right)
                                               : left == right;
}

const Annotation* draftOf(const AnnotationScene& scene) {
    return scene.draft ? &*scene.draft : nullptr;
}

} // namespace

QRegion damage(const AnnotationScene& before, const AnnotationScene& after) {
    const AnnotationBounds old(before);
    const AnnotationBounds now(after);
    if (!identical(before.size, after.size) || !identical(before.origin, after.origin) ||
        before.displays != after.displays)
        return now.view();

    QRegion region = listDamage(
        before.annotations, after.annotations, annotation_renderer::looksSame,
        [&old](const Annotation& annotation) { return old.annotation(annotation); },
        [&now](const Annotation& annotation) { return now.annotation(annotation); });
    if (!bothLookSame(draftOf(before), draftOf(after)))
        region += VisualBounds::difference(old.draft(), now.draft());
    if (!bothLookSame(selectedAnnotation(before), selectedAnnotation(after)))
        region += VisualBounds::difference(old.selection(), now.selection());
    return region;
}

} // namespace orvane
