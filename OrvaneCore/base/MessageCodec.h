#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonDocument>
#include <QJsonObject>

/// JSON messages as bytes and back. Any thread.
namespace orvane::message_codec {

/// Reads one JSON text (RFC 8259, UTF-8) that holds an object or an array and nothing after it; blanks
/// and line ends around and between its parts are allowed. Integers keep all 64 bits. Nesting deeper than
/// 1024 levels is refused. Throws MessageError when the text is anything else.
QJsonDocument parse(QByteArrayView text);

/// One line of JSON with sorted keys and without a newline at the end. Throws MessageError when a number
/// in it is not finite, which JSON cannot express.
QByteArray serialise(const QJsonObject& message);

} // namespace orvane::message_codec
