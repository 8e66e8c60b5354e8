#pragma once

#include <QByteArrayView>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

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
    std::optional<QJsonObject> handleMessage(QByteArrayView line) const;

    /// As `handleMessage`, with an error reply in place of anything thrown.
    std::optional<QJsonObject> process(QByteArrayView line) const;

    /// An error reply. An undefined id counts as null.
    static QJsonObject jsonRpcError(const QJsonValue& id, int code, const QString& message);

    /// Writes one reply as one line, in one write. A reply that cannot be made into JSON is logged and not
    /// written. False when nobody reads the replies any more.
    static bool send(StandardStreams& streams, const QJsonObject& reply);

private:
    ToolCallHandler& m_toolHandler;
};

} // namespace orvane
