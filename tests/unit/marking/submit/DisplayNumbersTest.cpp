#include "OrvaneCore/marking/submit/DisplayNumbers.h"

#include "tests/support/FakeDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace {

Display displayAt(quint32 id, qreal x, qreal y = 0) {
    return makeDisplay(id, {x, y, 1440, 900});
}

std::vector<quint32> idsOf(const std::vector<Display>& displays) {
    std::vector<quint32> ids;
    ids.reserve(displays.size());
    for (const Display& display : displays)
        ids.push_back(display.id);
    return ids;
}

TEST(DisplayNumbers, CountFromTheLeftmostDisplay) {
    const std::vector<Display> displays{displayAt(7, 0), displayAt(8, -1440), displayAt(9, 2560)};
    const std::vector<Display> sorted = activeDisplaysSorted(displays);
    EXPECT_THAT(idsOf(sorted), ElementsAre(8U, 7U, 9U));
    EXPECT_EQ(displayNumber(sorted, 8), 1);
    EXPECT_EQ(displayNumber(sorted, 7), 2);
    EXPECT_EQ(displayNumber(sorted, 9), 3);
}

TEST(DisplayNumbers, StackedDisplaysKeepTheSystemsOrder) {
    const std::vector<Display> displays{displayAt(3, 0, 900), displayAt(1, 0, 0), displayAt(2, -10),
                                        displayAt(4, 0, -900)};
    EXPECT_THAT(idsOf(activeDisplaysSorted(displays)), ElementsAre(2U, 3U, 1U, 4U));
}

TEST(DisplayNumbers, ADisplayThatIsGoneCountsAsTheFirst) {
    EXPECT_EQ(displayNumber({displayAt(1, 0), displayAt(2, 1440)}, 5), 1);
    EXPECT_EQ(displayNumber({}, 5), 1);
}

TEST(DisplayNumbers, SixteenDisplaysCount) {
    std::vector<Display> displays;
    displays.reserve(20);
    for (quint32 id = 1; id <= 20; ++id)
        displays.push_back(displayAt(id, -1440.0 * id));
    EXPECT_THAT(idsOf(getDisplays(displays)),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16));
    EXPECT_THAT(idsOf(activeDisplaysSorted(displays)),
                ElementsAre(16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_TRUE(getDisplays({}).empty());
    EXPECT_TRUE(activeDisplaysSorted({}).empty());
}

TEST(DisplayNumbers, TheFirstThatThePlatformListsIsTheMainOne) {
    const std::vector<Display> displays{displayAt(7, 0), displayAt(8, -1440)};
    EXPECT_TRUE(isMainDisplay(displays, 7));
    EXPECT_FALSE(isMainDisplay(displays, 8));
    EXPECT_FALSE(isMainDisplay({}, 7));
}

TEST(DisplayNumbers, BackingScaleIsThatOfTheDisplayElseOne) {
    const std::vector<Display> displays{makeDisplay(7, {0, 0, 100, 100}, 2),
                                        makeDisplay(8, {100, 0, 100, 100}, 1.5)};
    EXPECT_EQ(backingScale(displays, 7), 2);
    EXPECT_EQ(backingScale(displays, 8), 1.5);
    EXPECT_EQ(backingScale(displays, 9), 1);
    EXPECT_EQ(backingScale(displays, std::nullopt), 1);
}

TEST(DisplayNumbers, ScalesAreWrittenWholeOrWithOneDecimal) {
    EXPECT_EQ(scaleStr(1), u"1"_s);
    EXPECT_EQ(scaleStr(2), u"2"_s);
    EXPECT_EQ(scaleStr(1.5), u"1.5"_s);
    EXPECT_EQ(scaleStr(1.25), u"1.2"_s);
    EXPECT_EQ(scaleStr(1.3333), u"1.3"_s);
    EXPECT_EQ(scaleStr(2.96), u"3.0"_s);
}

} // namespace
} // namespace orvane::test
