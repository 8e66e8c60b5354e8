#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

#include <optional>

class QDateTime;

namespace orvane {

/// Where the running application's local HTTP host listens, and what lets a client in.
struct MCPEndpointInfo {
    /// Where messages are posted to.
    QString url;
    int port = 0;
    /// The bearer token.
    QString token;
    /// The application's process.
    qint32 pid = 0;
    QString version;
    /// ISO 8601; for people, read by no program.
    QString startedAt;

    /// That of a host of this version on that port of the loopback interface.
    static MCPEndpointInfo ofHost(int port, const QString& token, qint32 pid, const QDateTime& startedAt);

    /// JSON with sorted keys, for people to read as well.
    QByteArray encoded() const;

    /// Nothing unless it is a JSON object that has all six keys with values of their types. Others are
    /// ignored.
    static std::optional<MCPEndpointInfo> decoded(QByteArrayView json);

    bool operator==(const MCPEndpointInfo&) const = default;
};

} // namespace orvane
