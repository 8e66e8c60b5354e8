#include "OrvaneCore/marking/editing/MarkupPalette.h"

#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/surface/FirstMouseButton.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/WidgetTest.h"
#include "tests/unit/marking/editing/FakeAnnotationDocument.h"

#include <QLineEdit>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <memory>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::pair<AnnotationTool, QString>> tools{
    {AnnotationTool::select, u"Select"_s},  {AnnotationTool::arrow, u"Arrow"_s},
    {AnnotationTool::box, u"Box"_s},        {AnnotationTool::ellipse, u"Ellipse"_s},
    {AnnotationTool::highlight, u"High"_s}, {AnnotationTool::text, u"Text"_s},
};

class MarkupPaletteTest : public testing::Test {
protected:
    MarkupPaletteTest()
        : ground({800, 300})
        , palette(store, tools, &ground) {
        palette.setOnChange([this] { ++changes; });
        palette.move(100, 100);
        palette.show();
    }

    /// In the order in which they stand.
    std::vector<FirstMouseButton*> buttons() const {
        std::vector<FirstMouseButton*> found;
        const QList<QAbstractButton*> children = palette.findChildren<QAbstractButton*>();
        found.reserve(children.size());
        for (QAbstractButton* button : children)
            found.push_back(dynamic_cast<FirstMouseButton*>(button));
        std::sort(found.begin(), found.end(), [](auto* left, auto* right) { return left->x() < right->x(); });
        return found;
    }
    FirstMouseButton& tool(std::size_t index) const { return *buttons()[index]; }
    FirstMouseButton& color(std::size_t index) const { return *buttons()[tools.size() + index]; }
    FirstMouseButton& stroke(std::size_t index) const {
        return *buttons()[tools.size() + markup_colors::presets.size() + index];
    }
    std::vector<QString> shownAsOn() const {
        std::vector<QString> titles;
        for (const FirstMouseButton* button : buttons()) {
            if (button->isChecked())
                titles.push_back(button->title());
        }
        return titles;
    }
    void drag(const QPoint& from, const QPoint& way) {
        const QPoint start = palette.mapTo(&ground, from);
        test::pressAt(palette, from);
        test::moveTo(ground, start + way / 2);
        test::moveTo(ground, start + way);
        test::releaseAt(ground, start + way);
    }

    test::FakeAnnotationDocument store;
    test::WidgetGround ground;
    MarkupPalette palette;
    int changes = 0;
};

TEST_F(MarkupPaletteTest, HasAButtonForEachToolColourAndWidth) {
    ASSERT_EQ(buttons().size(), tools.size() + 6 + 3);
    for (std::size_t i = 0; i < tools.size(); ++i) {
        EXPECT_EQ(tool(i).accessibleName(), tools[i].second);
        EXPECT_EQ(tool(i).toolTip(), tools[i].second);
    }
    const std::array colors{u"Red"_s, u"Orange"_s, u"Blue"_s, u"Green"_s, u"White"_s, u"Black"_s};
    for (std::size_t i = 0; i < colors.size(); ++i)
        EXPECT_EQ(color(i).accessibleName(), colors[i]);
    const std::array strokes{u"Thin"_s, u"Medium"_s, u"Thick"_s};
    for (std::size_t i = 0; i < strokes.size(); ++i)
        EXPECT_EQ(stroke(i).accessibleName(), strokes[i]);
    for (const FirstMouseButton* button : buttons()) {
        EXPECT_TRUE(palette.rect().adjusted(8, 8, -8, -8).contains(button->geometry()));
    }
}

TEST_F(MarkupPaletteTest, DrawsEveryButtonAndNoTwoToolsAlike) {
    store.setCurrentTool(AnnotationTool::region);
    std::vector<QImage> pictures;
    pictures.reserve(tools.size());
    for (std::size_t i = 0; i < tools.size(); ++i) {
        const QImage picture = test::pictureOf(palette).copy(tool(i).geometry());
        const QRect ink = test::inkBounds(picture, picture.pixel(0, 0), 60);
        EXPECT_GE(ink.width(), 9) << i;
        EXPECT_GE(ink.height(), 9) << i;
        EXPECT_TRUE(picture.rect().adjusted(4, 4, -4, -4).contains(ink)) << i;
        for (const QImage& other : pictures)
            EXPECT_NE(picture, other);
        pictures.push_back(picture);
    }
}

