#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvane {

/// JSON messages as bytes and back. Any thread.
class MessageCodec {
public:
    MessageCodec() = delete;

    /// Reads one JSON text (RFC 8259, UTF-8) that holds an object or an array and nothing after it; blanks
    /// and line ends around and between its parts are allowed. Integers keep all 64 bits. Nesting deeper than
    /// 1024 levels is refused. Throws MessageError when the text is anything else.
    static QJsonDocument parse(QByteArrayView text);

    /// One line of JSON with sorted keys and without a newline at the end. Throws MessageError when a number
    /// in it is not finite, which JSON cannot express.
    static QByteArray serialise(const QJsonObject& message);
};

} // namespace orvane
