#pragma once

#include "OrvaneCore/mcp/MCPEndpointInfo.h"

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>

namespace orvane {

class ApplicationStarter;
class HostClient;
class LineReader;
class Clock;
class StandardStreams;

/// How an agent's messages are to be served.
enum class MCPLaunchAction { proxy, launchThenProxy, inProcess };

/// What a tool server's process does first: it finds the running application, or starts it, and is from then
/// on a line pipe between the agent and the application's local HTTP host, so that the agent's tools act on
/// what the human sees.
class MCPLauncher {
public:
    /// How `run` ended.
    enum class Outcome {
        inputEnded,
        /// There is no host. The process is to serve the tools itself from the next line on, to the end of
        /// input; there is no way back to the host.
        inProcess,
    };

    /// Gives what the endpoint file says at that moment.
    using EndpointReader = std::function<std::optional<MCPEndpointInfo>()>;

    /// Everything referred to outlives the launcher. `lines` reads the input of `streams`, to which the
    /// replies are written; whoever serves in-process goes on with the same reader, which has read ahead.
    MCPLauncher(EndpointReader readEndpoint, HostClient& host, ApplicationStarter& starter, Clock& clock,
                LineReader& lines, StandardStreams& streams);

    /// Blocks on the calling thread for as long as messages are passed on. Tells on standard error what it
    /// does.
    Outcome run(const std::stop_token& stop = {});

    static MCPLaunchAction decideInitial(const std::optional<MCPEndpointInfo>& endpoint, bool healthy);
    static MCPLaunchAction decideAfterLaunch(const std::optional<MCPEndpointInfo>& endpoint, bool healthy);

    /// Looks again and again for a host that is well. Has the application started where the copy of it that
    /// ran when `run` wanted to start one has gone meanwhile. Nothing when there is none within the time, or
    /// when a stop is requested meanwhile.
    std::optional<MCPEndpointInfo> waitForEndpoint(std::chrono::milliseconds deadline,
                                                   const std::stop_token& stop = {});

private:
    bool startApplication();
    Outcome proxyLoop(const MCPEndpointInfo& info);

    EndpointReader m_readEndpoint;
    HostClient& m_host;
    ApplicationStarter& m_starter;
    Clock& m_clock;
    LineReader& m_lines;
    StandardStreams& m_streams;
    /// A copy of the application was in the way of starting one, and may be about to end.
    bool m_anotherRan = false;
};

} // namespace orvane