TEST_F(MarkupPaletteTest, ShowsEachColourAsItIs) {
    const QImage picture = test::pictureOf(palette);
    for (std::size_t i = 0; i < markup_colors::presets.size(); ++i) {
        const QRect middle(color(i).geometry().center() - QPoint(3, 3), QSize(6, 6));
        EXPECT_TRUE(test::isFilled(picture, middle, markup_colors::presets[i])) << i;
    }
}

TEST_F(MarkupPaletteTest, ShowsEachWidthAsItIs) {
    store.setMarkupStrokeWidth(77);
    const QImage picture = test::pictureOf(palette);
    for (std::size_t i = 0; i < markup_colors::strokePresets.size(); ++i) {
        const QRect place = stroke(i).geometry();
        const QRgb under = picture.pixel(place.topLeft());
        const QRgb ink = picture.pixel(place.center());
        ASSERT_GT(test::colorDistance(ink, under), 100);
        const test::Span span =
            test::spanInColumn(picture, place.center().x(), place.top(), place.bottom(), under, ink);
        EXPECT_NEAR(span.length(), markup_colors::strokePresets[i], 0.1);
    }
}

TEST_F(MarkupPaletteTest, ChoosesATool) {
    test::click(tool(2));
    EXPECT_EQ(store.currentTool(), AnnotationTool::box);
    EXPECT_EQ(changes, 1);
    test::click(tool(0));
    EXPECT_EQ(store.currentTool(), AnnotationTool::select);
    EXPECT_EQ(changes, 2);
}

TEST_F(MarkupPaletteTest, ChoosesColourAndWidth) {
    test::click(color(3));
    EXPECT_EQ(store.markupColor(), QColor::fromRgb(markup_colors::presets[3]));
    test::click(stroke(2));
    EXPECT_EQ(store.markupStrokeWidth(), 11);
    EXPECT_EQ(changes, 2);
}

TEST_F(MarkupPaletteTest, GivesColourAndWidthToTheSelectedAnnotationOnly) {
    const Annotation first{.end = {10, 10}, .color = Qt::cyan, .strokeWidth = 1};
    const Annotation second{.end = {20, 20}, .color = Qt::cyan, .strokeWidth = 1};
    const Annotation third{.end = {30, 30}, .color = Qt::cyan, .strokeWidth = 1};
    store.setAnnotations({first, second, third});
    store.setSelectedAnnotationId(second.id);
    test::click(color(1));
    test::click(stroke(0));
    ASSERT_EQ(store.annotations().size(), 3U);
    EXPECT_EQ(store.annotations()[1].color, QColor::fromRgb(markup_colors::presets[1]));
    EXPECT_EQ(store.annotations()[1].strokeWidth, 3);
    EXPECT_EQ(store.annotations()[1].end, QPointF(20, 20));
    for (const std::size_t other : {0U, 2U}) {
        EXPECT_EQ(store.annotations()[other].color, QColor(Qt::cyan));
        EXPECT_EQ(store.annotations()[other].strokeWidth, 1);
    }
    EXPECT_EQ(store.selectedAnnotationId(), second.id);
}

TEST_F(MarkupPaletteTest, ChangesNoAnnotationWithoutASelection) {
    store.setAnnotations({Annotation{.color = Qt::cyan, .strokeWidth = 1}});
    test::click(color(1));
    store.setSelectedAnnotationId(QUuid::createUuid());
    test::click(stroke(0));
    EXPECT_EQ(store.annotations()[0].color, QColor(Qt::cyan));
    EXPECT_EQ(store.annotations()[0].strokeWidth, 1);
}

