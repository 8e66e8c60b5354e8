#include "OrvaneCore/mcp/MCPEndpointInfo.h"

#include "OrvaneCore/base/TypedObject.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1String urlKey("url");
constexpr QLatin1String portKey("port");
constexpr QLatin1String tokenKey("token");
constexpr QLatin1String pidKey("pid");
constexpr QLatin1String versionKey("version");
constexpr QLatin1String startedAtKey("startedAt");

std::optional<int> smallInteger(const TypedObject& object, QLatin1String key) {
    const std::optional<qint64> number = object.integer(key);
    return number && std::in_range<int>(*number) ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

} // namespace

MCPEndpointInfo MCPEndpointInfo::ofHost(int port, const QString& token, qint32 pid,
                                        const QDateTime& startedAt) {
    return {u"http://127.0.0.1:%1/mcp"_s.arg(port), port, token, pid, u"0.1.0"_s,
            startedAt.toUTC().toString(Qt::ISODate)};
}

QByteArray MCPEndpointInfo::encoded() const {
    const QJsonObject object{{urlKey, url}, {portKey, port},       {tokenKey, token},
                             {pidKey, pid}, {versionKey, version}, {startedAtKey, startedAt}};
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

std::optional<MCPEndpointInfo> MCPEndpointInfo::decoded(QByteArrayView json) {
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromRawData(json.data(), json.size()));
    const QJsonObject content = document.object();
    const TypedObject object(content);
    const std::optional<QString> url = object.string(urlKey);
    const std::optional<int> port = smallInteger(object, portKey);
    const std::optional<QString> token = object.string(tokenKey);
    const std::optional<int> pid = smallInteger(object, pidKey);
    const std::optional<QString> version = object.string(versionKey);
    const std::optional<QString> startedAt = object.string(startedAtKey);
    if (!url || !port || !token || !pid || !version || !startedAt)
        return std::nullopt;
    return MCPEndpointInfo{*url, *port, *token, *pid, *version, *startedAt};
}

} // namespace orvane
