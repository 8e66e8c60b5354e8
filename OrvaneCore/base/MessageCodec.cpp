#include "OrvaneCore/base/MessageCodec.h"

#include "OrvaneCore/base/MessageError.h"

#include <QJsonArray>
#include <QJsonParseError>
#include <QJsonValue>

#include <cmath>
#include <string_view>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

[[noreturn]] void refuse(const QString& reason, qsizetype offset) {
    throw MessageError(u"The message is not valid JSON: %1 at byte %2"_s.arg(reason).arg(offset));
}

bool isDigitAt(QByteArrayView text, qsizetype at) {
    return at >= 0 && at < text.size() && text[at] >= '0' && text[at] <= '9';
}

/// The text as QJsonDocument is to have it. That lets some things pass that JSON forbids: raw control
/// characters and made-up escapes inside strings, and a decimal point without a digit on each side; they are
/// refused here, and what it refuses by itself is left to it. And it drops a byte order mark (U+FEFF) that a
/// string begins with, unless the mark is escaped.
QByteArray forQt(QByteArrayView text) {
    constexpr std::string_view escapes = "\"\\/bfnrtu";
    constexpr QByteArrayView mark("\xEF\xBB\xBF");
    QByteArray prepared;
    qsizetype taken = 0;
    bool inString = false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte == '"') {
            inString = !inString;
            if (inString && text.sliced(at + 1).startsWith(mark)) {
                prepared += text.sliced(taken, at + 1 - taken);
                prepared += "\\ufeff";
                taken = at + 1 + mark.size();
            }
        } else if (inString && static_cast<unsigned char>(byte) < 0x20) {
            refuse(u"unescaped control character"_s, at);
        } else if (inString && byte == '\\') {
            ++at;
            if (at < text.size() && escapes.find(text[at]) == std::string_view::npos)
                refuse(u"invalid escape sequence"_s, at);
        } else if (!inString && byte == '.' && !(isDigitAt(text, at - 1) && isDigitAt(text, at + 1))) {
            refuse(u"illegal number"_s, at);
        }
    }
    if (taken == 0)
        return QByteArray::fromRawData(text.data(), text.size());
    return prepared + text.sliced(taken).toByteArray();
}

void requireFiniteNumbers(const QJsonValue& value) {
    if (value.isDouble()) {
        if (!std::isfinite(value.toDouble()))
            throw MessageError(u"a number in it is not finite"_s);
    } else if (value.isArray()) {
        const QJsonArray array = value.toArray();
        for (const auto& element : array)
            requireFiniteNumbers(element);
    } else if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (const auto& member : object)
            requireFiniteNumbers(member);
    }
}

} // namespace

QJsonDocument message_codec::parse(QByteArrayView text) {
    if (!text.isValidUtf8())
        throw MessageError(u"The message is not valid UTF-8"_s);
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(forQt(text), &error);
    if (error.error != QJsonParseError::NoError)
        refuse(error.errorString(), error.offset);
    return document;
}

QByteArray message_codec::serialise(const QJsonObject& message) {
    requireFiniteNumbers(message);
    return QJsonDocument(message).toJson(QJsonDocument::Compact);
}

} // namespace orvane
