#pragma once

#include "OrvaneCore/tools/IntegerRect.h"

#include <QImage>
#include <QString>

#include <vector>

namespace orvane {

/// A region that an agent points at, in points of the window, from its top-left corner.
struct LabelledRegion {
    IntegerRect rect;
    QString label;
};

/// The picture of a window of the given size in points, with a numbered, labelled box for each region. The
/// sixth has the colour of the first. Needs a QGuiApplication; any thread.
QImage renderAnnotations(const QImage& window, const std::vector<LabelledRegion>& regions, int windowWidth,
                         int windowHeight);

} // namespace orvane
