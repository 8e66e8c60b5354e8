#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/platform/ScreenSource.h"
#include "OrvaneCore/platform/WindowServer.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

namespace orvane::test {

/// A display of a name, a place in points and a scale.
inline Display makeDisplay(quint32 id, const QRectF& bounds, qreal scale = 1.0) {
    return {.id = id,
            .name = QString::number(id),
            .boundsPoints = bounds,
            .sizePixels = (bounds.size() * scale).toSize(),
            .scale = scale};
}

/// A desktop made of values: what it answers is what a test put in, and it records what it was asked to do.
/// While `failure` is set every call throws it.
class FakeDesktop final : public Displays, public WindowServer, public ScreenSource {
public:
    std::vector<Display> displayList;
    WindowSnapshot windows;
    std::vector<ShareableWindow> shareable;
    /// What a capture of any kind gives.
    QImage picture;
    std::optional<QString> unavailable;
    std::optional<QString> failure;
    /// Whether the human lets the screen be captured, where the desktop asks.
    enum class Consent {
        given,
        /// Listings wait for the answer until they are asked to stop.
        awaited,
        refused,
    };
    std::atomic<Consent> consent = Consent::given;
    /// Listings wait until they are asked to stop.
    std::atomic<bool> hangs = false;

    std::atomic<int> displayLists = 0;
    int snapshots = 0;
    /// Those of some applications alone.
    int partialSnapshots = 0;
    std::atomic<int> listings = 0;
    /// The windows that each listing asked for.
    std::vector<std::vector<qint64>> listedWindows;
    std::vector<std::pair<qint32, std::vector<qint64>>> activations;
    std::vector<qint64> capturedWindows;
    /// The same windows as they were handed over.
    std::vector<ShareableWindow> captured;
    std::vector<std::pair<quint32, QRectF>> capturedRegions;
    std::vector<quint32> capturedDisplays;
    std::vector<quint32> capturedWithoutOwn;
    std::vector<bool> cursors;
    /// Called in the middle of each window capture.
    std::function<void()> duringCapture = [] {};

    std::vector<Display> list() override {
        ++displayLists;
        refuse();
        return displayList;
    }

    WindowSnapshot snapshot(std::stop_token stop) override {
        ++snapshots;
        return answer(stop);
    }

    WindowSnapshot snapshotOf(const ApplicationFilter& isWanted, std::stop_token stop) override {
        ++partialSnapshots;
        return onlyWanted(answer(stop), isWanted);
    }

    std::optional<QRectF> bounds(qint64 windowId) override {
        refuse();
        for (const WindowEntry& row : windows.onScreen) {
            if (row.windowId == windowId)
                return row.boundsPoints;
        }
        return std::nullopt;
    }

    void activate(const RunningApplication& application, const std::vector<qint64>& handles) override {
        refuse();
        activations.emplace_back(application.pid, handles);
    }

    std::optional<QString> unavailableReason() override { return unavailable; }

    ShareableContent listContent(const std::vector<qint64>& windowIds, std::stop_token stop) override {
        ++listings;
        {
            const std::scoped_lock lock(m_mutex);
            listedWindows.push_back(windowIds);
        }
        if (consent == Consent::awaited)
            await(stop);
        askHuman();
        hang(stop);
        refuse();
        ShareableContent content{.displays = displayList, .windows = {}};
        for (const qint64 windowId : windowIds) {
            for (const ShareableWindow& window : shareable) {
                if (window.windowId == windowId)
                    content.windows.push_back(window);
            }
        }
        return content;
    }

    QImage captureWindow(const ShareableWindow& window, bool showsCursor) override {
        askHuman();
        refuse();
        duringCapture();
        capturedWindows.push_back(window.windowId);
        captured.push_back(window);
        cursors.push_back(showsCursor);
        return picture;
    }

    QImage captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) override {
        askHuman();
        refuse();
        capturedRegions.emplace_back(display.id, rectPoints);
        cursors.push_back(showsCursor);
        return picture;
    }

    QImage captureDisplay(const Display& display, bool showsCursor) override {
        askHuman();
        refuse();
        capturedDisplays.push_back(display.id);
        cursors.push_back(showsCursor);
        return picture;
    }

    QImage captureWithoutOwnWindows(const Display& display) override {
        askHuman();
        refuse();
        capturedWithoutOwn.push_back(display.id);
        return picture;
    }

    /// An application with one plain window that is on screen and can be captured.
    void addApplication(qint32 pid, const QString& name, qint64 windowId, const QRectF& bounds,
                        const QString& title = {}) {
        ApplicationWindow window;
        window.handle = windowId;
        window.boundsPoints = bounds;
        window.title = title;
        windows.applications.push_back({.pid = pid, .localizedName = name, .windows = {window}});
        windows.onScreen.push_back(
            {.windowId = windowId, .pid = pid, .ownerName = name, .title = title, .boundsPoints = bounds});
        shareable.push_back({.windowId = windowId, .framePoints = bounds});
    }

private:
    std::mutex m_mutex;

    WindowSnapshot answer(const std::stop_token& stop) {
        hang(stop);
        refuse();
        return windows;
    }

    void refuse() const {
        if (failure)
            throw PlatformError(*failure);
    }

    void askHuman() const {
        if (consent == Consent::awaited)
            throw CaptureAwaitsHuman();
        if (consent == Consent::refused)
            throw CaptureRefused();
    }

    void hang(const std::stop_token& stop) {
        if (!hangs)
            return;
        await(stop);
        throw PlatformError(QStringLiteral("asked to stop"));
    }

    static void await(const std::stop_token& stop) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any never;
        never.wait(lock, stop, [] { return false; });
    }
};

} // namespace orvane::test
