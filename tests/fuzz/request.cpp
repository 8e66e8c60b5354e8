// The HTTP request parser on whatever bytes, and the reader that gets them piece by piece.
#include "OrvaneCore/mcp/http/MCPAuth.h"
#include "OrvaneCore/mcp/http/MCPHTTPRequest.h"
#include "OrvaneCore/mcp/http/MCPHTTPRequestReader.h"
#include "tests/fuzz/Check.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

using namespace orvane;
using fuzz::check;
using State = MCPHTTPRequestReader::State;

/// What the reader has to say about these bytes, told the slow way.
State expectedState(QByteArrayView received, qsizetype maxBytes) {
    if (received.size() > maxBytes)
        return State::tooLarge;
    const std::optional<MCPHTTPRequest> request = MCPHTTPRequest::parse(received);
    return request && request->body.size() >= request->contentLength() ? State::complete : State::incomplete;
}

void checkAuth(const MCPHTTPRequest& request) {
    const std::optional<QByteArrayView> origin = request.header("origin");
    const bool allowed = mcp_auth::isAllowedOrigin(origin);
    check(!allowed || !origin || origin->isEmpty() || origin->contains("localhost") ||
              origin->contains("127.0.0.1") || origin->contains("::1"),
          "an allowed origin names a loopback host");

    const std::optional<QByteArrayView> authorization = request.header("authorization");
    check(!mcp_auth::isAuthorized(authorization, {}), "an empty token lets nobody in");
    check(!mcp_auth::isAuthorized(authorization, "0123") || authorization->endsWith(" 0123") ||
              authorization->trimmed().endsWith("0123"),
          "who is let in has the token");
}

void checkPieces(QByteArrayView data, QByteArrayView lengths, qsizetype maxBytes) {
    MCPHTTPRequestReader reader(maxBytes);
    State state = State::incomplete;
    qsizetype at = 0;
    for (qsizetype turn = 0; at < data.size() && state == State::incomplete; ++turn) {
        const auto wanted = static_cast<unsigned char>(lengths[turn % lengths.size()]);
        const qsizetype length = std::clamp(qsizetype{wanted}, qsizetype{1}, data.size() - at);
        state = reader.append(data.sliced(at, length));
        at += length;
        check(state == expectedState(data.first(at), maxBytes), "the reader agrees with the parser");
    }
    if (state != State::complete)
        return;
    const MCPHTTPRequest read = reader.take();
    const std::optional<MCPHTTPRequest> parsed = MCPHTTPRequest::parse(data.first(at));
    check(parsed && read.method == parsed->method && read.path == parsed->path &&
              read.headerLines == parsed->headerLines && read.body == parsed->body,
          "the reader gives what the parser gives");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArrayView input(bytes, static_cast<qsizetype>(size));
    if (const std::optional<MCPHTTPRequest> request = MCPHTTPRequest::parse(input)) {
        check(!request->method.isEmpty() && !request->path.isEmpty(), "a request has a method and a path");
        check(!request->method.contains(' ') && !request->path.contains(' '), "its parts hold no blank");
        check(input.endsWith(request->body), "the body is the end of the input");
        checkAuth(*request);
    }
    // The last four bytes, where there are more, say how the rest is cut.
    constexpr qsizetype controlBytes = 4;
    if (input.size() > controlBytes) {
        const QByteArrayView lengths = input.last(controlBytes);
        checkPieces(input.chopped(controlBytes), lengths, qsizetype{512});
        checkPieces(input.chopped(controlBytes), "\1", qsizetype{1} << 20);
    }
    return 0;
}
