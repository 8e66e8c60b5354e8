#include "OrvanePlatform/headless/HeadlessDesktop.h"

#include "OrvaneCore/platform/PlatformError.h"

namespace orvane::headless {

namespace {

QString noDisplay() {
    return QStringLiteral("There is no display: DISPLAY is not set. Start the program on a desktop, or set "
                          "DISPLAY to one.");
}

} // namespace

std::vector<Display> HeadlessDesktop::list() {
    return {};
}

WindowSnapshot HeadlessDesktop::snapshot(std::stop_token /*stop*/) {
    return {};
}

WindowSnapshot HeadlessDesktop::snapshotOf(const ApplicationFilter& /*isWanted*/, std::stop_token /*stop*/) {
    return {};
}

std::optional<QRectF> HeadlessDesktop::bounds(qint64 /*windowId*/) {
    return std::nullopt;
}

void HeadlessDesktop::activate(const RunningApplication& /*application*/,
                               const std::vector<qint64>& /*handles*/) {}

std::optional<QString> HeadlessDesktop::unavailableReason() {
    return noDisplay();
}

ShareableContent HeadlessDesktop::listContent(const std::vector<qint64>& /*windowIds*/,
                                              std::stop_token /*stop*/) {
    throw PlatformError(noDisplay());
}

QImage HeadlessDesktop::captureWindow(const ShareableWindow& /*window*/, bool /*showsCursor*/) {
    throw PlatformError(noDisplay());
}

QImage HeadlessDesktop::captureRegion(const Display& /*display*/, const QRectF& /*rectPoints*/,
                                      bool /*showsCursor*/) {
    throw PlatformError(noDisplay());
}

QImage HeadlessDesktop::captureDisplay(const Display& /*display*/, bool /*showsCursor*/) {
    throw PlatformError(noDisplay());
}

QImage HeadlessDesktop::captureWithoutOwnWindows(const Display& /*display*/) {
    throw PlatformError(noDisplay());
}

} // namespace orvane::headless
