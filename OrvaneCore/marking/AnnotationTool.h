#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QLatin1String>

#include <array>
#include <optional>

namespace orvane {

/// What the pointer does on the overlay.
enum class AnnotationTool { select, region, arrow, box, ellipse, highlight, text, image };

/// The order is the one in which they are offered.
inline constexpr std::array allAnnotationTools{
    AnnotationTool::select,  AnnotationTool::region,    AnnotationTool::arrow, AnnotationTool::box,
    AnnotationTool::ellipse, AnnotationTool::highlight, AnnotationTool::text,  AnnotationTool::image,
};

QLatin1String rawValue(AnnotationTool tool);

/// The kind of shape that the tool draws; nothing for `select` and `region`.
std::optional<Annotation::Kind> annotationKind(AnnotationTool tool);

} // namespace orvane
