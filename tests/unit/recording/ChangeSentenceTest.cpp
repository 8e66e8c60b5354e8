#include "OrvaneCore/recording/ChangeSentence.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <array>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

struct Cell {
    int col;
    int row;
};

std::vector<RegionDiff> regions(const std::vector<Cell>& cells) {
    std::vector<RegionDiff> result;
    result.reserve(cells.size());
    for (const Cell& cell : cells)
        result.push_back({.col = cell.col, .row = cell.row, .diffPercent = 10, .pixelRect = {}});
    return result;
}

/// All cells of some columns and rows.
std::vector<RegionDiff> block(int firstCol, int lastCol, int firstRow, int lastRow) {
    std::vector<Cell> cells;
    cells.reserve(gridCells);
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int col = firstCol; col <= lastCol; ++col)
            cells.push_back({col, row});
    }
    return regions(cells);
}

std::string area(const std::vector<Cell>& cells) {
    return areaName(regions(cells)).toStdString();
}

} // namespace

TEST(AreaName, NamesTheBandsOfALoneCell) {
    const std::array rowWords{u"top"_s, u"top"_s, u"middle"_s, u"middle"_s, u"bottom"_s, u"bottom"_s};
    const std::array colWords{u"left"_s,   u"left"_s,  u"center"_s, u"center"_s,
                              u"center"_s, u"right"_s, u"right"_s,  u"right"_s};
    for (int row = 0; row < gridRows; ++row) {
        for (int col = 0; col < gridCols; ++col) {
            EXPECT_EQ(areaName(regions({{col, row}})), rowWords.at(static_cast<std::size_t>(row)) + u'-' +
                                                           colWords.at(static_cast<std::size_t>(col)));
        }
    }
}

TEST(AreaName, NamesBlocks) {
    EXPECT_EQ(areaName(block(5, 7, 0, 1)), u"top-right"_s);
    EXPECT_EQ(areaName(block(0, 1, 4, 5)), u"bottom-left"_s);
    EXPECT_EQ(area({{3, 0}, {3, 0}, {3, 2}, {3, 2}}), "middle-center");
}

TEST(AreaName, NeedsMoreAtTheTopThanInEachOtherBand) {
    EXPECT_EQ(area({{0, 0}, {0, 1}, {0, 2}, {0, 4}}), "top-left");
    EXPECT_EQ(area({{0, 0}, {0, 2}}), "middle-left");
    EXPECT_EQ(area({{0, 0}, {0, 4}}), "left");
}

TEST(AreaName, NamesTheMiddleWhereTheTopHasNoMore) {
    EXPECT_EQ(area({{0, 2}, {0, 3}, {0, 0}, {0, 1}}), "middle-left");
    EXPECT_EQ(area({{0, 2}, {0, 0}, {0, 1}}), "top-left");
    // Though there is more at the bottom, which comes second.
    EXPECT_EQ(area({{0, 2}, {0, 4}, {0, 5}, {1, 5}}), "middle-bottom");
    EXPECT_EQ(area({{0, 2}, {0, 0}, {0, 4}}), "middle-left");
}

TEST(AreaName, NamesTheBottomWithoutAskingForTheMiddle) {
    EXPECT_EQ(area({{0, 2}, {0, 3}, {1, 3}, {0, 4}}), "middle-bottom");
    EXPECT_EQ(area({{0, 4}, {0, 5}, {0, 0}}), "bottom-left");
    // The middle has less than the top.
    EXPECT_EQ(area({{0, 4}, {0, 5}, {1, 5}, {0, 0}, {0, 1}, {0, 2}}), "bottom-left");
    EXPECT_EQ(area({{0, 4}, {0, 0}, {0, 1}, {0, 2}}), "top-left");
}

TEST(AreaName, NeedsMoreOnTheLeftThanInEachOtherBand) {
    EXPECT_EQ(area({{0, 0}, {1, 0}, {5, 0}}), "top-left");
    EXPECT_EQ(area({{0, 0}, {1, 0}, {1, 1}, {2, 0}, {5, 0}, {6, 0}}), "top-left");
    EXPECT_EQ(area({{0, 0}, {2, 0}}), "top-center");
    EXPECT_EQ(area({{0, 0}, {5, 0}}), "top");
}

