#include "OrvaneCore/mcp/http/MCPHTTPRoutes.h"

#include "OrvaneCore/base/MessageError.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/mcp/http/MCPAuth.h"

namespace orvane {

std::optional<MCPHTTPResponse> mcp_http_routes::answerAtOnce(const MCPHTTPRequest& request,
                                                             QByteArrayView token) {
    if (!mcp_auth::isAllowedOrigin(request.header("origin")))
        return MCPHTTPResponse::plain(403, "Forbidden origin");
    if (request.method == "GET" && request.path == "/health")
        return MCPHTTPResponse::json(R"({"ok":true,"server":"orvane"})");
    if (request.method != "POST" || request.path != "/mcp")
        return MCPHTTPResponse::plain(404, "Not Found");
    if (!mcp_auth::isAuthorized(request.header("authorization"), token))
        return MCPHTTPResponse::plain(401, "Unauthorized");
    return std::nullopt;
}

MCPHTTPResponse mcp_http_routes::answer(const MCPServer& server, QByteArrayView body) {
    const std::optional<MCPReply> reply = server.process(body.isValidUtf8() ? body : QByteArrayView(""));
    if (!reply)
        return MCPHTTPResponse::plain(202, {});
    try {
        return MCPHTTPResponse::json(reply->serialised());
    } catch (const MessageError&) {
        return MCPHTTPResponse::plain(202, {});
    }
}

MCPHTTPResponse mcp_http_routes::badRequest() {
    return MCPHTTPResponse::plain(400, "Bad Request");
}

MCPHTTPResponse mcp_http_routes::payloadTooLarge() {
    return MCPHTTPResponse::plain(413, "Payload Too Large");
}

} // namespace orvane
