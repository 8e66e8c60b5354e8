#include "OrvaneCore/capture/WindowInfo.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace orvane {

namespace {

WindowInfo sample() {
    return {.appName = QStringLiteral("Töpfer \"x\"\n"),
            .windowTitle = QStringLiteral("日本 — a/b"),
            .pid = 12,
            .windowId = 8388614,
            .x = -5,
            .y = 20,
            .width = 640,
            .height = 480,
            .displayId = 4294967295U,
            .displayBounds = QStringLiteral("0,0,1920,1080")};
}

QJsonObject sampleObject() {
    return QJsonDocument::fromJson(encodeWindowInfos({sample()})).array().first().toObject();
}

} // namespace

TEST(WindowInfo, EncodesKeysInTheirOrder) {
    EXPECT_EQ(QString::fromUtf8(encodeWindowInfos({sample()})),
              QStringLiteral(R"([{"appName":"Töpfer \"x\"\n","windowTitle":"日本 — a/b","pid":12,)"
                             R"("windowId":8388614,"x":-5,"y":20,"width":640,"height":480,)"
                             R"("displayId":4294967295,"displayBounds":"0,0,1920,1080"}])"));
}

TEST(WindowInfo, EncodesNoneAndMany) {
    EXPECT_EQ(encodeWindowInfos({}), "[]");
    EXPECT_EQ(QJsonDocument::fromJson(encodeWindowInfos({sample(), sample(), sample()})).array().size(), 3);
}

TEST(WindowInfo, DecodesWhatItEncodes) {
    EXPECT_EQ(decodeWindowInfo(sampleObject()), sample());
}

TEST(WindowInfo, NeedsEveryKey) {
    const QStringList keys = sampleObject().keys();
    ASSERT_EQ(keys.size(), 10);
    for (const QString& key : keys) {
        QJsonObject object = sampleObject();
        object.remove(key);
        EXPECT_EQ(decodeWindowInfo(object), std::nullopt) << key.toStdString();
    }
}

TEST(WindowInfo, NeedsValuesOfTheirTypes) {
    const QStringList keys = sampleObject().keys();
    for (const QString& key : keys) {
        QJsonObject object = sampleObject();
        object.insert(key, object.value(key).isString() ? QJsonValue(3) : QJsonValue(QStringLiteral("3")));
        EXPECT_EQ(decodeWindowInfo(object), std::nullopt) << key.toStdString();
    }
    QJsonObject object = sampleObject();
    object.insert(QStringLiteral("x"), 1.5);
    EXPECT_EQ(decodeWindowInfo(object), std::nullopt);
    object = sampleObject();
    object.insert(QStringLiteral("pid"), qint64(5'000'000'000));
    EXPECT_EQ(decodeWindowInfo(object), std::nullopt);
    object = sampleObject();
    object.insert(QStringLiteral("displayId"), -1);
    EXPECT_EQ(decodeWindowInfo(object), std::nullopt);
}

} // namespace orvane
