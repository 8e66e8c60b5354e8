#include "OrvaneCore/marking/editing/AnnotationScene.h"

#include <algorithm>

namespace orvane {

const Annotation* selectedAnnotation(const AnnotationScene& scene) {
    if (!scene.selectedId)
        return nullptr;
    const auto found =
        std::find_if(scene.annotations.begin(), scene.annotations.end(),
                     [&scene](const Annotation& annotation) { return annotation.id == *scene.selectedId; });
    return found == scene.annotations.end() ? nullptr : &*found;
}

} // namespace orvane
