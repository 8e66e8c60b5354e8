#include "OrvaneCore/mcp/http/MCPHTTPResponse.h"

namespace orvane {

MCPHTTPResponse MCPHTTPResponse::plain(int status, QByteArrayView text) {
    return {status, "text/plain", text.toByteArray()};
}

MCPHTTPResponse MCPHTTPResponse::json(const QByteArray& body) {
    return {200, "application/json", body};
}

QByteArray MCPHTTPResponse::bytes() const {
    QByteArray bytes = head(status, contentType, body.size());
    bytes.reserve(bytes.size() + body.size());
    bytes += body;
    return bytes;
}

QByteArray MCPHTTPResponse::head(int status, QByteArrayView contentType, qsizetype length) {
    QByteArray text = "HTTP/1.1 ";
    text.append(QByteArray::number(status)).append(' ').append(statusText(status));
    text.append("\r\nContent-Type: ").append(contentType);
    text.append("\r\nContent-Length: ").append(QByteArray::number(length));
    text.append("\r\nConnection: close\r\n\r\n");
    return text;
}

QByteArrayView MCPHTTPResponse::statusText(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 202:
        return "Accepted";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 413:
        return "Payload Too Large";
    default:
        return "Error";
    }
}

} // namespace orvane