TEST(AreaName, NamesTheCenterWheneverItHasACell) {
    EXPECT_EQ(area({{2, 0}, {5, 0}, {6, 0}, {7, 0}}), "top-center");
    EXPECT_EQ(area({{4, 0}, {0, 0}, {1, 0}, {5, 0}, {6, 0}}), "top-center");
    // No word for the rows, so both words of the columns stay.
    EXPECT_EQ(area({{0, 0}, {0, 1}, {2, 4}, {0, 5}}), "left-center");
    EXPECT_EQ(area({{2, 0}, {5, 5}}), "center-right");
}

TEST(AreaName, NamesTheRightWithoutAskingForTheCenter) {
    EXPECT_EQ(area({{5, 0}, {0, 5}, {6, 5}, {6, 0}}), "right");
    EXPECT_EQ(area({{2, 0}, {3, 0}, {4, 5}, {5, 5}}), "center-right");
    EXPECT_EQ(area({{2, 0}, {3, 0}, {4, 5}, {5, 5}, {0, 5}, {0, 0}}), "center");
}

TEST(AreaName, KeepsTheFirstTwoWords) {
    // Middle and bottom win over center and right.
    EXPECT_EQ(area({{3, 2}, {3, 4}, {6, 4}}), "middle-bottom");
    EXPECT_EQ(areaName(block(0, 7, 0, 5)), u"middle-center"_s);
}

TEST(AreaName, IsTheScreenWhereNoWordFits) {
    EXPECT_EQ(area({{0, 0}, {7, 5}}), "screen");
    EXPECT_EQ(area({}), "screen");
}

TEST(DescribeChange, TellsOfNewActivity) {
    EXPECT_EQ(describeChange(block(5, 7, 0, 1), 6, 12.5, false),
              u"New activity in top-right area (6 cells changed)."_s);
    EXPECT_EQ(describeChange(regions({{0, 5}}), 1, 100, false),
              u"New activity in bottom-left area (1 cells changed)."_s);
}

TEST(DescribeChange, TellsWhereASignificantChangeIs) {
    EXPECT_EQ(describeChange(block(0, 1, 0, 1), 4, 43.21, true),
              u"Significant change in top-left area (4 cells, avg 43% diff)."_s);
}

TEST(DescribeChange, GivesNoPlaceAboveHalfOfTheScreen) {
    EXPECT_EQ(describeChange(block(0, 7, 0, 2), 24, 12.4, true),
              u"Significant change in top-center area (24 cells, avg 12% diff)."_s);
    EXPECT_EQ(describeChange(block(0, 4, 0, 4), 25, 12.6, true),
              u"Major visual update (52% of screen, avg 13% diff). "
              u"Likely: full content refresh or navigation."_s);
    EXPECT_EQ(
        describeChange(block(0, 7, 0, 5), 48, 99.7, true),
        u"Major visual update (100% of screen, avg 100% diff). Likely: full content refresh or navigation."_s);
    // Only a major change is an update of the screen.
    EXPECT_EQ(describeChange(block(0, 7, 0, 5), 48, 3, false),
              u"New activity in middle-center area (48 cells changed)."_s);
}

TEST(PercentText, RoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(percentText(0.5), u"0%"_s);
    EXPECT_EQ(percentText(1.5), u"2%"_s);
    EXPECT_EQ(percentText(2.5), u"2%"_s);
    EXPECT_EQ(percentText(31.5), u"32%"_s);
    EXPECT_EQ(percentText(62.5), u"62%"_s);
    EXPECT_EQ(percentText(62.500001), u"63%"_s);
    EXPECT_EQ(percentText(62.499999), u"62%"_s);
    EXPECT_EQ(percentText(0), u"0%"_s);
    EXPECT_EQ(percentText(99.5), u"100%"_s);
}

TEST(PercentText, IsTheSameInEveryLanguage) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    EXPECT_EQ(QLocale().toString(12), u"١٢"_s);
    EXPECT_EQ(percentText(12.3), u"12%"_s);
    EXPECT_EQ(describeChange(regions({{0, 0}}), 12, 43.2, true),
              u"Significant change in top-left area (12 cells, avg 43% diff)."_s);
    QLocale::setDefault(before);
}

} // namespace orvane
