#pragma once

#include "OrvaneCore/base/PostedCall.h"
#include "OrvaneCore/marking/overlay/OverlayCommands.h"
#include "OrvaneCore/marking/overlay/OverlayWindow.h"
#include "OrvaneCore/marking/overlay/SubmitToast.h"
#include "OrvaneCore/marking/submit/SubmitResult.h"

#include <QHash>
#include <QImage>
#include <QPoint>

#include <functional>
#include <memory>
#include <vector>

namespace orvane {

class Displays;
class ScreenCapture;
class SendTargets;
class SubmitPipeline;
class TaskRunner;

/// Shows and hides the overlay, one window a display, and has the marks submitted. Main thread; what takes
/// long are tasks. Needs a QApplication that outlives it.
class OverlayController {
public:
    /// All of them outlive the controller; the functions are called on the main thread.
    struct Services {
        MarkerManager& manager;
        const SendTargets& sendTargets;
        SubmitPipeline& pipeline;
        TaskRunner& tasks;
        DesktopKeyboard& keyboard;
        Surfaces& surfaces;
        Displays& displays;
        ScreenCapture& capture;
        const PlatformWords& words;
        std::function<void(const SubmitToast&)> showToast;
        /// Told with true before the overlay comes up, when all other windows of ours are to leave the screen
        /// at once and to stay away, and with false when the overlay is gone and its pictures are taken.
        std::function<void(bool)> holdWindowsBack = [](bool) {};
    };

    explicit OverlayController(const Services& services);
    ~OverlayController();
    OverlayController(const OverlayController&) = delete;
    OverlayController& operator=(const OverlayController&) = delete;

    /// Does nothing while it is shown. While a submission still has to take its pictures, which the overlay
    /// must not be on, it is shown as soon as these are taken.
    void showOverlay();
    void hideOverlay();
    /// The marks go as well.
    void cancelOverlay();
    /// The hotkey: shows the overlay, submits where there are regions, and cancels where there are none.
    void toggleOverlay();

    /// Hides the overlay and makes a session of the marks; does nothing without a region.
    void submit();

    bool isShown() const { return !m_windows.empty(); }
    /// The primary display's first. Empty while it is not shown.
    std::vector<OverlayWindow*> windows() const;

private:
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    /// What displays show, by the point that their top-left corner has.
    using FrozenScreens = QHash<QPoint, QImage>;

    void openWindows(const FrozenScreens& frozen);
    void openWindow(QScreen& screen, const QImage& frozen, SurfaceKeyboard keyboard);
    void screenRemoved(const QScreen* screen);
    FrozenScreens freezeScreens() const;
    /// What the display shows of other programs.
    QImage freezeDisplay(quint32 displayId) const;
    void picturesTaken(const MarkupModes& modes);
    /// Tells the other windows of ours, where that has changed, whether the screen is the overlay's.
    void shareScreen();
    void submitted(const std::optional<SubmitResult>& result, const SubmitRequest& request);

    Services m_services;
    OverlayCommands m_commands;
    std::vector<std::unique_ptr<OverlayWindow, DeleteLater>> m_windows;
    /// Counts up whenever the overlay is asked for or sent away: what was begun before is stale.
    int m_showing = 0;
    bool m_isPreparing = false;
    bool m_isCapturing = false;
    bool m_showAfterCapture = false;
    bool m_areWindowsHeldBack = false;
    CallReceiver m_mainThread;
    /// Owns the connections to the application's displays while the overlay is shown.
    std::unique_ptr<QObject> m_screenWatch;
};

} // namespace orvane
