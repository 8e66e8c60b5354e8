#include "OrvaneCore/mcp/http/MCPHTTPRequest.h"

#include <array>
#include <charconv>
#include <system_error>

namespace orvane {

namespace {

constexpr QByteArrayView lineEnd = "\r\n";

/// Cuts the first piece off `text`; what remains in it begins after the separator.
QByteArrayView takeUntil(QByteArrayView& text, QByteArrayView separator) {
    const qsizetype at = text.indexOf(separator);
    const QByteArrayView piece = at < 0 ? text : text.first(at);
    text = at < 0 ? QByteArrayView() : text.sliced(at + separator.size());
    return piece;
}

} // namespace

std::optional<QByteArrayView> MCPHTTPRequest::header(QByteArrayView name) const {
    std::optional<QByteArrayView> value;
    QByteArrayView rest(headerLines);
    while (!rest.isEmpty()) {
        const QByteArrayView line = takeUntil(rest, lineEnd);
        const qsizetype colon = line.indexOf(':');
        if (colon >= 0 && line.first(colon).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            value = line.sliced(colon + 1).trimmed();
    }
    return value;
}

qint64 MCPHTTPRequest::contentLength() const {
    QByteArrayView digits = header("content-length").value_or(QByteArrayView());
    if (digits.startsWith('+') && !digits.startsWith("+-"))
        digits = digits.sliced(1);
    qint64 length = 0;
    const char* const end = digits.data() + digits.size();
    const std::from_chars_result read = std::from_chars(digits.data(), end, length);
    return read.ec == std::errc() && read.ptr == end ? length : 0;
}

std::optional<MCPHTTPRequest> MCPHTTPRequest::parse(QByteArrayView data) {
    const qsizetype end = data.indexOf(headEnd);
    if (end < 0)
        return std::nullopt;
    std::optional<MCPHTTPRequest> request = parseHead(data.first(end));
    if (request)
        request->body = data.sliced(end + headEnd.size()).toByteArray();
    return request;
}

std::optional<MCPHTTPRequest> MCPHTTPRequest::parseHead(QByteArrayView head) {
    if (!head.isValidUtf8())
        return std::nullopt;
    QByteArrayView headers = head;
    QByteArrayView requestLine = takeUntil(headers, lineEnd);

    std::array<QByteArrayView, 3> pieces;
    for (QByteArrayView& piece : pieces) {
        while (piece.isEmpty() && !requestLine.isEmpty())
            piece = takeUntil(requestLine, " ");
    }
    const auto& [method, path, version] = pieces;
    if (!version.startsWith("HTTP/"))
        return std::nullopt;
    return MCPHTTPRequest{method.toByteArray(), path.toByteArray(), headers.toByteArray(), {}};
}

} // namespace orvane
