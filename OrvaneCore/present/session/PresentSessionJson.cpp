#include "OrvaneCore/present/session/PresentSessionJson.h"

#include "OrvaneCore/base/MessageCodec.h"
#include "OrvaneCore/base/MessageError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

template <typename Type, typename Record>
concept Is = std::same_as<std::remove_const_t<Type>, Record>;

// The members of each record, for reading and writing alike. The `tolerated` ones are always written and may
// be missing when reading.

void visit(auto& members, Is<SessionMeta> auto& meta) {
    members.required("schemaVersion"_L1, meta.schemaVersion);
    members.required("id"_L1, meta.id);
    members.required("createdAtMs"_L1, meta.createdAtMs);
    members.optional("title"_L1, meta.title);
    members.required("provenance"_L1, meta.provenance);
    members.optional("reviewedAtMs"_L1, meta.reviewedAtMs);
}

void visit(auto& members, Is<DisplayInfo> auto& display) {
    members.required("displayId"_L1, display.displayId);
    members.required("index"_L1, display.index);
    members.required("bounds"_L1, display.bounds);
    members.required("scale"_L1, display.scale);
}

void visit(auto& members, Is<WindowContext> auto& window) {
    members.required("appName"_L1, window.appName);
    members.required("title"_L1, window.title);
    members.required("bounds"_L1, window.bounds);
}

void visit(auto& members, Is<StrokeRecord> auto& stroke) {
    members.tolerated("id"_L1, stroke.id);
    members.required("kind"_L1, stroke.kind);
    members.required("colorHex"_L1, stroke.colorHex);
    members.required("strokeWidth"_L1, stroke.strokeWidth);
    members.required("text"_L1, stroke.text);
    members.tolerated("label"_L1, stroke.label);
    members.optional("imageFile"_L1, stroke.imageFile);
    members.tolerated("rotation"_L1, stroke.rotation);
    members.tolerated("role"_L1, stroke.role);
    members.tolerated("removed"_L1, stroke.removed);
    members.required("startAbs"_L1, stroke.startAbs);
    members.required("endAbs"_L1, stroke.endAbs);
    members.required("startNorm"_L1, stroke.startNorm);
    members.required("endNorm"_L1, stroke.endNorm);
    members.optional("displayIndex"_L1, stroke.displayIndex);
    members.required("zOrder"_L1, stroke.zOrder);
    members.optional("timestampMs"_L1, stroke.timestampMs);
}

void visit(auto& members, Is<PresentSessionBundle> auto& bundle) {
    members.required("meta"_L1, bundle.meta);
    members.required("displays"_L1, bundle.displays);
    members.optional("window"_L1, bundle.window);
    members.required("strokes"_L1, bundle.strokes);
}

/// Makes the object of one record and remembers whether all its numbers were finite.
class Writer {
public:
    template <typename Record>
    static Writer of(const Record& record) {
        Writer writer;
        visit(writer, record);
        return writer;
    }

    void required(QLatin1String key, const auto& value) { m_object.insert(key, toJson(value)); }
    void tolerated(QLatin1String key, const auto& value) { required(key, value); }

    template <typename Value>
    void optional(QLatin1String key, const std::optional<Value>& value) {
        if (value)
            required(key, *value);
    }

    bool finite() const { return m_finite; }
    const QJsonObject& object() const { return m_object; }

private:
    static QJsonValue toJson(const QString& text) { return text; }
    static QJsonValue toJson(bool flag) { return flag; }
    static QJsonValue toJson(qint64 number) { return number; }
    static QJsonValue toJson(quint32 number) { return qint64(number); }

    QJsonValue toJson(qreal number) {
        m_finite = m_finite && std::isfinite(number);
        return number;
    }

    QJsonValue toJson(const QPointF& point) { return QJsonArray{toJson(point.x()), toJson(point.y())}; }

    QJsonValue toJson(const QRectF& rect) {
        return QJsonArray{toJson(rect.topLeft()), toJson(QPointF(rect.width(), rect.height()))};
    }

    template <typename Record>
    QJsonValue toJson(const std::vector<Record>& records) {
        QJsonArray array;
        for (const Record& record : records)
            array.append(toJson(record));
        return array;
    }

