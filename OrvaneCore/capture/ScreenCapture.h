#pragma once

#include "OrvaneCore/capture/Watchdog.h"
#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/PngWriter.h"
#include "OrvaneCore/platform/ScreenSource.h"

#include <QByteArray>
#include <QImage>
#include <QRectF>

#include <vector>

namespace orvane {

/// A captured window.
struct WindowCapture {
    /// Native pixels.
    QImage image;
    /// The window's size in points, truncated; not the size of the image.
    int width = 0;
    int height = 0;
};

/// Takes pictures of the screen. Every capture first lists the displays, and the window where it is one of a
/// window, and that listing may take five seconds: then OrvaneError::permissionDenied is thrown. Errors of
/// the desktop (PlatformError) pass unchanged, also after five seconds where the human has not allowed to
/// capture (CaptureConsentMissing). Any thread; captures may run side by side; no state.
class ScreenCapture {
public:
    ScreenCapture(ScreenSource& source, Displays& displays, const PngWriter& pngWriter)
        : m_source(source)
        , m_displays(displays)
        , m_pngWriter(pngWriter) {}

    /// One window alone, whatever covers it. A window smaller than 100 pixels on a side, when the picture is
    /// no larger either, is magnified to 2560x1440 so that something can be seen. Throws
    /// OrvaneError::windowNotFound.
    WindowCapture captureWindow(qint64 windowId, bool showsCursor);

    /// A rectangle in global points, on the display that its top-left corner lies on, else on the first one.
    /// Throws OrvaneError::displayNotFound, and RegionSizeError for a size that no picture can have.
    QImage captureRegion(qint64 x, qint64 y, qint64 width, qint64 height, bool showsCursor);

    /// A whole display. Throws OrvaneError::displayNotFound.
    QImage captureDisplay(quint32 displayId, bool showsCursor);

    /// A whole display as it looks without this program's windows, without the cursor.
    /// Throws OrvaneError::displayNotFound.
    QImage captureDisplayExcludingOwnApp(quint32 displayId);

    /// Whole pixels a point where the rectangle (global points) begins; 2 where no display is.
    int displayScaleFactor(const QRectF& rect);

    /// The longest side of a picture that an agent is given, in pixels.
    static constexpr int agentMaxDimension = 1024;

    /// A picture for an agent: the given one where neither side is longer than `maxDimension`, else one whose
    /// longer side is `maxDimension`.
    static QImage resizeForLLM(const QImage& image, int maxDimension);

    /// The same for the bytes of an image file: the bytes themselves, unchanged, where the image is small
    /// enough and where anything fails, else a PNG. Never throws.
    QByteArray resizeForLLM(const QByteArray& png, int maxDimension) const;

private:
    ShareableContent listContent(const std::vector<qint64>& windowIds);
    Display displayWithId(quint32 displayId);

    ScreenSource& m_source;
    Displays& m_displays;
    const PngWriter& m_pngWriter;
    Watchdog m_watchdog;
};

/// The scale at the top-left corner of the rectangle, truncated to an integer: that of the first display that
/// contains it, 2 when none does.
int scaleFactorAt(const std::vector<Display>& displays, const QRectF& rect);

} // namespace orvane
