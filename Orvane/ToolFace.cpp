#include "Orvane/ToolFace.h"

#include "OrvaneCore/Log.h"
#include "OrvaneCore/capture/CaptureTools.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/SessionTools.h"
#include "OrvaneCore/capture/ToolHandler.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/recording/RecorderClock.h"
#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvaneCore/storage/StorageManager.h"
#include "OrvanePlatform/Platform.h"

#include <QDir>
#include <QGuiApplication>

#include <algorithm>

namespace orvane {

void runToolFace(int argc, char* argv[]) {
    logLine(u"starting MCP (smart launcher)");
    logQtMessages();
    // Fonts need an application object. This one reaches for no desktop, because the process must outlive it.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // None of the arguments is meant for Qt, which would take "-platform" for one of its own.
    argc = std::min(argc, 1);
    const QGuiApplication application(argc, argv);
    const std::unique_ptr<Platform> platform = makePlatform();
    StorageManager storage(platform->settingsStore(), QDir::homePath());
    WindowDiscovery discovery(platform->windowServer(), platform->displays());
    ScreenCapture screenCapture(platform->screenSource(), platform->displays(), platform->pngWriter());
    SystemClock clock;
    ScreenRecorder recorder(discovery, screenCapture, storage, platform->pngWriter(), platform->media(),
                            clock);
    const TextRecognizer textRecognizer(platform->textRecognition());
    CaptureTools captureTools(discovery, screenCapture, textRecognizer, storage, platform->pngWriter());
    SessionTools sessionTools(recorder, screenCapture, textRecognizer, storage);
    ToolHandler toolHandler(captureTools, sessionTools);
    MCPServer server(toolHandler);
    server.run(platform->standardStreams());
    // The agent is gone, and what it recorded shall not lack its report.
    if (recorder.recordingSessionId())
        recorder.stopRecording();
}

} // namespace orvane
