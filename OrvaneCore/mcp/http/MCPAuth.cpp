#include "OrvaneCore/mcp/http/MCPAuth.h"

#include <algorithm>

namespace orvane {

bool mcp_auth::isAllowedOrigin(std::optional<QByteArrayView> origin) {
    if (!origin || origin->isEmpty())
        return true;
    const std::optional<QByteArrayView> originHost = host(*origin);
    return originHost &&
           std::find(loopbackHosts.begin(), loopbackHosts.end(), *originHost) != loopbackHosts.end();
}

bool mcp_auth::isAuthorized(std::optional<QByteArrayView> authorizationHeader, QByteArrayView expectedToken) {
    if (expectedToken.isEmpty() || !authorizationHeader)
        return false;
    QByteArrayView header = *authorizationHeader;
    while (header.startsWith(' '))
        header = header.sliced(1);
    const qsizetype blank = header.indexOf(' ');
    if (blank < 0)
        return false;
    if (header.first(blank).compare("bearer", Qt::CaseInsensitive) != 0)
        return false;
    const QByteArrayView token = header.sliced(blank).trimmed();
    return !token.isEmpty() && constantTimeEquals(token, expectedToken);
}

std::optional<QByteArrayView> mcp_auth::host(QByteArrayView origin) {
    QByteArrayView rest = origin;
    if (const qsizetype scheme = rest.indexOf("://"); scheme >= 0)
        rest = rest.sliced(scheme + 3);
    if (const qsizetype slash = rest.indexOf('/'); slash >= 0)
        rest = rest.first(slash);
    if (const qsizetype at = rest.lastIndexOf('@'); at >= 0)
        rest = rest.sliced(at + 1);
    if (rest.startsWith('[')) {
        const qsizetype bracket = rest.indexOf(']');
        if (bracket < 0)
            return std::nullopt;
        return rest.sliced(1, bracket - 1);
    }
    if (const qsizetype colon = rest.indexOf(':'); colon >= 0)
        rest = rest.first(colon);
    return rest.isEmpty() ? std::nullopt : std::optional(rest);
}

bool mcp_auth::constantTimeEquals(QByteArrayView a, QByteArrayView b) {
    if (a.size() != b.size())
        return false;
    unsigned int difference = 0;
    for (qsizetype at = 0; at < a.size(); ++at)
        difference |= static_cast<unsigned char>(a[at]) ^ static_cast<unsigned char>(b[at]);
    return difference == 0;
}

} // namespace orvane
