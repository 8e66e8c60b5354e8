#include "OrvaneCore/base/TypedObject.h"

#include <gtest/gtest.h>

#include <QJsonArray>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QLatin1String key("key");

QJsonObject holding(const QJsonValue& value) {
    return {{key, value}};
}

} // namespace

TEST(TypedObject, ReadsArraysOfObjects) {
    const QJsonObject first{{u"a"_s, 1}};
    const QJsonObject object = holding(QJsonArray{first, QJsonObject()});
    const auto objects = TypedObject(object).objects(key);
    ASSERT_TRUE(objects);
    EXPECT_EQ(*objects, (std::vector<QJsonObject>{first, {}}));
}

TEST(TypedObject, ReadsAnEmptyArrayAsNoObjects) {
    const QJsonObject object = holding(QJsonArray());
    const auto objects = TypedObject(object).objects(key);
    ASSERT_TRUE(objects);
    EXPECT_TRUE(objects->empty());
}

TEST(TypedObject, TakesNothingElseForAnArrayOfObjects) {
    for (const QJsonValue& value :
         {QJsonValue(), QJsonValue(QJsonObject()), QJsonValue(u"[]"_s), QJsonValue(1),
          QJsonValue(QJsonArray{QJsonObject(), 1}), QJsonValue(QJsonArray{QJsonValue()}),
          QJsonValue(QJsonArray{QJsonArray()})}) {
        const QJsonObject object = holding(value);
        EXPECT_FALSE(TypedObject(object).objects(key));
    }
    EXPECT_FALSE(TypedObject(QJsonObject()).objects(key));
}

} // namespace orvane
