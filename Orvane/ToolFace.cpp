#include "Orvane/ToolFace.h"

#include "OrvaneCore/Log.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/ToolHandler.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/mcp/MCPServer.h"
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
    ToolHandler toolHandler(discovery, screenCapture, TextRecognizer(platform->textRecognition()), storage,
                            platform->pngWriter());
    MCPServer server(toolHandler);
    server.run(platform->standardStreams());
}

} // namespace orvane
