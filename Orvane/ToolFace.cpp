#include "Orvane/ToolFace.h"

#include "Orvane/Patience.h"
#include "Orvane/ToolServices.h"
#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/MCPEndpoint.h"
#include "OrvaneCore/mcp/pipe/MCPHTTPClient.h"
#include "OrvaneCore/mcp/pipe/MCPLauncher.h"
#include "OrvaneCore/platform/ApplicationStarter.h"
#include "OrvanePlatform/Platform.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QSemaphore>

#include <algorithm>
#include <cstdlib>

namespace orvane {

namespace {

/// Where the human wants to start the application, or cannot be there to see it.
class NeverStarts final : public ApplicationStarter {
public:
    Outcome start() override { return Outcome::impossible; }
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
    ToolServices services(platform);
    QSemaphore served;
    const auto endRequests = platform.endInputOnSignals([&services, &served] {
        const QDeadlineTimer deadline(patience::tools);
        services.finishRecording(patience::saving);
        // A tool that still runs would hold up the end of the input, and uses what would go with it.
        if (!served.tryAcquire(1, static_cast<int>(deadline.remainingTime())))
            std::_Exit(EXIT_SUCCESS);
    });
    services.server().run(lines, platform.standardStreams());
    served.release();
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
