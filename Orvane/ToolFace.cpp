#include "Orvane/ToolFace.h"

#include "OrvaneCore/Log.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/ToolHandler.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/storage/StorageManager.h"
#include "OrvanePlatform/Platform.h"

#include <QDir>

namespace orvane {

void runToolFace() {
    logLine(u"starting MCP (smart launcher)");
    const std::unique_ptr<Platform> platform = makePlatform();
    StorageManager storage(platform->settingsStore(), QDir::homePath());
    WindowDiscovery discovery(platform->windowServer(), platform->displays());
    ScreenCapture screenCapture(platform->screenSource(), platform->displays(), platform->pngWriter());
    ToolHandler toolHandler(discovery, screenCapture, storage, platform->pngWriter());
    MCPServer server(toolHandler);
    server.run(platform->standardStreams());
}

} // namespace orvane
