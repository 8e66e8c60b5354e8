#include "OrvaneCore/marking/overlay/OverlayController.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/base/TaskRunner.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/submit/SubmitPipeline.h"
#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/send/SendTargets.h"

#include <QGuiApplication>
#include <QPainter>

#include <exception>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// In the order in which regions are given to them.
std::vector<QRectF> displaysNow() {
    std::vector<QRectF> displays;
    for (const QScreen* screen : QGuiApplication::screens())
        displays.emplace_back(screen->geometry());
    return displays;
}

} // namespace

OverlayController::OverlayController(const Services& services)
    : m_services(services)
    , m_commands(
          services.manager, services.sendTargets, [this] { submit(); }, [this] { cancelOverlay(); }) {}

OverlayController::~OverlayController() = default;

std::vector<OverlayWindow*> OverlayController::windows() const {
    std::vector<OverlayWindow*> all;
    all.reserve(m_windows.size());
    for (const auto& window : m_windows)
        all.push_back(window.get());
    return all;
}

void OverlayController::showOverlay() {
    if (isShown() || m_isPreparing)
        return;
    if (m_isCapturing) {
        m_showAfterCapture = true;
        return;
    }
    MarkerManager& manager = m_services.manager;
    manager.setOverlayActive(true);
    manager.clearAll();
    manager.setMarkupMode(false);
    manager.setCurrentTool(AnnotationTool::region);
    std::optional<SendTarget> target;
    if (manager.modes().directSend && !m_services.sendTargets.runningTargetsOrdered().empty())
        target = m_services.sendTargets.runningTargetsOrdered().front();
    manager.setCurrentSendTarget(target);
    m_isPreparing = true;
    if (m_services.surfaces.canBeTranslucent()) {
        openWindows({});
        return;
    }
    m_services.tasks.run([this, showing = ++m_showing]() -> TaskRunner::Continuation {
        return [this, showing, frozen = freezeScreens()] {
            if (showing == m_showing)
                openWindows(frozen);
        };
    });
}

void OverlayController::openWindows(const FrozenScreens& frozen) {
    // Not before the screen was frozen: who lies below a window that goes takes its time to draw there.
    shareScreen();
    m_isPreparing = false;
    m_screenWatch = std::make_unique<QObject>();
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, m_screenWatch.get(),
                     [this](const QScreen* screen) { screenRemoved(screen); });
    for (QScreen* screen : QGuiApplication::screens()) {
        openWindow(*screen, frozen.value(screen->geometry().topLeft()),
                   m_windows.empty() ? SurfaceKeyboard::atOnce : SurfaceKeyboard::onClick);
    }
    // Without a screen there are no windows.
    shareScreen();
}

void OverlayController::openWindow(QScreen& screen, const QImage& frozen, SurfaceKeyboard keyboard) {
    const OverlayDocument document{.manager = m_services.manager,
                                   .commands = m_commands,
                                   .keyboard = m_services.keyboard,
                                   .targetIcon = [](const SendTarget&) { return QIcon(); },
                                   .displays = displaysNow};
    m_windows.emplace_back(new OverlayWindow(document, m_services.surfaces, screen, frozen, keyboard));
    OverlayWindow& window = *m_windows.back();
    QObject::connect(&screen, &QScreen::geometryChanged, &window, [&window] { window.coverScreen(); });
    window.show();
}

void OverlayController::screenRemoved(const QScreen* screen) {
    const bool hadKeyboard = !m_windows.empty() && m_windows.front()->screenOfOverlay() == screen;
    std::erase_if(m_windows, [screen](const auto& window) {
        const bool isGone = window->screenOfOverlay() == screen;
        window->setVisible(!isGone);
        return isGone;
    });
    if (m_windows.empty()) {
        hideOverlay();
    } else if (hadKeyboard) {
        m_services.surfaces.takeKeyboard(*m_windows.front());
    }
}

