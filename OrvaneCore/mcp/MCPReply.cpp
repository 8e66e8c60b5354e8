#include "OrvaneCore/mcp/MCPReply.h"

#include "OrvaneCore/base/MessageCodec.h"

namespace orvane {

using namespace Qt::StringLiterals;

MCPReply MCPReply::result(const QByteArray& id, const QJsonObject& result) {
    return {id, {{u"result"_s, result}}};
}

MCPReply MCPReply::error(const QByteArray& id, int code, const QString& message) {
    return {id, {{u"error"_s, QJsonObject{{u"code"_s, code}, {u"message"_s, message}}}}};
}

QByteArray MCPReply::serialised() const {
    // The id goes in as text, where it stands in the order of the keys: "error", "id", "jsonrpc", "result".
    QByteArray line = message_codec::serialise(outcome);
    const QByteArray head = "\"id\":" + id + R"(,"jsonrpc":"2.0")";
    if (outcome.contains(u"error"_s)) {
        line.insert(line.size() - 1, ',' + head);
    } else {
        line.insert(1, head + ',');
    }
    return line;
}

} // namespace orvane
