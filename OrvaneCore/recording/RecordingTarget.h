#pragma once

#include <QRectF>
#include <QString>

#include <variant>

namespace orvane {

/// One window, wherever it goes.
struct WindowTarget {
    /// What the window's application is called in the report.
    QString appName;
    qint64 windowId = 0;
};

/// A whole display.
struct DisplayTarget {
    quint32 displayId = 0;
};

/// A rectangle in global points.
struct RegionTarget {
    QRectF rectPoints;
    /// Where the human chose it; what is captured is told by the rectangle alone.
    quint32 displayId = 0;
};

/// What is to be recorded.
using RecordingTarget = std::variant<WindowTarget, DisplayTarget, RegionTarget>;

/// Who asked for a recording.
enum class RecordingSource { mcp, human };

} // namespace orvane
