#pragma once

#include <QRectF>
#include <QSize>
#include <QString>

#include <vector>

namespace orvane {

/// One display (monitor) of the desktop.
struct Display {
    /// Stays the same across restarts of the program and the desktop; never 0.
    quint32 id = 0;
    /// The platform's name of the output, for example "HDMI-1".
    QString name;
    /// Global space: points, y down, origin at the top-left of the desktop.
    QRectF boundsPoints;
    QSize sizePixels;
    /// Pixels a point; may be fractional.
    qreal scale = 1.0;

    bool operator==(const Display&) const = default;
};

/// The displays that are connected now.
class Displays {
public:
    virtual ~Displays() = default;

    /// The primary display first, the others in the platform's own order. Empty where there is no display.
    /// Any thread. Throws PlatformError when the desktop cannot be asked.
    virtual std::vector<Display> list() = 0;

protected:
    Displays() = default;
    Displays(const Displays&) = default;
    Displays& operator=(const Displays&) = default;
};

} // namespace orvane
