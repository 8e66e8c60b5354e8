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

TEST(TypedObject, ReadsStringsOnly) {
    EXPECT_EQ(TypedObject(holding(u"7"_s)).string(key), u"7"_s);
    EXPECT_EQ(TypedObject(holding(u""_s)).string(key), u""_s);
    for (const QJsonValue& value :
         {QJsonValue(), QJsonValue(7), QJsonValue(true), QJsonValue(QJsonArray{u"7"_s})})
        EXPECT_EQ(TypedObject(holding(value)).string(key), std::nullopt);
    EXPECT_EQ(TypedObject(QJsonObject()).string(key), std::nullopt);
}

TEST(TypedObject, ReadsNumbersWithoutAFractionOnly) {
    for (const qint64 number : {qint64(0), qint64(1), qint64(-5), qint64(9'007'199'254'740'993)})
        EXPECT_EQ(TypedObject(holding(number)).integer(key), number);
    EXPECT_EQ(TypedObject(holding(2.0)).integer(key), 2);
    for (const QJsonValue& value :
         {QJsonValue(), QJsonValue(1.5), QJsonValue(1e30), QJsonValue(u"1"_s), QJsonValue(true)})
        EXPECT_EQ(TypedObject(holding(value)).integer(key), std::nullopt);
    EXPECT_EQ(TypedObject(QJsonObject()).integer(key), std::nullopt);
}

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
