#include "OrvaneCore/tools/IntegerRect.h"

#include "OrvaneCore/base/TypedObject.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

TEST(IntegerRect, ReadsFourIntegers) {
    const QJsonObject object{{u"x"_s, -1}, {u"y"_s, 2}, {u"width"_s, 3}, {u"height"_s, 4}, {u"more"_s, 5}};
    const auto rect = readIntegerRect(TypedObject(object));
    ASSERT_TRUE(rect);
    EXPECT_EQ(rect->toRectF(), QRectF(-1, 2, 3, 4));
    EXPECT_EQ(rect->toString(), u"(-1,2 3x4)");
}

TEST(IntegerRect, NeedsAllOfThem) {
    const QJsonObject whole{{u"x"_s, 1}, {u"y"_s, 2}, {u"width"_s, 3}, {u"height"_s, 4}};
    for (const QString& key : whole.keys()) {
        QJsonObject object = whole;
        object.remove(key);
        EXPECT_FALSE(readIntegerRect(TypedObject(object)));
        object.insert(key, 0.5);
        EXPECT_FALSE(readIntegerRect(TypedObject(object)));
    }
}

TEST(IntegerRect, HoldsTheLargestNumbers) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    EXPECT_EQ((IntegerRect{least, most, most, least}).toString(),
              u"(-9223372036854775808,9223372036854775807 9223372036854775807x-9223372036854775808)");
}

} // namespace orvane
