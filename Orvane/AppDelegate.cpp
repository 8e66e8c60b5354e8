#include "Orvane/AppDelegate.h"

#include "Orvane/Patience.h"
#include "OrvaneCore/base/Log.h"
#include "OrvanePlatform/Platform.h"

#include <QApplication>
#include <QCursor>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>

#include <chrono>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto cleanupPeriod = 86'400s;
constexpr qsizetype maxRequestBytes = 8'388'608;
constexpr double connectionTimeoutSeconds = 30.0;
constexpr int portRange = 50;
constexpr double submitToastSeconds = 4.0;

} // namespace

AppDelegate::AppDelegate(Platform& platform)
    : m_platform(platform)
    , m_services(platform)
    , m_endpoint(QDir::homePath(), platform.secretStore())
    , m_hotkeys(platform.makeHotkeys())
    , m_shortcuts(std::make_unique<KeyboardShortcuts>(platform.settingsStore(), *m_hotkeys, platform.words()))
    , m_toast(platform.surfaces())
    , m_tooltips(platform.surfaces())
    , m_recording(m_services.recorder(), m_services.discovery(), m_services.storage(), m_tasks, *this,
                  platform.words(), [this](const auto& answer) { chooseTarget(answer); })
    , m_markers(platform.settingsStore())
    , m_submitPipeline({.storage = m_services.storage(),
                        .discovery = m_services.discovery(),
                        .screenCapture = m_services.screenCapture(),
                        .displays = platform.displays(),
                        .pngWriter = platform.pngWriter(),
                        .textRecognizer = m_services.textRecognizer(),
                        .clipboard = platform.clipboard(),
                        .words = platform.words()})
    , m_overlay({.manager = m_markers,
                 .sendTargets = m_sendTargets,
                 .pipeline = m_submitPipeline,
                 .tasks = m_tasks,
                 .keyboard = platform.desktopKeyboard(),
                 .surfaces = platform.surfaces(),
                 .displays = platform.displays(),
                 .capture = m_services.screenCapture(),
                 .words = platform.words(),
                 .showToast =
                     [this](const SubmitToast& toast) {
                         showToast(toast.title, toast.subtitle, toast.icon, submitToastSeconds);
                     },
                 .holdWindowsBack = [this](bool areHeldBack) { holdWindowsBack(areHeldBack); }})
    , m_commands(commandTable({.toggleRecording = [this] { m_recording.toggle(); },
                               .toggleOverlay = [this] { m_overlay.toggleOverlay(); },
                               .clearMarkers = [this] { m_markers.clearAll(); },
                               .quit = [this] { quit(); },
                               .storage = m_services.storage()}))
    , m_retentionSweep([this] { return m_services.storage().expiredCleanup(); }, &giveWay) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    m_services.storage().ensureDirectories();
    m_retentionSweep.begin();
    QObject::connect(&m_cleanupTimer, &QTimer::timeout, &m_cleanupTimer,
                     [this] { m_retentionSweep.begin(); });
    m_cleanupTimer.start(cleanupPeriod);
    setupMenuBar();
    m_commands.bindHotkeys(*m_shortcuts);
    startMCPHost();
}

void AppDelegate::finishLaunching() {
    if (const auto limits = m_platform.desktopShell().limits())
        logLine(*limits);
    m_markers.restoreImageMode();
    tellOfFirstLaunch();
    logLine(u"running. Cmd+Ctrl+P to annotate, Cmd+Ctrl+R to record.");
}

void AppDelegate::setupMenuBar() {
    m_statusItem =
        std::make_unique<StatusItem>([this] { return menuState(); },
                                     [this](StatusAction action, const std::optional<QString>& payload) {
                                         m_commands.perform(action, payload);
                                     },
                                     [this] { return m_platform.desktopShell().hasTrayHost(); },
                                     m_platform.surfaces(), m_platform.words());
}

