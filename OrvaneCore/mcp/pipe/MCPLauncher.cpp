#include "OrvaneCore/mcp/pipe/MCPLauncher.h"

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/pipe/HostClient.h"
#include "OrvaneCore/platform/ApplicationStarter.h"
#include "OrvaneCore/platform/StandardStreams.h"

#include <utility>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto firstProbeTimeout = 2s;
constexpr auto laterProbeTimeout = 1s;
constexpr auto probePause = 400ms;
constexpr auto launchDeadline = 10s;
constexpr auto forwardTimeout = 30s;

} // namespace

MCPLauncher::MCPLauncher(EndpointReader readEndpoint, HostClient& host, ApplicationStarter& starter,
                         Clock& clock, LineReader& lines, StandardStreams& streams)
    : m_readEndpoint(std::move(readEndpoint))
    , m_host(host)
    , m_starter(starter)
    , m_clock(clock)
    , m_lines(lines)
    , m_streams(streams) {}

MCPLaunchAction MCPLauncher::decideInitial(const std::optional<MCPEndpointInfo>& endpoint, bool healthy) {
    return endpoint && healthy ? MCPLaunchAction::proxy : MCPLaunchAction::launchThenProxy;
}

MCPLaunchAction MCPLauncher::decideAfterLaunch(const std::optional<MCPEndpointInfo>& endpoint, bool healthy) {
    return endpoint && healthy ? MCPLaunchAction::proxy : MCPLaunchAction::inProcess;
}

MCPLauncher::Outcome MCPLauncher::run(const std::stop_token& stop) {
    const std::optional<MCPEndpointInfo> found = m_readEndpoint();
    const bool healthy = found && m_host.isHealthy(*found, firstProbeTimeout);
    if (decideInitial(found, healthy) == MCPLaunchAction::proxy) {
        // The probe may have taken a while.
        const std::optional<MCPEndpointInfo> current = m_readEndpoint();
        return current ? proxyLoop(*current) : Outcome::inProcess;
    }

    logLine(u"launching app for shared-state MCP…");
    std::optional<MCPEndpointInfo> launched;
    if (startApplication())
        launched = waitForEndpoint(launchDeadline, stop);
    if (decideAfterLaunch(launched, launched.has_value()) == MCPLaunchAction::proxy)
        return proxyLoop(*launched);

    logLine(u"app host unavailable — serving MCP in-process");
    return Outcome::inProcess;
}

/// False when it cannot be started.
bool MCPLauncher::startApplication() {
    const ApplicationStarter::Outcome outcome = m_starter.start();
    m_anotherRan = outcome == ApplicationStarter::Outcome::notNeeded;
    return outcome != ApplicationStarter::Outcome::impossible;
}

std::optional<MCPEndpointInfo> MCPLauncher::waitForEndpoint(std::chrono::milliseconds deadline,
                                                            const std::stop_token& stop) {
    const Clock::Monotonic limit = m_clock.monotonic() + deadline;
    while (m_clock.monotonic() < limit) {
        std::optional<MCPEndpointInfo> info = m_readEndpoint();
        if (info && m_host.isHealthy(*info, laterProbeTimeout))
            return info;
        if (m_anotherRan)
            startApplication();
        if (!m_clock.sleepUntil(m_clock.monotonic() + probePause, stop))
            return std::nullopt;
    }
    return std::nullopt;
}

MCPLauncher::Outcome MCPLauncher::proxyLoop(const MCPEndpointInfo& info) {
    logLine(u"proxying MCP to "_s + info.url);
    while (const std::optional<QByteArrayView> line = m_lines.next()) {
        if (line->isEmpty())
            continue;
        std::optional<QByteArray> reply = m_host.forward(*line, info, forwardTimeout);
        if (!reply) {
            logLine(u"host unreachable — falling back in-process");
            return Outcome::inProcess;
        }
        if (reply->isEmpty())
            continue;
        *reply += '\n';
        if (!m_streams.write(*reply))
            return Outcome::inputEnded;
    }
    return Outcome::inputEnded;
}

} // namespace orvane
