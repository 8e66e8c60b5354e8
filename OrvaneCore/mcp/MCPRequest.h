#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonObject>

namespace orvane {

/// A message as it came in.
struct MCPRequest {
    /// The JSON text of the id, "null" where there is none; of several the last one's, as in `message`. A
    /// number stands as the client wrote it, because JSON's may have any digits and no type holds them all.
    QByteArray id;
    /// All members; empty when the message is an array. The id in it may have lost digits.
    QJsonObject message;

    /// Reads one JSON text as message_codec::parse does and throws what that throws. A number that is the id
    /// may be larger or smaller than a double can tell.
    static MCPRequest parse(QByteArrayView text);
};

} // namespace orvane