OverlayController::FrozenScreens OverlayController::freezeScreens() const {
    FrozenScreens frozen;
    try {
        for (const Display& display : m_services.displays.list()) {
            QImage picture = freezeDisplay(display.id);
            QPainter(&picture).fillRect(picture.rect(), overlayDimming);
            frozen.insert(display.boundsPoints.topLeft().toPoint(), picture);
        }
    } catch (const std::exception& error) {
        logLine(u"the screen cannot be shown under the overlay: "_s + QString::fromUtf8(error.what()));
    }
    return frozen;
}

QImage OverlayController::freezeDisplay(quint32 displayId) const {
    try {
        return m_services.capture.captureDisplayExcludingOwnApp(displayId);
    } catch (const PlatformError&) {
        // Not every desktop can look behind windows. Then ours are better than no picture at all.
        return m_services.capture.captureDisplay(displayId, false);
    }
}

void OverlayController::hideOverlay() {
    ++m_showing;
    m_isPreparing = false;
    m_showAfterCapture = false;
    m_screenWatch.reset();
    // What asks for this may be an event of one of the windows.
    const auto windows = std::exchange(m_windows, {});
    for (const auto& window : windows)
        window->hide();
    m_services.manager.setOverlayActive(false);
    if (!windows.empty())
        m_services.surfaces.giveKeyboardBack();
    shareScreen();
}

void OverlayController::cancelOverlay() {
    m_services.manager.clearAll();
    hideOverlay();
}

void OverlayController::toggleOverlay() {
    if (std::exchange(m_showAfterCapture, false))
        return;
    if (!isShown() && !m_isPreparing) {
        showOverlay();
    } else if (m_services.manager.markers().empty()) {
        cancelOverlay();
    } else {
        submit();
    }
}

void OverlayController::submit() {
    if (m_services.manager.markers().empty())
        return;
    for (const auto& window : m_windows)
        window->view().closeEditors();
    SubmitRequest request = m_services.manager.submitRequest();
    m_isCapturing = true;
    hideOverlay();
    m_services.tasks.run([this, request = std::move(request)]() -> TaskRunner::Continuation {
        std::optional<SubmitResult> result =
            m_services.pipeline.submit(request, [this, modes = request.modes] {
                m_mainThread.post([this, modes] { picturesTaken(modes); });
            });
        return [this, request, result = std::move(result)] { submitted(result, request); };
    });
}

void OverlayController::picturesTaken(const MarkupModes& modes) {
    m_isCapturing = false;
    if (std::exchange(m_showAfterCapture, false)) {
        showOverlay();
    } else if (modes.ocr) {
        // Not before the pictures, which it would be on.
        m_services.showToast(readingToast());
    }
    shareScreen();
}

void OverlayController::shareScreen() {
    const bool isOverlays = isShown() || m_isPreparing || m_isCapturing;
    if (std::exchange(m_areWindowsHeldBack, isOverlays) != isOverlays)
        m_services.holdWindowsBack(isOverlays);
}

void OverlayController::submitted(const std::optional<SubmitResult>& result, const SubmitRequest& request) {
    if (!result)
        return;
    const auto count = static_cast<int>(request.markers.size());
    logLine(u"submitted %1 annotation(s). Clipboard updated."_s.arg(count));
    MarkerManager& manager = m_services.manager;
    if (result->sendOutcome)
        manager.setLastSendOutcome(result->sendOutcome);
    // The human may be at the next marks already.
    if (!manager.isOverlayActive())
        manager.clearAll();
    if (result->captures.empty() && result->captureError) {
        m_services.showToast(captureFailedToast(*result->captureError));
    } else {
        m_services.showToast(submitToast(
            count, request.modes, request.sendTarget ? std::optional(request.sendTarget->name) : std::nullopt,
            result->sendOutcome, result->copiedOcrText, m_services.words));
    }
    m_services.tasks.run([this, result = *result]() -> TaskRunner::Continuation {
        m_services.pipeline.generateThumbnail(result);
        return {};
    });
}

} // namespace orvane