void AppDelegate::startMCPHost() {
    // The keyring may take its time.
    m_tasks.run([this]() -> TaskRunner::Continuation {
        return [this, token = m_endpoint.token()] {
            if (m_hasQuit)
                return;
            hostTools(token);
            finishLaunching();
        };
    });
}

void AppDelegate::hostTools(const QString& token) {
    auto host = std::make_unique<MCPHTTPServer>(m_services.server(), token, maxRequestBytes,
                                                connectionTimeoutSeconds);
    const std::optional<int> port = host->start(MCPEndpoint::defaultPort, portRange);
    if (!port) {
        logLine(u"could not bind MCP HTTP host (no free port)");
        return;
    }
    m_mcpHTTPServer = std::move(host);
    const auto info =
        MCPEndpointInfo::ofHost(*port, token, static_cast<qint32>(QCoreApplication::applicationPid()),
                                QDateTime::currentDateTimeUtc());
    m_endpoint.write(info);
    logLine(u"MCP HTTP host on "_s + info.url);
}

void AppDelegate::tellOfFirstLaunch() {
    if (m_services.storage().hasOnboarded()) {
        logLine(u"hasOnboarded=true — skipping wizard");
    } else {
        logUnavailable(u"onboarding wizard");
    }
}

StatusMenuState AppDelegate::menuState() {
    const StorageManager& storage = m_services.storage();
    return {.isRecording = m_recording.isRecording(),
            .recordingAppName = m_recording.appName(),
            .camera = {.isOn = storage.enableCamera(), .selectedId = storage.cameraDeviceId(), .devices = {}},
            .mic = {.isOn = storage.enableMic(), .selectedId = storage.micDeviceId(), .devices = {}},
            .markerCount = static_cast<int>(m_markers.markers().size()),
            .unavailable = m_commands.unavailable()};
}

/// The display under the pointer.
void AppDelegate::chooseTarget(const std::function<void(std::optional<RecordingTarget>)>& answer) {
    m_tasks.run([this, answer, point = QCursor::pos()]() -> TaskRunner::Continuation {
        const auto match = m_services.discovery().findDisplay(QRectF(point, QSizeF(1, 1)));
        return [answer, display = DisplayTarget{static_cast<quint32>(match.displayId)}] { answer(display); };
    });
}

void AppDelegate::recordingChanged() {
    if (m_statusItem)
        m_statusItem->update();
}

void AppDelegate::copyToClipboard(const QString& text) {
    m_platform.clipboard().writeText(text);
}

void AppDelegate::showToast(const QString& title, const QString& subtitle, const QString& icon,
                            double seconds) {
    m_toast.showRich(title, subtitle, icon, std::chrono::duration<double>(seconds));
}

/// The overlay's pictures are to show what the human sees of other programs, and nothing of ours.
void AppDelegate::holdWindowsBack(bool areHeldBack) {
    m_toast.setHeldBack(areHeldBack);
    m_statusItem->setButtonHeldBack(areHeldBack);
}

void AppDelegate::quit() {
    if (std::exchange(m_hasQuit, true))
        return;
    // What may take its time follows in `finish`.
    if (m_mcpHTTPServer)
        m_mcpHTTPServer->stop();
    m_endpoint.remove();
    QCoreApplication::quit();
}

void AppDelegate::withdraw() {
    m_overlay.hideOverlay();
    m_statusItem.reset();
    // The connection that they are grabbed on goes with them, so that the next copy gets them at once.
    m_shortcuts.reset();
    m_hotkeys.reset();
    // What was asked of the display goes out.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

bool AppDelegate::finish() {
    const QDeadlineTimer toolDeadline(patience::tools);
    bool done = m_services.finishRecording(patience::saving);
    done = m_tasks.waitForDone(patience::saving) && done;
    if (m_mcpHTTPServer)
        done = m_mcpHTTPServer->waitForTools(std::chrono::milliseconds(toolDeadline.remainingTime())) && done;
    // A tool may have begun one meanwhile.
    return m_services.finishRecording(patience::saving) && done;
}

} // namespace orvane
