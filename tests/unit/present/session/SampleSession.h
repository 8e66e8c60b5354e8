#pragma once

#include "OrvaneCore/present/session/PresentSessionJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>
#include <optional>
#include <ostream>

/// A session that has everything, and its JSON with one thing changed.
namespace orvane::test {

using namespace Qt::StringLiterals;

inline const QString strokeId = u"0F8FAD5B-D9CB-469F-A165-70867728950E"_s;

/// With every optional.
inline PresentSessionBundle fullBundle() {
    return {
        .meta = {.id = u"20260102-030405-abcd"_s,
                 .createdAtMs = 1'767'322'245'678,
                 .title = u"T\u00f6pfer \u2014 \"x\""_s,
                 .reviewedAtMs = 0},
        .displays =
            {{.displayId = 4'294'967'295, .index = 2, .bounds = {-1920, 0.5, 1920, 1080}, .scale = 1.5}},
        .window = WindowContext{.appName = u"Editor"_s, .title = u"a/b"_s, .bounds = {1, 2, 3, 4}},
        .strokes = {{.id = strokeId,
                     .kind = u"image"_s,
                     .colorHex = u"#3B82F6"_s,
                     .strokeWidth = 3.5,
                     .text = u"line\nfeed"_s,
                     .label = u"label"_s,
                     .imageFile = u"img.png"_s,
                     .rotation = -0.25,
                     .role = u"review"_s,
                     .removed = true,
                     .startAbs = {-1000, 20.25},
                     .endAbs = {30, 40},
                     .startNorm = {0.5, -0.125},
                     .endNorm = {1, 1.5},
                     .displayIndex = 2,
                     .zOrder = 7,
                     .timestampMs = 1'767'322'245'679}},
    };
}

/// Without any optional, and with a second stroke.
inline PresentSessionBundle bareBundle() {
    PresentSessionBundle bundle = fullBundle();
    bundle.meta.title.reset();
    bundle.meta.reviewedAtMs.reset();
    bundle.window.reset();
    StrokeRecord& stroke = bundle.strokes.front();
    stroke.imageFile.reset();
    stroke.displayIndex.reset();
    stroke.timestampMs.reset();
    bundle.strokes.push_back({.kind = u"box"_s, .colorHex = u"#000000"_s, .zOrder = 1});
    return bundle;
}

inline QByteArray encoded(const PresentSessionBundle& bundle) {
    return encodeSession(bundle).value();
}

inline QJsonObject encodedObject(const PresentSessionBundle& bundle) {
    return QJsonDocument::fromJson(encoded(bundle)).object();
}

inline std::optional<PresentSessionBundle> decoded(const QJsonObject& object) {
    return decodeSession(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// The objects of a session, each by a way from the root.

using Change = std::function<void(QJsonObject&)>;

inline QJsonObject changedMember(QJsonObject root, const QString& key, const Change& change) {
    QJsonObject object = root.value(key).toObject();
    change(object);
    root.insert(key, object);
    return root;
}

inline QJsonObject changedElement(QJsonObject root, const QString& key, const Change& change) {
    QJsonArray array = root.value(key).toArray();
    QJsonObject object = array.first().toObject();
    change(object);
    array.replace(0, object);
    root.insert(key, array);
    return root;
}

enum class Record { root, meta, display, window, stroke };

/// The full session with one of its objects changed.
inline QJsonObject changed(Record record, const Change& change) {
    QJsonObject root = encodedObject(fullBundle());
    switch (record) {
    case Record::root:
        change(root);
        break;
    case Record::meta:
        return changedMember(root, u"meta"_s, change);
    case Record::display:
        return changedElement(root, u"displays"_s, change);
    case Record::window:
        return changedMember(root, u"window"_s, change);
    case Record::stroke:
        return changedElement(root, u"strokes"_s, change);
    }
    return root;
}

inline std::optional<PresentSessionBundle> decodedWith(Record record, const QString& key,
                                                       const QJsonValue& value) {
    return decoded(changed(record, [&](QJsonObject& object) { object.insert(key, value); }));
}

inline std::optional<PresentSessionBundle> decodedWithout(Record record, const QString& key) {
    return decoded(changed(record, [&](QJsonObject& object) { object.remove(key); }));
}

struct Key {
    Record record;
    const char16_t* name;

    QString text() const { return QString::fromUtf16(name); }
};

inline std::ostream& operator<<(std::ostream& stream, const Key& key) {
    return stream << static_cast<int>(key.record) << " " << key.text().toStdString();
}

} // namespace orvane::test
