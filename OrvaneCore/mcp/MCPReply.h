#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace orvane {

/// A JSON-RPC 2.0 reply.
struct MCPReply {
    /// The JSON text of the request's id, as MCPRequest has it.
    QByteArray id;
    /// One member: `result` or `error`.
    QJsonObject outcome;

    static MCPReply result(const QByteArray& id, const QJsonObject& result);
    static MCPReply error(const QByteArray& id, int code, const QString& message);

    /// One line of JSON with sorted keys and without a newline at the end. Throws as message_codec::serialise
    /// does.
    QByteArray serialised() const;

    bool operator==(const MCPReply&) const = default;
};

} // namespace orvane