    template <typename Record>
    QJsonValue toJson(const Record& record) {
        const Writer writer = of(record);
        m_finite = m_finite && writer.m_finite;
        return writer.m_object;
    }

    QJsonObject m_object;
    bool m_finite = true;
};

/// Reads the members of one object and remembers whether each was there with its type.
class Reader {
public:
    /// Into `record`, which keeps its own values where members may be missing.
    template <typename Record>
    static bool read(const QJsonObject& object, Record& record) {
        Reader reader(object);
        visit(reader, record);
        return reader.m_complete;
    }

    void required(QLatin1String key, auto& value) { take(m_object.value(key), value); }

    void tolerated(QLatin1String key, auto& value) {
        if (const QJsonValue json = m_object.value(key); !isMissing(json))
            take(json, value);
    }

    template <typename Value>
    void optional(QLatin1String key, std::optional<Value>& value) {
        if (const QJsonValue json = m_object.value(key); !isMissing(json))
            take(json, value.emplace());
    }

private:
    explicit Reader(const QJsonObject& object)
        : m_object(object) {}

    static bool isMissing(const QJsonValue& json) { return json.isUndefined() || json.isNull(); }

    void take(const QJsonValue& json, auto& value) { m_complete = m_complete && fromJson(json, value); }

    static bool fromJson(const QJsonValue& json, QString& text) {
        text = json.toString();
        return json.isString();
    }

    static bool fromJson(const QJsonValue& json, bool& flag) {
        flag = json.toBool();
        return json.isBool();
    }

    static bool fromJson(const QJsonValue& json, qreal& number) {
        number = json.toDouble();
        return json.isDouble();
    }

    static bool fromJson(const QJsonValue& json, qint64& number) {
        number = json.toInteger(0);
        // toInteger gives its default for what is no integer, so two defaults tell a real 0 from none.
        return number == json.toInteger(1);
    }

    static bool fromJson(const QJsonValue& json, quint32& number) {
        qint64 wide = 0;
        if (!fromJson(json, wide) || wide < 0 || wide > std::numeric_limits<quint32>::max())
            return false;
        number = static_cast<quint32>(wide);
        return true;
    }

    template <typename Value>
    static bool fromPair(const QJsonValue& json, Value& first, Value& second) {
        const QJsonArray pair = json.toArray();
        return pair.size() == 2 && fromJson(pair[0], first) && fromJson(pair[1], second);
    }

    static bool fromJson(const QJsonValue& json, QPointF& point) {
        return fromPair(json, point.rx(), point.ry());
    }

    static bool fromJson(const QJsonValue& json, QRectF& rect) {
        QPointF origin;
        QPointF size;
        if (!fromPair(json, origin, size))
            return false;
        rect = QRectF(origin.x(), origin.y(), size.x(), size.y());
        return true;
    }

    template <typename Record>
    static bool fromJson(const QJsonValue& json, std::vector<Record>& records) {
        if (!json.isArray())
            return false;
        const QJsonArray array = json.toArray();
        records.reserve(static_cast<std::size_t>(array.size()));
        for (const auto& element : array) {
            if (!fromJson(element, records.emplace_back()))
                return false;
        }
        return true;
    }

    template <typename Record>
    static bool fromJson(const QJsonValue& json, Record& record) {
        return json.isObject() && read(json.toObject(), record);
    }

    const QJsonObject& m_object;
    bool m_complete = true;
};

} // namespace

std::optional<QByteArray> encodeSession(const PresentSessionBundle& bundle) {
    const Writer writer = Writer::of(bundle);
    if (!writer.finite())
        return std::nullopt;
    return QJsonDocument(writer.object()).toJson(QJsonDocument::Indented);
}

std::optional<PresentSessionBundle> decodeSession(const QByteArray& json) {
    try {
        PresentSessionBundle bundle;
        const QJsonDocument document = message_codec::parse(json);
        if (document.isObject() && Reader::read(document.object(), bundle))
            return bundle;
    } catch (const MessageError&) {
        // What is wrong with the text tells its readers no more than that they cannot have the session.
    }
    return std::nullopt;
}

} // namespace orvane
