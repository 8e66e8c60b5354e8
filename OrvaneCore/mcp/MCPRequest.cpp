#include "OrvaneCore/mcp/MCPRequest.h"

#include "OrvaneCore/base/MessageCodec.h"
#include "OrvaneCore/mcp/RawMember.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include <optional>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

QByteArray textOf(const QJsonValue& value) {
    const QByteArray inArray = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return inArray.sliced(1, inArray.size() - 2);
}

/// Parses a text whose number at that place no double can hold; the parser, which takes none such, gets
/// another.
QJsonObject parseWithoutNumber(QByteArrayView text, const raw_member::Place& number) {
    QByteArray readable = text.toByteArray();
    readable.replace(number.begin, number.size, "0");
    return message_codec::parse(readable).object();
}

} // namespace

MCPRequest MCPRequest::parse(QByteArrayView text) {
    const std::optional<raw_member::Place> place = raw_member::find(text, "id");
    const QByteArrayView written = place ? text.sliced(place->begin, place->size) : QByteArrayView();
    if (!raw_member::isNumber(written)) {
        const QJsonObject message = message_codec::parse(text).object();
        const QJsonValue id = message.value(u"id"_s);
        return {id.isUndefined() ? "null" : textOf(id), message};
    }
    return {written.toByteArray(), raw_member::fitsDouble(written) ? message_codec::parse(text).object()
                                                                   : parseWithoutNumber(text, *place)};
}

} // namespace orvane
