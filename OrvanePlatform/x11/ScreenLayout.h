#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvanePlatform/x11/ScaleFactors.h"

#include <QRect>

#include <vector>

namespace orvane::x11 {

/// A monitor as RandR tells of it, in root-window pixels.
struct Monitor {
    QString name;
    QRect pixels;
    bool primary = false;
};

/// Where the monitors lie in both spaces, and the only place where one space is turned into the other.
///
/// A display keeps the position of its monitor and its size is divided by its scale, as Qt lays screens out:
/// with scales above 1 there are gaps between displays in points, and no overlaps. A rectangle belongs to the
/// display it mostly lies on; it is scaled about that display's top-left corner.
/// A value; reading from any thread.
class ScreenLayout {
public:
    ScreenLayout(std::vector<Monitor> monitors, const ScaleFactors& factors);

    /// The primary first, the others in the order of the monitors.
    const std::vector<Display>& displays() const { return m_displays; }

    /// A rectangle in root-window pixels as global points. Unchanged where there is no display at all.
    QRectF toPoints(const QRect& pixels) const;

    /// A rectangle in points relative to the display's top-left corner as root-window pixels. The size is
    /// truncated, the position rounded.
    static QRect toPixels(const Display& display, const QRectF& pointsInDisplay);

    /// The display's own rectangle in root-window pixels.
    static QRect pixelBounds(const Display& display);

    /// The number a display of that name goes by (FNV-1a, 32 bits; never 0).
    static quint32 displayId(const QString& name);

private:
    const Display* displayAt(const QRect& pixels) const;

    std::vector<Display> m_displays;
};

} // namespace orvane::x11
