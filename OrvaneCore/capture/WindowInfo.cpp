#include "OrvaneCore/capture/WindowInfo.h"

#include "OrvaneCore/base/TypedObject.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <limits>

namespace orvane {

namespace {

/// A string as a JSON literal. QJsonDocument writes whole documents only, hence the brackets to cut off.
QByteArray literal(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.sliced(1, array.size() - 2);
}

/// QJsonObject sorts its keys, and here their order is fixed: so each object is put together by hand.
QByteArray encode(const WindowInfo& window) {
    QByteArray json = "{\"appName\":" + literal(window.appName);
    json += ",\"windowTitle\":" + literal(window.windowTitle);
    json += ",\"pid\":" + QByteArray::number(window.pid);
    json += ",\"windowId\":" + QByteArray::number(window.windowId);
    json += ",\"x\":" + QByteArray::number(window.x);
    json += ",\"y\":" + QByteArray::number(window.y);
    json += ",\"width\":" + QByteArray::number(window.width);
    json += ",\"height\":" + QByteArray::number(window.height);
    json += ",\"displayId\":" + QByteArray::number(window.displayId);
    json += ",\"displayBounds\":" + literal(window.displayBounds);
    return json + '}';
}

/// Reads members one after another and remembers whether each was there with its type.
class Decoder {
public:
    explicit Decoder(const QJsonObject& object)
        : m_object(object) {}

    QString text(QLatin1String key) {
        const std::optional<QString> text = TypedObject(m_object).string(key);
        m_complete = m_complete && text;
        return text.value_or(QString());
    }

    template <typename Integer>
    Integer integer(QLatin1String key) {
        const std::optional<qint64> number = TypedObject(m_object).integer(key);
        m_complete = m_complete && number && *number >= qint64(std::numeric_limits<Integer>::min()) &&
                     *number <= qint64(std::numeric_limits<Integer>::max());
        return static_cast<Integer>(number.value_or(0));
    }

    bool complete() const { return m_complete; }

private:
    const QJsonObject& m_object;
    bool m_complete = true;
};

} // namespace

QByteArray encodeWindowInfos(const std::vector<WindowInfo>& windows) {
    QByteArray json = "[";
    for (const WindowInfo& window : windows) {
        if (json.size() > 1)
            json += ',';
        json += encode(window);
    }
    return json + ']';
}

std::optional<WindowInfo> decodeWindowInfo(const QJsonObject& object) {
    Decoder decoder(object);
    WindowInfo window;
    window.appName = decoder.text(QLatin1String("appName"));
    window.windowTitle = decoder.text(QLatin1String("windowTitle"));
    window.pid = decoder.integer<qint32>(QLatin1String("pid"));
    window.windowId = decoder.integer<qint64>(QLatin1String("windowId"));
    window.x = decoder.integer<qint64>(QLatin1String("x"));
    window.y = decoder.integer<qint64>(QLatin1String("y"));
    window.width = decoder.integer<qint64>(QLatin1String("width"));
    window.height = decoder.integer<qint64>(QLatin1String("height"));
    window.displayId = decoder.integer<quint32>(QLatin1String("displayId"));
    window.displayBounds = decoder.text(QLatin1String("displayBounds"));
    return decoder.complete() ? std::optional(window) : std::nullopt;
}

} // namespace orvane
