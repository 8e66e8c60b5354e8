#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace orvane {

/// A reply of the local host, the only one on its connection. Values; any thread.
struct MCPHTTPResponse {
    int status = 200;
    QByteArray contentType;
    QByteArray body;

    bool operator==(const MCPHTTPResponse&) const = default;

    static MCPHTTPResponse plain(int status, QByteArrayView text);
    static MCPHTTPResponse json(const QByteArray& body);

    /// Head and body as they go out.
    QByteArray bytes() const;

    static QByteArray head(int status, QByteArrayView contentType, qsizetype length);
    static QByteArrayView statusText(int status);
};

} // namespace orvane
