#include "OrvaneCore/mcp/MCPServer.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/MCPReply.h"
#include "OrvaneCore/mcp/MCPRequest.h"
#include "OrvaneCore/mcp/ToolCallHandler.h"
#include "OrvaneCore/mcp/ToolCatalogue.h"
#include "OrvaneCore/platform/StandardStreams.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>

#include <exception>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int invalidRequest = -32600;
constexpr int methodNotFound = -32601;
/// Malformed JSON comes back with this code too, not with the -32700 that JSON-RPC keeps for it.
constexpr int internalError = -32603;

/// The id of a reply to what is no request, or to none that could be read.
constexpr auto noId = "null";

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
        const std::optional<MCPReply> reply = process(*line);
        if (reply && !send(streams, *reply))
            return;
    }
}

std::optional<MCPReply> MCPServer::handleMessage(QByteArrayView line) const {
    const MCPRequest request = MCPRequest::parse(line);
    const QJsonObject& message = request.message;
    const QJsonValue methodValue = message.value(u"method"_s);
    if (!methodValue.isString())
        return MCPReply::error(noId, invalidRequest, u"Invalid request"_s);

    const QString method = methodValue.toString();
    if (method == u"notifications/initialized"_s)
        return std::nullopt;
    if (method == u"initialize"_s)
        return MCPReply::result(request.id, initializeResult());
    if (method == u"tools/list"_s)
        return MCPReply::result(request.id, {{u"tools"_s, tool_catalogue::toolDefinitions()}});
    if (method == u"tools/call"_s) {
        const QJsonObject params = message.value(u"params"_s).toObject();
        return MCPReply::result(request.id,
                                m_toolHandler.handleToolCall(params.value(u"name"_s).toString(),
                                                             params.value(u"arguments"_s).toObject()));
    }
    if (method == u"ping"_s)
        return MCPReply::result(request.id, {});
    return MCPReply::error(request.id, methodNotFound, u"Method not found: "_s + method);
}

std::optional<MCPReply> MCPServer::process(QByteArrayView line) const {
    try {
        return handleMessage(line);
    } catch (const std::exception& error) {
        return MCPReply::error(noId, internalError, QString::fromUtf8(error.what()));
    }
}

bool MCPServer::send(StandardStreams& streams, const MCPReply& reply) {
    QByteArray line;
    try {
        line = reply.serialised();
    } catch (const std::exception& error) {
        logBareLine(u"Failed to serialize response: "_s + QString::fromUtf8(error.what()));
        return true;
    }
    line += '\n';
    return streams.write(line);
}

} // namespace orvane
