#include "OrvaneCore/marking/AnnotationTool.h"

namespace orvane {

QLatin1String rawValue(AnnotationTool tool) {
    if (const std::optional<Annotation::Kind> kind = annotationKind(tool))
        return rawValue(*kind);
    return tool == AnnotationTool::select ? QLatin1String("select") : QLatin1String("region");
}

std::optional<Annotation::Kind> annotationKind(AnnotationTool tool) {
    switch (tool) {
    case AnnotationTool::select:
    case AnnotationTool::region:
        break;
    case AnnotationTool::arrow:
        return Annotation::Kind::arrow;
    case AnnotationTool::box:
        return Annotation::Kind::box;
    case AnnotationTool::ellipse:
        return Annotation::Kind::ellipse;
    case AnnotationTool::highlight:
        return Annotation::Kind::highlight;
    case AnnotationTool::text:
        return Annotation::Kind::text;
    case AnnotationTool::image:
        return Annotation::Kind::image;
    }
    return std::nullopt;
}

} // namespace orvane
