#pragma once

#include <QByteArrayView>

#include <array>
#include <optional>

/// Who may talk to the local host. Texts are UTF-8, an absent header is nothing. Pure; any thread.
namespace orvane::mcp_auth {

inline constexpr std::array<QByteArrayView, 3> loopbackHosts{"localhost", "127.0.0.1", "::1"};

/// Whether a request that names this Origin is let in: one from a page of this machine, or one that names
/// none, as clients that are no browsers do. The host is compared exactly, upper case is foreign.
bool isAllowedOrigin(std::optional<QByteArrayView> origin);

/// Whether an Authorization header carries the token: "Bearer", in any case, a blank, and the token.
/// An empty expected token lets nobody in.
bool isAuthorized(std::optional<QByteArrayView> authorizationHeader, QByteArrayView expectedToken);

/// The host in an Origin, without brackets around it; a view into `origin`. Nothing where there is none.
std::optional<QByteArrayView> host(QByteArrayView origin);

/// Takes as long for any two texts of one length, wherever they differ.
bool constantTimeEquals(QByteArrayView a, QByteArrayView b);

} // namespace orvane::mcp_auth
