#include "Orvane/ToolFace.h"

#include "Orvane/ToolServices.h"
#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/MCPEndpoint.h"
#include "OrvaneCore/mcp/pipe/MCPHTTPClient.h"
#include "OrvaneCore/mcp/pipe/MCPLauncher.h"
#include "OrvaneCore/platform/ApplicationStarter.h"
#include "OrvanePlatform/Platform.h"

#include <QDir>
#include <QGuiApplication>

#include <algorithm>

namespace orvane {

namespace {

/// Where the human wants to start the application, or cannot be there to see it.
class NeverStarts final : public ApplicationStarter {
public:
    bool start() override { return false; }
};

bool mayStartApplication() {
    return qgetenv("ORVANE_START_APPLICATION") != "0";
}

/// Passes messages on to the application, where there is one or one can be started.
MCPLauncher::Outcome serveThroughApplication(Platform& platform, LineReader& lines) {
    const MCPEndpoint endpoint(QDir::homePath(), platform.secretStore());
    MCPHTTPClient client(platform.peerOwner());
    SystemClock clock;
    NeverStarts neverStarts;
    ApplicationStarter& starter = mayStartApplication() ? platform.applicationStarter() : neverStarts;
    MCPLauncher launcher([&endpoint] { return endpoint.read(); }, client, starter, clock, lines,
                         platform.standardStreams());
    return launcher.run();
}

void serveAlone(Platform& platform, LineReader& lines, int argc, char* argv[]) {
    // Fonts need an application object. This one reaches for no desktop, because the process must outlive it.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // None of the arguments is meant for Qt, which would take "-platform" for one of its own.
    argc = std::min(argc, 1);
    const QGuiApplication application(argc, argv);
    const ToolServices services(platform);
    platform.endInputOnSignals();
    services.server().run(lines, platform.standardStreams());
}

} // namespace

void runToolFace(int argc, char* argv[]) {
    logLine(u"starting MCP (smart launcher)");
    logQtMessages();
    const std::unique_ptr<Platform> platform = makePlatform();
    LineReader lines(platform->standardStreams());
    if (serveThroughApplication(*platform, lines) == MCPLauncher::Outcome::inProcess)
        serveAlone(*platform, lines, argc, argv);
}

} // namespace orvane
