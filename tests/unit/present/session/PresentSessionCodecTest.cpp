#include "OrvaneCore/present/session/PresentSessionCodec.h"

#include "OrvaneCore/present/session/PresentSessionJson.h"

#include "tests/unit/marking/ExactGeometry.h"
#include "tests/unit/present/session/SampleStrokes.h"

#include <gtest/gtest.h>

#include <QSet>

#include <array>

namespace orvane {

namespace {

using namespace test;
using Kind = Annotation::Kind;
using Role = Annotation::Role;

} // namespace

// Displays

TEST(PresentSessionDisplays, CarryTheirPositionAndGeometry) {
    EXPECT_EQ(present_session_codec::currentDisplays(
                  {display(7, {0, 0, 960.5, 540}, 2), display(4'294'967'295, {-800, 10, 800, 600}, 1.25)}),
              (std::vector<DisplayInfo>{
                  {.displayId = 7, .index = 0, .bounds = {0, 0, 960.5, 540}, .scale = 2},
                  {.displayId = 4'294'967'295, .index = 1, .bounds = {-800, 10, 800, 600}, .scale = 1.25}}));
}

TEST(PresentSessionDisplays, WithoutANumberAreLeftOutAndCounted) {
    const QRectF bounds(0, 0, 10, 10);
    EXPECT_EQ(present_session_codec::currentDisplays(
                  {display(0, bounds), display(5, bounds), display(0, bounds), display(6, bounds)}),
              (std::vector<DisplayInfo>{{.displayId = 5, .index = 1, .bounds = bounds},
                                        {.displayId = 6, .index = 3, .bounds = bounds}}));
}

TEST(PresentSessionDisplays, MayBeNone) {
    EXPECT_TRUE(present_session_codec::currentDisplays({}).empty());
}

// Fractions of a rectangle

TEST(PresentSessionNormalize, GivesFractions) {
    const QRectF rect(100, -50, 200, 400);
    EXPECT_TRUE(isPoint(present_session_codec::normalize({100, -50}, rect), {0, 0}));
    EXPECT_TRUE(isPoint(present_session_codec::normalize({300, 350}, rect), {1, 1}));
    EXPECT_TRUE(isPoint(present_session_codec::normalize({150, 50}, rect), {0.25, 0.25}));
}

TEST(PresentSessionNormalize, NeitherClampsNorRounds) {
    EXPECT_TRUE(isPoint(present_session_codec::normalize({400, -1}, {100, 1, 200, 10}), {1.5, -0.2}));
    EXPECT_TRUE(isPoint(present_session_codec::normalize({1, 2}, {0, 0, 3, 3}), {1.0 / 3, 2.0 / 3}));
}

TEST(PresentSessionNormalize, GivesZeroInARectangleWithoutArea) {
    for (const QRectF& rect : {QRectF(1, 2, 0, 5), QRectF(1, 2, 5, 0), QRectF(), QRectF(1, 2, -0.0, -5)})
        EXPECT_TRUE(isPoint(present_session_codec::normalize({7, 8}, rect), {0, 0}));
}

TEST(PresentSessionNormalize, TakesARectangleOfNegativeSizeByItsCorners) {
    EXPECT_TRUE(isPoint(present_session_codec::normalize({125, 80}, {200, 100, -100, -50}), {0.25, 0.6}));
}

// Encoding

TEST(PresentSessionEncode, CarriesEveryFieldOfAShape) {
    Annotation annotation = shape({1010, 60}, {1110, 140}, Kind::image);
    annotation.id = someId;
    annotation.text = u"text \u2014"_s;
    annotation.strokeWidth = 3.5;
    annotation.label = u"label"_s;
    annotation.rotation = -1.25;
    annotation.role = Role::agent;
    annotation.removed = true;
    annotation.regionIndex = 4;
    annotation.displayId = 99;
    EXPECT_EQ(present_session_codec::encodeStroke(annotation, 12, twoDisplays, 1'700'000'000'123),
              (StrokeRecord{.id = someIdText,
                            .kind = u"image"_s,
                            .colorHex = u"#3B82F6"_s,
                            .strokeWidth = 3.5,
                            .text = u"text \u2014"_s,
                            .label = u"label"_s,
                            .imageFile = u"img-0F8FAD5B-D9CB-469F-A165-70867728950E.png"_s,
                            .rotation = -1.25,
                            .role = u"agent"_s,
                            .removed = true,
                            .startAbs = {1010, 60},
                            .endAbs = {1110, 140},
                            .startNorm = {0.05, 0.1},
                            .endNorm = {0.55, 0.9},
                            .displayIndex = 3,
                            .zOrder = 12,
                            .timestampMs = 1'700'000'000'123}));
}

TEST(PresentSessionEncode, WritesWordsForKindsAndRoles) {
    const std::array kinds{Kind::arrow, Kind::box, Kind::ellipse, Kind::highlight, Kind::text, Kind::image};
    const std::array kindWords{u"arrow"_s, u"box"_s, u"ellipse"_s, u"highlight"_s, u"text"_s, u"image"_s};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const StrokeRecord stroke = encodedStroke(shape({0, 0}, {9, 9}, kinds[i]));
        EXPECT_EQ(stroke.kind, kindWords[i]);
        // The name of the picture does not depend on whether there is one.
        EXPECT_EQ(stroke.imageFile.has_value(), kinds[i] == Kind::image);
    }
    const std::array roles{Role::human, Role::agent, Role::review};
    const std::array roleWords{u"human"_s, u"agent"_s, u"review"_s};
    for (std::size_t i = 0; i < roles.size(); ++i) {
        Annotation annotation = shape({0, 0}, {9, 9});
        annotation.role = roles[i];
        EXPECT_EQ(encodedStroke(annotation).role, roleWords[i]);
    }
}

TEST(PresentSessionEncode, RoundsColoursAndLeavesOutAlpha) {
    Annotation annotation = shape({0, 0}, {9, 9});
    annotation.color = QColor::fromRgbF(0.2F, 51.7F / 255, 254.6F / 255, 0.25F);
    EXPECT_EQ(encodedStroke(annotation).colorHex, u"#3334FF"_s);
    annotation.color = QColor::fromHsv(120, 255, 255);
    EXPECT_EQ(encodedStroke(annotation).colorHex, u"#00FF00"_s);
}

TEST(PresentSessionEncode, TakesTheDisplayOfTheCentreForBothEnds) {
    // Begins on the left display and ends far on the right one, where its centre is.
    const StrokeRecord stroke = encodedStroke(shape({900, 100}, {1200, 100}, Kind::arrow));
    EXPECT_EQ(stroke.displayIndex, 3);
    EXPECT_TRUE(isPoint(stroke.startNorm, {-0.5, 0.5}));
    EXPECT_TRUE(isPoint(stroke.endNorm, {1, 0.5}));
}

TEST(PresentSessionEncode, CentreDoesNotDependOnTheOrderOfTheEnds) {
    EXPECT_EQ(encodedStroke(shape({1200, 140}, {900, 60})).displayIndex, 3);
    EXPECT_EQ(encodedStroke(shape({1090, 60}, {900, 140})).displayIndex, 0);
}

TEST(PresentSessionEncode, LowerEdgesAreInsideAndUpperEdgesAreNot) {
    const auto indexAt = [](const QPointF& center) {
        const QPointF reach(0.5, 0.5);
        return encodedStroke(shape(center - reach, center + reach),
                             {{.displayId = 1, .index = 8, .bounds = {500, 500, 10, 10}},
                              {.displayId = 2, .index = 9, .bounds = {0, 0, 100, 100}}})
            .displayIndex;
    };
    EXPECT_EQ(indexAt({0, 0}), 9);
    EXPECT_EQ(indexAt({99.5, 99.5}), 9);
    // Outside all displays the first takes it.
    EXPECT_EQ(indexAt({100, 50}), 8);
    EXPECT_EQ(indexAt({50, 100}), 8);
    EXPECT_EQ(indexAt({-0.5, 50}), 8);
    EXPECT_EQ(indexAt({50, -0.5}), 8);
}

TEST(PresentSessionEncode, TakesTheFirstOfOverlappingDisplays) {
    const std::vector<DisplayInfo> mirrored{{.displayId = 1, .index = 0, .bounds = {500, 0, 10, 10}},
                                            {.displayId = 2, .index = 1, .bounds = {0, 0, 100, 100}},
                                            {.displayId = 3, .index = 2, .bounds = {0, 0, 100, 100}}};
    EXPECT_EQ(encodedStroke(shape({10, 10}, {20, 20}), mirrored).displayIndex, 1);
}

TEST(PresentSessionEncode, PlacesAShapeOutsideEveryDisplayByTheFirst) {
    const StrokeRecord stroke = encodedStroke(shape({-1000, 1000}, {-500, 1500}));
    EXPECT_EQ(stroke.displayIndex, 0);
    EXPECT_TRUE(isPoint(stroke.startNorm, {-1, 2}));
    EXPECT_TRUE(isPoint(stroke.endNorm, {-0.5, 3}));
}

TEST(PresentSessionEncode, WithoutDisplaysHasNoIndexAndThePointsForFractions) {
    const StrokeRecord stroke = encodedStroke(shape({10, 20}, {-30, 40}), {});
    EXPECT_EQ(stroke.displayIndex, std::nullopt);
    EXPECT_TRUE(isPoint(stroke.startNorm, {10, 20}));
    EXPECT_TRUE(isPoint(stroke.endNorm, {-30, 40}));
}

TEST(PresentSessionEncode, GivesZeroFractionsOnADisplayWithoutArea) {
    const StrokeRecord stroke = encodedStroke(shape({10, 20}, {30, 40}), {{.displayId = 1, .index = 4}});
    EXPECT_EQ(stroke.displayIndex, 4);
    EXPECT_TRUE(isPoint(stroke.startNorm, {0, 0}));
    EXPECT_TRUE(isPoint(stroke.endNorm, {0, 0}));
    EXPECT_TRUE(isPoint(stroke.startAbs, {10, 20}));
}

TEST(PresentSessionEncode, SurvivesCoordinatesThatAreNotFinite) {
    for (const qreal value : {notANumber, infinite, -infinite}) {
        const StrokeRecord stroke = encodedStroke(shape({value, 1}, {2, value}));
        EXPECT_EQ(stroke.displayIndex, 0);
        EXPECT_EQ(encodeSession({.strokes = {stroke}}), std::nullopt);
    }
}

TEST(PresentSessionEncode, NumbersTheShapesAndKnowsTheirTimes) {
    const std::vector<Annotation> annotations{shape({1, 1}, {2, 2}), shape({3, 3}, {4, 4}, Kind::text),
                                              shape({5, 5}, {6, 6})};
    const SessionMeta meta{.id = u"session"_s, .createdAtMs = 5, .title = u"title"_s};
    const WindowContext window{.appName = u"App"_s, .bounds = {1, 2, 3, 4}};
    const PresentSessionBundle bundle =
        present_session_codec::encode(annotations, twoDisplays, window,
                                      {{annotations[2].id, 102}, {annotations[0].id, 0}, {someId, 7}}, meta);
    EXPECT_EQ(bundle.meta, meta);
    EXPECT_EQ(bundle.displays, twoDisplays);
    EXPECT_EQ(bundle.window, window);
    ASSERT_EQ(bundle.strokes.size(), 3);
    EXPECT_EQ(bundle.strokes[0], present_session_codec::encodeStroke(annotations[0], 0, twoDisplays, 0));
    EXPECT_EQ(bundle.strokes[1],
              present_session_codec::encodeStroke(annotations[1], 1, twoDisplays, std::nullopt));
    EXPECT_EQ(bundle.strokes[2], present_session_codec::encodeStroke(annotations[2], 2, twoDisplays, 102));
}

TEST(PresentSessionEncode, NothingRoundTripsAsNothing) {
    const PresentSessionBundle bundle = present_session_codec::encode({}, {}, std::nullopt, {}, {});
    EXPECT_EQ(bundle, PresentSessionBundle());
    const std::optional<QByteArray> json = encodeSession(bundle);
    ASSERT_TRUE(json);
    EXPECT_EQ(decodeSession(*json), bundle);
    EXPECT_TRUE(present_session_codec::decode(bundle).empty());
    EXPECT_TRUE(present_session_codec::remap(bundle, {}).empty());
    EXPECT_TRUE(present_session_codec::remap(bundle, twoDisplays).empty());
}

// Decoding

TEST(PresentSessionDecode, GivesBackWhatWasEncoded) {
    std::vector<Annotation> annotations;
    for (const Role role : {Role::human, Role::agent, Role::review}) {
        for (const Kind kind :
             {Kind::arrow, Kind::box, Kind::ellipse, Kind::highlight, Kind::text, Kind::image}) {
            Annotation annotation = shape({-10.5, 20}, {1100, 70.25}, kind);
            annotation.text = u"text\n"_s;
            annotation.label = u"\u2014"_s;
            annotation.strokeWidth = 0.1 + 0.2;
            annotation.rotation = 7.5;
            annotation.role = role;
            annotation.removed = kind == Kind::box;
            annotation.color = QColor::fromRgbF(10.4F / 255, 10.6F / 255, 1, 0.5F);
            annotations.push_back(annotation);
        }
    }
    const PresentSessionBundle bundle =
        present_session_codec::encode(annotations, twoDisplays, std::nullopt, {}, {});
    const auto read = decodeSession(encodeSession(bundle).value());
    ASSERT_EQ(read, bundle);
    EXPECT_EQ(present_session_codec::decode(*read), annotations);
    for (const Annotation& annotation : present_session_codec::decode(*read))
        EXPECT_EQ(annotation.color, QColor(10, 11, 255));
}

TEST(PresentSessionDecode, LeavesPictureRegionAndDisplayEmpty) {
    Annotation annotation = shape({0, 0}, {9, 9}, Kind::image);
    annotation.image = QImage(4, 4, QImage::Format_RGB32);
    annotation.regionIndex = 2;
    annotation.displayId = 11;
    const Annotation back = decoded(encodedStroke(annotation));
    EXPECT_EQ(back.id, annotation.id);
    EXPECT_TRUE(back.image.isNull());
    EXPECT_EQ(back.regionIndex, std::nullopt);
    EXPECT_EQ(back.displayId, std::nullopt);
}

TEST(PresentSessionDecode, DropsStrokesOfUnknownKind) {
    PresentSessionBundle bundle;
    for (const QString& kind :
         {u"arrow"_s, u"star"_s, u"Box"_s, u"box "_s, u""_s, u"select"_s, u"text"_s, u"human"_s}) {
        bundle.strokes.push_back(record());
        bundle.strokes.back().kind = kind;
    }
    for (const std::vector<Annotation>& annotations :
         {present_session_codec::decode(bundle), present_session_codec::remap(bundle, twoDisplays)}) {
        ASSERT_EQ(annotations.size(), 2);
        EXPECT_EQ(annotations[0].kind, Kind::arrow);
        EXPECT_EQ(annotations[1].kind, Kind::text);
    }
}

TEST(PresentSessionDecode, ReadsUuidsInAnyCase) {
    StrokeRecord stroke = record();
    EXPECT_EQ(decoded(stroke).id, someId);
    stroke.id = someIdText.toLower();
    EXPECT_EQ(decoded(stroke).id, someId);
    stroke.id = u"00000000-0000-0000-0000-000000000000"_s;
    EXPECT_EQ(decoded(stroke).id, QUuid());
}

TEST(PresentSessionDecode, ReplacesIdsThatAreNoUuid) {
    QSet<QUuid> ids;
    const std::vector<QString> texts{u""_s,
                                     u"mark 1"_s,
                                     u"{"_s + someIdText + u"}"_s,
                                     someIdText + u"x"_s,
                                     u" "_s + someIdText,
                                     someIdText.chopped(1),
                                     QString(someIdText).remove(u'-'),
                                     QString(someIdText).replace(u'F', u'G'),
                                     QString(someIdText).replace(u'0', QChar(0xFF10)),
                                     QString(100'000, u'0')};
    for (const QString& text : texts) {
        StrokeRecord stroke = record();
        stroke.id = text;
        for (const QUuid& id : {decoded(stroke).id, remapped(stroke, twoDisplays).id}) {
            EXPECT_FALSE(id.isNull()) << text.left(50).toStdString();
            EXPECT_NE(id, someId) << text.left(50).toStdString();
            ids.insert(id);
        }
    }
    EXPECT_EQ(ids.size(), 2 * texts.size());
}

TEST(PresentSessionDecode, KeepsEqualIds) {
    const std::vector<Annotation> annotations =
        present_session_codec::decode({.strokes = {record(), record()}});
    ASSERT_EQ(annotations.size(), 2);
    EXPECT_EQ(annotations[0].id, annotations[1].id);
}

TEST(PresentSessionDecode, ReadsOfAColourWhatItCan) {
    const std::array<std::pair<QString, QRgb>, 7> cases{{{u"#EF4444"_s, 0xFFEF4444},
                                                         {u"ef4444"_s, 0xFFEF4444},
                                                         {u"#80EF4444"_s, 0xFFEF4444},
                                                         {u"#12x"_s, 0xFF000012},
                                                         {u"red"_s, 0xFF000000},
                                                         {u""_s, 0xFF000000},
                                                         {u"#"_s, 0xFF000000}}};
    for (const auto& [text, color] : cases) {
        StrokeRecord stroke = record();
        stroke.colorHex = text;
        EXPECT_EQ(decoded(stroke).color.rgba(), color) << text.toStdString();
        EXPECT_EQ(remapped(stroke, {}).color.rgba(), color) << text.toStdString();
    }
}

TEST(PresentSessionDecode, TakesOtherRolesForTheHumans) {
    const std::array<std::pair<QString, Role>, 6> cases{{{u"agent"_s, Role::agent},
                                                         {u"review"_s, Role::review},
                                                         {u"human"_s, Role::human},
                                                         {u"Agent"_s, Role::human},
                                                         {u""_s, Role::human},
                                                         {u"robot"_s, Role::human}}};
    for (const auto& [text, role] : cases) {
        StrokeRecord stroke = record();
        stroke.role = text;
        EXPECT_EQ(decoded(stroke).role, role) << text.toStdString();
    }
}

TEST(PresentSessionDecode, GoesByTheOrderOfTheListAndAbsolutePoints) {
    StrokeRecord first = record();
    first.zOrder = 9;
    StrokeRecord second = record();
    second.kind = u"arrow"_s;
    second.zOrder = 1;
    const std::vector<Annotation> annotations = present_session_codec::decode({.strokes = {first, second}});
    ASSERT_EQ(annotations.size(), 2);
    EXPECT_EQ(annotations[0].kind, Kind::ellipse);
    EXPECT_EQ(annotations[1].kind, Kind::arrow);
    EXPECT_TRUE(isPoint(annotations[0].start, {1, 2}));
    EXPECT_TRUE(isPoint(annotations[0].end, {3, 4}));
}

} // namespace orvane