TEST_F(MarkupPaletteTest, GivesNothingToASelectionThatCannotBeChanged) {
    const Annotation selected{.color = Qt::cyan, .strokeWidth = 1};
    store.setAnnotations({selected});
    store.setSelectedAnnotationId(selected.id);
    store.isChangeable = [](const Annotation&) { return false; };
    test::click(color(1));
    test::click(stroke(0));
    EXPECT_EQ(store.annotations()[0].color, QColor(Qt::cyan));
    EXPECT_EQ(store.annotations()[0].strokeWidth, 1);
    EXPECT_EQ(store.markupColor(), QColor::fromRgb(markup_colors::presets[1]));
    EXPECT_EQ(store.markupStrokeWidth(), 3);
    EXPECT_EQ(changes, 2);
}

TEST_F(MarkupPaletteTest, HasChangedTheStoreWhenItTellsOfIt) {
    AnnotationTool told = AnnotationTool::region;
    palette.setOnChange([&] { told = store.currentTool(); });
    test::click(tool(1));
    EXPECT_EQ(told, AnnotationTool::arrow);
}

TEST_F(MarkupPaletteTest, ShowsTheStateOfTheStore) {
    EXPECT_THAT(shownAsOn(), ElementsAre(u"Select"_s, u"Red"_s, u"Medium"_s));
    store.setCurrentTool(AnnotationTool::region);
    EXPECT_THAT(shownAsOn(), ElementsAre(u"Red"_s, u"Medium"_s)) << "the tool is one that it does not have";
    store.setCurrentTool(AnnotationTool::ellipse);
    store.setMarkupColor(QColor::fromRgb(markup_colors::presets[5]));
    store.setMarkupStrokeWidth(3);
    EXPECT_THAT(shownAsOn(), ElementsAre(u"Ellipse"_s, u"Black"_s, u"Thin"_s));
    store.setMarkupColor(QColor(1, 2, 3));
    store.setMarkupStrokeWidth(4);
    EXPECT_THAT(shownAsOn(), ElementsAre(u"Ellipse"_s));
}

TEST_F(MarkupPaletteTest, IsDraggedByItsFreePlaces) {
    palette.setDraggable(true);
    drag({4, 22}, {60, -30});
    EXPECT_EQ(palette.pos(), QPoint(160, 70));
    drag({4, 22}, {-10, 5});
    EXPECT_EQ(palette.pos(), QPoint(150, 75));
    test::moveTo(ground, {700, 280});
    EXPECT_EQ(palette.pos(), QPoint(150, 75));
    EXPECT_EQ(changes, 0);
}

TEST_F(MarkupPaletteTest, IsNotDraggedByAButtonOrWithoutLeave) {
    drag({4, 22}, {60, -30});
    EXPECT_EQ(palette.pos(), QPoint(100, 100));
    palette.setDraggable(true);
    drag(tool(0).geometry().center(), {60, -30});
    EXPECT_EQ(palette.pos(), QPoint(100, 100));
}

TEST_F(MarkupPaletteTest, IsDraggedWithTheLeftButtonOnly) {
    palette.setDraggable(true);
    QWindow* window = ground.windowHandle();
    const auto mousePress = [&](Qt::MouseButton button) {
        QTest::mousePress(window, button, Qt::NoModifier, palette.mapTo(&ground, QPoint(4, 22)));
    };
    mousePress(Qt::RightButton);
    test::moveTo(ground, {154, 132});
    QTest::mouseRelease(window, Qt::RightButton, Qt::NoModifier, {154, 132});
    EXPECT_EQ(palette.pos(), QPoint(100, 100));

    mousePress(Qt::LeftButton);
    mousePress(Qt::RightButton);
    QTest::mouseRelease(window, Qt::RightButton, Qt::NoModifier, {104, 122});
    test::moveTo(ground, {154, 132});
    EXPECT_EQ(palette.pos(), QPoint(150, 110));
    test::releaseAt(ground, {154, 132});
}

TEST_F(MarkupPaletteTest, StopsWhenItMayNoLongerBeDragged) {
    palette.setDraggable(true);
    test::pressAt(palette, {4, 22});
    palette.setDraggable(false);
    test::moveTo(ground, {154, 132});
    EXPECT_EQ(palette.pos(), QPoint(100, 100));
    test::releaseAt(ground, {154, 132});
}

