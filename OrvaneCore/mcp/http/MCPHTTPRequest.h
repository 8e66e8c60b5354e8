#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace orvane {

/// A request of HTTP/1.x as it came in. Values; parsing is pure and for any thread.
/// Whitespace is that of ASCII.
struct MCPHTTPRequest {
    /// The word as it stands in the request, "post" is not "POST".
    QByteArray method;
    /// The query string is part of it.
    QByteArray path;
    /// What follows the request line, up to the empty line, in valid UTF-8.
    QByteArray headerLines;
    /// All that follows the head, whatever Content-Length says.
    QByteArray body;

    /// The trimmed value of a header; a view into `headerLines`. Upper and lower case are one in its name, a
    /// later header replaces an earlier one of the same name, and a line without a colon is none. Nothing
    /// when it is not there.
    /// Looked up in the text at each call: headers kept one by one would take many times the memory that the
    /// limit on a request allows.
    std::optional<QByteArrayView> header(QByteArrayView name) const;

    /// The number of bytes that Content-Length announces, which may be negative; 0 where it is absent, too
    /// large for 64 bits or no decimal number.
    qint64 contentLength() const;

    /// Reads a head and what follows it. Nothing while the empty line at the head's end is missing, and for a
    /// head that is no request's.
    static std::optional<MCPHTTPRequest> parse(QByteArrayView data);

    /// Reads a head without the empty line at its end; `body` stays empty. Nothing when it is not UTF-8 or
    /// its first line is not a method, a path and a version.
    static std::optional<MCPHTTPRequest> parseHead(QByteArrayView head);

    /// What ends a head.
    static constexpr QByteArrayView headEnd = "\r\n\r\n";
};

} // namespace orvane
