#pragma once

#include "OrvaneCore/mcp/MCPReply.h"

#include <QByteArrayView>

#include <optional>

namespace orvane {

class LineReader;
class StandardStreams;
class ToolCallHandler;

/// The JSON-RPC 2.0 endpoint of the Model Context Protocol, whatever the door a message comes in by.
/// It keeps no state between messages: any thread, and messages may be handled side by side.
class MCPServer {
public:
    /// The handler outlives the server.
    explicit MCPServer(ToolCallHandler& toolHandler);

    /// Serves one message a line, each reply written before the next line is read, until the input ends or
    /// nobody reads the replies any more.
    void run(StandardStreams& streams) const;

    /// The same with a reader that somebody has read from before.
    void run(LineReader& lines, StandardStreams& streams) const;

    /// Handles one message in UTF-8, without a newline at its end. Gives the reply, or nothing for a
    /// notification. Blocks as long as the tool takes. Throws MessageError when the line is not JSON.
    std::optional<MCPReply> handleMessage(QByteArrayView line) const;

    /// As `handleMessage`, with an error reply in place of anything thrown.
    std::optional<MCPReply> process(QByteArrayView line) const;

    /// Writes one reply as one line, in one write. A reply that cannot be made into JSON is logged and not
    /// written. False when nobody reads the replies any more.
    static bool send(StandardStreams& streams, const MCPReply& reply);

private:
    ToolCallHandler& m_toolHandler;
};

} // namespace orvane
