#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/ScreenSource.h"
#include "OrvaneCore/platform/WindowServer.h"

namespace orvane::headless {

/// A machine without a display: no displays and no windows, and a plain refusal where pixels are asked for.
class HeadlessDesktop final : public Displays, public WindowServer, public ScreenSource {
public:
    std::vector<Display> list() override;

    WindowSnapshot snapshot(std::stop_token stop) override;
    WindowSnapshot snapshotOf(const ApplicationFilter& isWanted, std::stop_token stop) override;
    std::optional<QRectF> bounds(qint64 windowId) override;
    void activate(const RunningApplication& application, const std::vector<qint64>& handles) override;
    std::optional<QString> unavailableReason() override;

    ShareableContent listContent(const std::vector<qint64>& windowIds, std::stop_token stop) override;
    QImage captureWindow(const ShareableWindow& window, bool showsCursor) override;
    QImage captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) override;
    QImage captureDisplay(const Display& display, bool showsCursor) override;
    QImage captureWithoutOwnWindows(const Display& display) override;
};

} // namespace orvane::headless
