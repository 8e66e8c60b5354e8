#include "OrvaneCore/marking/editing/AnnotationRemoval.h"

#include "OrvaneCore/marking/AnnotationDocument.h"

#include <algorithm>

namespace orvane {

// Ids are copied: what they are read from goes with the shape.

bool removeSelectedAnnotation(AnnotationDocument& document) {
    const std::optional<QUuid> selected = document.selectedAnnotationId();
    if (!selected)
        return false;
    const Annotation* annotation = findAnnotation(document, *selected);
    if (annotation && document.canChange(*annotation))
        document.removeAnnotation(*selected);
    return true;
}

bool removeLastAnnotation(AnnotationDocument& document) {
    const std::vector<Annotation>& annotations = document.annotations();
    const auto last =
        std::find_if(annotations.rbegin(), annotations.rend(),
                     [&document](const Annotation& annotation) { return document.canChange(annotation); });
    if (last == annotations.rend())
        return false;
    const QUuid id = last->id;
    document.removeAnnotation(id);
    return true;
}

} // namespace orvane
