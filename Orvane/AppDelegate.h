#pragma once

#include "Orvane/BackgroundTasks.h"
#include "Orvane/Commands.h"
#include "Orvane/HumanRecording.h"
#include "Orvane/RetentionSweep.h"
#include "Orvane/StatusItem.h"
#include "Orvane/StatusMenu.h"
#include "Orvane/ToolServices.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/OverlayController.h"
#include "OrvaneCore/marking/submit/SubmitPipeline.h"
#include "OrvaneCore/mcp/MCPEndpoint.h"
#include "OrvaneCore/mcp/http/MCPHTTPServer.h"
#include "OrvaneCore/platform/GlobalHotkeys.h"
#include "OrvaneCore/send/SendTargets.h"
#include "OrvaneCore/settings/KeyboardShortcuts.h"
#include "OrvaneCore/surface/ToastWindow.h"
#include "OrvaneCore/surface/Tooltips.h"

#include <QTimer>

#include <memory>
#include <optional>

namespace orvane {

class Platform;

/// The spine of the tray application: owns all that lives as long as it does, and says in which order things
/// begin and end. Main thread; needs a QApplication that outlives it.
class AppDelegate final : private HumanRecording::View {
public:
    explicit AppDelegate(Platform& platform);
    /// Waits for tools that run and for recordings to be written.
    ~AppDelegate() override;

    /// Called once, before the event loop runs.
    void applicationDidFinishLaunching();

    /// Ends the event loop, and before that what others could still come by. Once is enough.
    void quit();

    /// After the event loop: leaves the screen and the keyboard to whoever comes next.
    void withdraw();

    /// Afterwards: brings recordings and submissions to their end, and waits a moment for tools. False when
    /// something still runs; then this object may not be destroyed, and all that there is to save is saved.
    bool finish();

private:
    void setupMenuBar();
    /// What is left of the launch follows when the host is there.
    void startMCPHost();
    void hostTools(const QString& token);
    void finishLaunching();
    void tellOfFirstLaunch();

    StatusMenuState menuState();
    void chooseTarget(const std::function<void(std::optional<RecordingTarget>)>& answer);

    void holdWindowsBack(bool areHeldBack);

    void recordingChanged() override;
    void copyToClipboard(const QString& text) override;
    void showToast(const QString& title, const QString& subtitle, const QString& icon,
                   double seconds) override;

    Platform& m_platform;
    ToolServices m_services;
    MCPEndpoint m_endpoint;
    std::unique_ptr<GlobalHotkeys> m_hotkeys;
    /// Null after the end.
    std::unique_ptr<KeyboardShortcuts> m_shortcuts;
    ToastWindow m_toast;
    Tooltips m_tooltips;
    HumanRecording m_recording;
    MarkerManager m_markers;
    SendTargets m_sendTargets;
    SubmitPipeline m_submitPipeline;
    OverlayController m_overlay;
    Commands m_commands;
    /// Null until the application has launched and after the end.
    std::unique_ptr<StatusItem> m_statusItem;
    /// Null where no port is free.
    std::unique_ptr<MCPHTTPServer> m_mcpHTTPServer;
    RetentionSweep m_retentionSweep;
    QTimer m_cleanupTimer;
    bool m_hasQuit = false;
    /// Last, so that it ends first: tasks use all the others.
    BackgroundTasks m_tasks;
};

} // namespace orvane
