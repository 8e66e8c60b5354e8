#pragma once

#include "OrvaneCore/mcp/http/MCPHTTPRequest.h"
#include "OrvaneCore/mcp/http/MCPHTTPResponse.h"

#include <QByteArrayView>

#include <optional>

namespace orvane {

class MCPServer;

/// What the local host answers to a request. Any thread.
namespace mcp_http_routes {

/// The reply to all that is not for the MCP server: the health check, and what is refused. Nothing for a
/// message that `answer` is to handle. An empty token lets no message through.
std::optional<MCPHTTPResponse> answerAtOnce(const MCPHTTPRequest& request, QByteArrayView token);

/// The reply to a message, which a body that is not UTF-8 leaves empty. Blocks as long as the tool takes.
MCPHTTPResponse answer(const MCPServer& server, QByteArrayView body);

MCPHTTPResponse badRequest();
MCPHTTPResponse payloadTooLarge();

} // namespace mcp_http_routes

} // namespace orvane
