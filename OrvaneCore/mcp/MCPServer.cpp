#include "OrvaneCore/mcp/MCPServer.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/base/MessageCodec.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/ToolCallHandler.h"
#include "OrvaneCore/mcp/ToolCatalogue.h"
#include "OrvaneCore/platform/StandardStreams.h"

#include <QByteArray>
#include <QJsonDocument>

#include <exception>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int invalidRequest = -32600;
constexpr int methodNotFound = -32601;
/// Malformed JSON comes back with this code too, not with the -32700 that JSON-RPC keeps for it.
constexpr int internalError = -32603;

/// An undefined value would leave the key out of the reply.
QJsonValue idOrNull(const QJsonValue& id) {
    return id.isUndefined() ? QJsonValue(QJsonValue::Null) : id;
}

QJsonObject resultReply(const QJsonValue& id, const QJsonObject& result) {
    return {{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, idOrNull(id)}, {u"result"_s, result}};
}

QJsonObject initializeResult() {
    return {
        {u"protocolVersion"_s, u"2024-11-05"_s},
        {u"capabilities"_s, QJsonObject{{u"tools"_s, QJsonObject{{u"listChanged"_s, false}}}}},
        {u"serverInfo"_s, QJsonObject{{u"name"_s, u"orvane"_s}, {u"version"_s, u"0.1.0"_s}}},
        {u"instructions"_s, tool_catalogue::instructions()},
    };
}

} // namespace

MCPServer::MCPServer(ToolCallHandler& toolHandler)
    : m_toolHandler(toolHandler) {}

void MCPServer::run(StandardStreams& streams) const {
    LineReader lines(streams);
    run(lines, streams);
}

void MCPServer::run(LineReader& lines, StandardStreams& streams) const {
    while (const std::optional<QByteArrayView> line = lines.next()) {
        if (line->isEmpty())
            continue;
        const std::optional<QJsonObject> reply = process(*line);
        if (reply && !send(streams, *reply))
            return;
    }
}

std::optional<QJsonObject> MCPServer::handleMessage(QByteArrayView line) const {
    const QJsonObject message = message_codec::parse(line).object();
    const QJsonValue methodValue = message.value(u"method"_s);
    if (!methodValue.isString())
        return jsonRpcError(QJsonValue::Null, invalidRequest, u"Invalid request"_s);

    const QString method = methodValue.toString();
    const QJsonValue id = message.value(u"id"_s);
    if (method == u"notifications/initialized"_s)
        return std::nullopt;
    if (method == u"initialize"_s)
        return resultReply(id, initializeResult());
    if (method == u"tools/list"_s)
        return resultReply(id, {{u"tools"_s, tool_catalogue::toolDefinitions()}});
    if (method == u"tools/call"_s) {
        const QJsonObject params = message.value(u"params"_s).toObject();
        return resultReply(id, m_toolHandler.handleToolCall(params.value(u"name"_s).toString(),
                                                            params.value(u"arguments"_s).toObject()));
    }
    if (method == u"ping"_s)
        return resultReply(id, {});
    return jsonRpcError(id, methodNotFound, u"Method not found: "_s + method);
}

std::optional<QJsonObject> MCPServer::process(QByteArrayView line) const {
    try {
        return handleMessage(line);
    } catch (const std::exception& error) {
        return jsonRpcError(QJsonValue::Null, internalError, QString::fromUtf8(error.what()));
    }
}

QJsonObject MCPServer::jsonRpcError(const QJsonValue& id, int code, const QString& message) {
    return {
        {u"jsonrpc"_s, u"2.0"_s},
        {u"id"_s, idOrNull(id)},
        {u"error"_s, QJsonObject{{u"code"_s, code}, {u"message"_s, message}}},
    };
}

bool MCPServer::send(StandardStreams& streams, const QJsonObject& reply) {
    QByteArray line;
    try {
        line = message_codec::serialise(reply);
    } catch (const std::exception& error) {
        logBareLine(u"Failed to serialize response: "_s + QString::fromUtf8(error.what()));
        return true;
    }
    line += '\n';
    return streams.write(line);
}

} // namespace orvane
