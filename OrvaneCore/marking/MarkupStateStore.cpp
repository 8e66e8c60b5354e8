#include "OrvaneCore/marking/MarkupStateStore.h"

#include <algorithm>

namespace orvane {

const Annotation* findAnnotation(const MarkupStateStore& store, const QUuid& id) {
    const std::vector<Annotation>& annotations = store.annotations();
    const auto found = std::find_if(annotations.begin(), annotations.end(),
                                    [&id](const Annotation& candidate) { return candidate.id == id; });
    return found == annotations.end() ? nullptr : &*found;
}

const Annotation* selectedAnnotation(const MarkupStateStore& store) {
    const std::optional<QUuid> id = store.selectedAnnotationId();
    return id ? findAnnotation(store, *id) : nullptr;
}

} // namespace orvane