TEST_F(MarkupPaletteTest, StaysReachable) {
    palette.setDraggable(true);
    const int right = palette.width() - 4;
    const std::vector<std::pair<QPoint, QPoint>> drags{
        {{4, 22}, {799, 150}}, {{4, 22}, {150, 299}}, {{right, 22}, {0, 150}},
        {{20, 42}, {150, 0}},  {{4, 22}, {799, 299}}, {{right, 42}, {1, 1}},
    };
    for (const auto& [from, to] : drags) {
        palette.move(100, 100);
        drag(from, to - palette.mapTo(&ground, from));
        const QRect seen = palette.geometry() & ground.rect();
        EXPECT_EQ(std::min(seen.width(), seen.height()), 32) << to.x() << ',' << to.y();
    }
}

TEST_F(MarkupPaletteTest, HasRoomForAGripWhenItCanBeDragged) {
    const int width = palette.width();
    palette.setDraggable(true);
    EXPECT_GT(palette.width(), width);
    palette.setDraggable(false);
    EXPECT_EQ(palette.width(), width);
}

TEST_F(MarkupPaletteTest, ShowsWhereItCanBeDragged) {
    const auto isGripShown = [this] {
        const QImage strip = test::pictureOf(palette).copy(6, 4, tool(0).x() - 6, palette.height() - 8);
        return !test::inkBounds(strip, strip.pixel(0, 0), 24).isEmpty();
    };
    const QImage fixed = test::pictureOf(palette);
    EXPECT_FALSE(isGripShown());
    palette.setDraggable(true);
    EXPECT_TRUE(isGripShown());
    palette.setDraggable(false);
    EXPECT_EQ(test::pictureOf(palette), fixed);
}

TEST_F(MarkupPaletteTest, DividesToolsColoursAndWidths) {
    const QImage picture = test::pictureOf(palette);
    const auto between = [&picture](const QWidget& left, const QWidget& right) {
        const int begin = left.geometry().right() + 1;
        return test::inkBounds(picture.copy(begin, 4, right.x() - begin, picture.height() - 8),
                               picture.pixel(begin, 4), 24);
    };
    for (const QRect& divider : {between(tool(5), color(0)), between(color(5), stroke(0))})
        EXPECT_EQ(divider.size(), QSize(1, 24));
    EXPECT_TRUE(between(tool(0), tool(1)).isEmpty());
}

TEST_F(MarkupPaletteTest, ShowsAnArrowAsPointer) {
    EXPECT_EQ(palette.cursor().shape(), Qt::ArrowCursor);
    for (const FirstMouseButton* button : buttons())
        EXPECT_EQ(button->cursor().shape(), Qt::ArrowCursor) << button->title().toStdString();
}

TEST_F(MarkupPaletteTest, KeepsTheMouseFromTheView) {
    for (const bool draggable : {false, true}) {
        palette.setDraggable(draggable);
        for (const QPoint& place : {QPoint(2, 22), tool(1).geometry().center()}) {
            for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
                QTest::mouseClick(ground.windowHandle(), button, Qt::NoModifier,
                                  palette.mapTo(&ground, place));
                QTest::mouseDClick(ground.windowHandle(), button, Qt::NoModifier,
                                   palette.mapTo(&ground, place));
            }
        }
    }
    EXPECT_THAT(ground.reached, IsEmpty());
}

TEST_F(MarkupPaletteTest, LeavesTheKeyboardToWhoHasIt) {
    QLineEdit field(&ground);
    field.show();
    field.setFocus();
    test::click(color(1));
    drag({4, 22}, {10, 10});
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(MarkupPaletteTest, MayGoBeforeTheStoreChanges) {
    auto gone = std::make_unique<MarkupPalette>(store, tools, &ground);
    gone.reset();
    store.setCurrentTool(AnnotationTool::text);
    EXPECT_THAT(shownAsOn(), ElementsAre(u"Text"_s, u"Red"_s, u"Medium"_s));
}

} // namespace

} // namespace orvane
