#pragma once

#include "OrvaneCore/platform/CaptureConsent.h"
#include "OrvaneCore/platform/Displays.h"

#include <QImage>
#include <QRectF>

#include <any>
#include <stop_token>
#include <vector>

namespace orvane {

/// A window that can be captured.
struct ShareableWindow {
    qint64 windowId = 0;
    /// Global points, with decorations, without shadows.
    QRectF framePoints = {};
    /// What the source that listed the window wants to know again when it captures it; means nothing to
    /// anybody else. May be empty.
    std::any listed = {};
};

/// What can be captured at one moment.
struct ShareableContent {
    /// All of them, the primary display first.
    std::vector<Display> displays;
    /// Those that were asked for.
    std::vector<ShareableWindow> windows;
};

/// The pixels of the desktop. All pictures come in native pixels, without any scaling, in a 32-bit format
/// (RGB32, or ARGB32_Premultiplied where a window has transparent parts).
/// Any thread; calls may run side by side. Every call throws PlatformError when the desktop refuses, and a
/// window that closes in the middle of a capture is such a refusal.
///
/// Some desktops let the human decide what may be captured. Any call to a source on one may throw
/// CaptureAwaitsHuman or CaptureRefused; it never gives a black picture instead. No call waits for the
/// human's answer for longer than its caller allows: `listContent` until it is asked to stop, the others not
/// at all.
class ScreenSource {
public:
    virtual ~ScreenSource() = default;

    /// The displays, and those of the given windows that can be captured now, in the order given: what is not
    /// asked for costs nothing. A recording asks at every frame. A stop request makes a call that waits for
    /// the desktop end soon, with a PlatformError.
    virtual ShareableContent listContent(const std::vector<qint64>& windowIds, std::stop_token stop) = 0;

    /// The window alone, also where other windows cover it or where it lies beyond the edge of the desktop.
    /// Takes a window as it was just listed, so that nothing is asked twice, and one with no more than its
    /// number. Shows the window as it is now, moved or resized since or not.
    virtual QImage captureWindow(const ShareableWindow& window, bool showsCursor) = 0;

    /// What the eye sees in a rectangle in points relative to the top-left of the display. The rectangle may
    /// reach beyond the display; what lies outside the desktop comes out black. The caller sees to it that
    /// the rectangle is not empty and small enough to hold in memory.
    virtual QImage captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) = 0;

    /// What the eye sees on the whole display, `sizePixels` large.
    virtual QImage captureDisplay(const Display& display, bool showsCursor) = 0;

    /// The display without the windows of this process, composed from what lies behind them.
    virtual QImage captureWithoutOwnWindows(const Display& display) = 0;

protected:
    ScreenSource() = default;
    ScreenSource(const ScreenSource&) = default;
    ScreenSource& operator=(const ScreenSource&) = default;
};

} // namespace orvane
