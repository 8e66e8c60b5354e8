#include "OrvaneCore/present/session/PresentSessionJson.h"

#include "tests/unit/present/session/SampleSession.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>

#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using namespace test;

constexpr qreal infinite = std::numeric_limits<qreal>::infinity();
constexpr qreal notANumber = std::numeric_limits<qreal>::quiet_NaN();
constexpr qint64 greatest = std::numeric_limits<qint64>::max();
constexpr qint64 least = std::numeric_limits<qint64>::min();

QSet<QString> keysOf(const QJsonObject& object) {
    const QStringList keys = object.keys();
    return {keys.begin(), keys.end()};
}

class RequiredKey : public ::testing::TestWithParam<Key> {};
class OptionalKey : public ::testing::TestWithParam<Key> {};

} // namespace

// Writing

TEST(PresentSessionJson, WritesIndentedTextWithSortedKeys) {
    PresentSessionBundle bundle = fullBundle();
    bundle.strokes.clear();
    EXPECT_EQ(encoded(bundle).toStdString(), R"({
    "displays": [
        {
            "bounds": [
                [
                    -1920,
                    0.5
                ],
                [
                    1920,
                    1080
                ]
            ],
            "displayId": 4294967295,
            "index": 2,
            "scale": 1.5
        }
    ],
    "meta": {
        "createdAtMs": 1767322245678,
        "id": "20260102-030405-abcd",
        "provenance": "Arrows, boxes, ellipses, highlights, and text in these images are user annotations added with Orvane — not part of the captured UI.",
        "reviewedAtMs": 0,
        "schemaVersion": 1,
        "title": "Töpfer — \"x\""
    },
    "strokes": [
    ],
    "window": {
        "appName": "Editor",
        "bounds": [
            [
                1,
                2
            ],
            [
                3,
                4
            ]
        ],
        "title": "a/b"
    }
}
)");
}

TEST(PresentSessionJson, WritesEveryKeyOfAStroke) {
    const QJsonObject stroke = encodedObject(fullBundle())[u"strokes"].toArray().at(0).toObject();
    EXPECT_EQ(stroke, (QJsonObject{
                          {u"id"_s, strokeId},
                          {u"kind"_s, u"image"_s},
                          {u"colorHex"_s, u"#3B82F6"_s},
                          {u"strokeWidth"_s, 3.5},
                          {u"text"_s, u"line\nfeed"_s},
                          {u"label"_s, u"label"_s},
                          {u"imageFile"_s, u"img.png"_s},
                          {u"rotation"_s, -0.25},
                          {u"role"_s, u"review"_s},
                          {u"removed"_s, true},
                          {u"startAbs"_s, QJsonArray{-1000, 20.25}},
                          {u"endAbs"_s, QJsonArray{30, 40}},
                          {u"startNorm"_s, QJsonArray{0.5, -0.125}},
                          {u"endNorm"_s, QJsonArray{1, 1.5}},
                          {u"displayIndex"_s, 2},
                          {u"zOrder"_s, 7},
                          {u"timestampMs"_s, qint64(1'767'322'245'679)},
                      }));
}

TEST(PresentSessionJson, LeavesOutTheKeysOfEmptyOptionals) {
    const QJsonObject root = encodedObject(bareBundle());
    EXPECT_EQ(keysOf(root), (QSet<QString>{u"meta"_s, u"displays"_s, u"strokes"_s}));
    EXPECT_EQ(keysOf(root[u"meta"].toObject()),
              (QSet<QString>{u"schemaVersion"_s, u"id"_s, u"createdAtMs"_s, u"provenance"_s}));
    EXPECT_EQ(keysOf(root[u"strokes"].toArray().at(0).toObject()),
              (QSet<QString>{u"id"_s, u"kind"_s, u"colorHex"_s, u"strokeWidth"_s, u"text"_s, u"label"_s,
                             u"rotation"_s, u"role"_s, u"removed"_s, u"startAbs"_s, u"endAbs"_s,
                             u"startNorm"_s, u"endNorm"_s, u"zOrder"_s}));
}

TEST(PresentSessionJson, WritesEmptyTextsAndDefaults) {
    const QJsonObject stroke = encodedObject(bareBundle())[u"strokes"].toArray().at(1).toObject();
    EXPECT_EQ(stroke[u"text"], QJsonValue(u""_s));
    EXPECT_EQ(stroke[u"label"], QJsonValue(u""_s));
    EXPECT_EQ(stroke[u"rotation"], QJsonValue(0));
    EXPECT_EQ(stroke[u"role"], QJsonValue(u"human"_s));
    EXPECT_EQ(stroke[u"removed"], QJsonValue(false));
}

TEST(PresentSessionJson, RefusesNumbersThatAreNotFinite) {
    const std::vector<std::function<void(PresentSessionBundle&, qreal)>> places{
        [](PresentSessionBundle& bundle, qreal value) { bundle.displays[0].scale = value; },
        [](PresentSessionBundle& bundle, qreal value) { bundle.displays[0].bounds.setX(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.displays[0].bounds.setHeight(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.window->bounds.setWidth(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].strokeWidth = value; },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].rotation = value; },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].startAbs.setX(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].endAbs.setY(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].startNorm.setY(value); },
        [](PresentSessionBundle& bundle, qreal value) { bundle.strokes[0].endNorm.setX(value); },
    };
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (const qreal value : {infinite, -infinite, notANumber}) {
            PresentSessionBundle bundle = fullBundle();
            places[i](bundle, value);
            EXPECT_EQ(encodeSession(bundle), std::nullopt) << i << " " << value;
        }
    }
}

// Both ways

TEST(PresentSessionJson, ReadsWhatItWrites) {
    EXPECT_EQ(decodeSession(encoded(fullBundle())), fullBundle());
    const PresentSessionBundle bare = bareBundle();
    EXPECT_EQ(decodeSession(encoded(bare)), bare);
    const PresentSessionBundle empty;
    EXPECT_EQ(decodeSession(encoded(empty)), empty);
    EXPECT_TRUE(empty.displays.empty() && empty.strokes.empty());
}

TEST(PresentSessionJson, KeepsEveryBitOfNumbers) {
    PresentSessionBundle bundle = fullBundle();
    bundle.meta.createdAtMs = greatest;
    bundle.meta.reviewedAtMs = least;
    bundle.strokes[0].startAbs = {0.1 + 0.2, 1e300};
    bundle.strokes[0].endAbs = {5e-324, -std::numeric_limits<qreal>::max()};
    bundle.strokes[0].timestampMs = 9'007'199'254'740'993;
    EXPECT_EQ(decodeSession(encoded(bundle)), bundle);
}

TEST(PresentSessionJson, KeepsTextsOfAllKinds) {
    PresentSessionBundle bundle = fullBundle();
    bundle.strokes[0].text = u"\"\\/\t"_s + QChar(u'\0') + u"\u65e5\U0001F600"_s + QChar(0xD800);
    EXPECT_EQ(decodeSession(encoded(bundle)), bundle);
}

// Reading: presence

TEST_P(RequiredKey, FailsTheWholeWhenMissingOrNull) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_EQ(decodedWithout(record, key), std::nullopt);
    EXPECT_EQ(decodedWith(record, key, QJsonValue::Null), std::nullopt);
    EXPECT_EQ(decoded(changed(record,
                              [&](QJsonObject& object) { object.insert(key.toUpper(), object.take(key)); })),
              std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, RequiredKey,
                         ::testing::Values(Key{Record::root, u"meta"}, Key{Record::root, u"displays"},
                                           Key{Record::root, u"strokes"}, Key{Record::meta, u"schemaVersion"},
                                           Key{Record::meta, u"id"}, Key{Record::meta, u"createdAtMs"},
                                           Key{Record::meta, u"provenance"},
                                           Key{Record::display, u"displayId"}, Key{Record::display, u"index"},
                                           Key{Record::display, u"bounds"}, Key{Record::display, u"scale"},
                                           Key{Record::window, u"appName"}, Key{Record::window, u"title"},
                                           Key{Record::window, u"bounds"}, Key{Record::stroke, u"kind"},
                                           Key{Record::stroke, u"colorHex"},
                                           Key{Record::stroke, u"strokeWidth"}, Key{Record::stroke, u"text"},
                                           Key{Record::stroke, u"startAbs"}, Key{Record::stroke, u"endAbs"},
                                           Key{Record::stroke, u"startNorm"}, Key{Record::stroke, u"endNorm"},
                                           Key{Record::stroke, u"zOrder"}));

TEST_P(OptionalKey, IsAbsentWhenMissingOrNull) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    PresentSessionBundle expected = fullBundle();
    if (key == u"title"_s) {
        expected.meta.title.reset();
    } else if (key == u"reviewedAtMs"_s) {
        expected.meta.reviewedAtMs.reset();
    } else if (key == u"window"_s) {
        expected.window.reset();
    } else if (key == u"imageFile"_s) {
        expected.strokes[0].imageFile.reset();
    } else if (key == u"displayIndex"_s) {
        expected.strokes[0].displayIndex.reset();
    } else if (key == u"timestampMs"_s) {
        expected.strokes[0].timestampMs.reset();
    } else if (key == u"label"_s) {
        expected.strokes[0].label.clear();
    } else if (key == u"rotation"_s) {
        expected.strokes[0].rotation = 0;
    } else if (key == u"role"_s) {
        expected.strokes[0].role = u"human"_s;
    } else if (key == u"removed"_s) {
        expected.strokes[0].removed = false;
    }
    ASSERT_NE(expected, fullBundle());
    EXPECT_EQ(decodedWithout(record, key), expected);
    EXPECT_EQ(decodedWith(record, key, QJsonValue::Null), expected);
}

TEST_P(OptionalKey, FailsTheWholeWhenOfAnotherType) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_EQ(decodedWith(record, key, QJsonArray{1, 2, 3}), std::nullopt);
    EXPECT_EQ(decodedWith(record, key, QJsonObject{{u"a"_s, 1}}), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, OptionalKey,
                         ::testing::Values(Key{Record::root, u"window"}, Key{Record::meta, u"title"},
                                           Key{Record::meta, u"reviewedAtMs"},
                                           Key{Record::stroke, u"imageFile"},
                                           Key{Record::stroke, u"displayIndex"},
                                           Key{Record::stroke, u"timestampMs"}, Key{Record::stroke, u"label"},
                                           Key{Record::stroke, u"rotation"}, Key{Record::stroke, u"role"},
                                           Key{Record::stroke, u"removed"}));

TEST(PresentSessionJson, GivesAStrokeWithoutAnIdAFreshOne) {
    const QRegularExpression upperCaseUuid(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    const auto missing = decodedWithout(Record::stroke, u"id"_s);
    const auto null = decodedWith(Record::stroke, u"id"_s, QJsonValue::Null);
    ASSERT_TRUE(missing && null);
    EXPECT_TRUE(upperCaseUuid.match(missing->strokes[0].id).hasMatch());
    EXPECT_TRUE(upperCaseUuid.match(null->strokes[0].id).hasMatch());
    EXPECT_NE(missing->strokes[0].id, null->strokes[0].id);
    EXPECT_NE(missing->strokes[0].id, strokeId);
}

TEST(PresentSessionJson, KeepsAnIdThatIsNoUuid) {
    for (const QString& id : {u""_s, u"mark 1"_s, strokeId.toLower()}) {
        const auto bundle = decodedWith(Record::stroke, u"id"_s, id);
        ASSERT_TRUE(bundle);
        EXPECT_EQ(bundle->strokes[0].id, id);
    }
}

TEST(PresentSessionJson, ReadsAHandMadeFile) {
    const auto bundle =
        decodeSession(R"({"strokes":[{"kind":"star","colorHex":"red","strokeWidth":2,"text":"",
        "startAbs":[1,2.0],"endAbs":[3e0,4],"startNorm":[0,0],"endNorm":[1,1],"zOrder":0}],
        "displays":[],"meta":{"schemaVersion":99,"id":"a","createdAtMs":5.0,"provenance":"mine"}})");
    ASSERT_TRUE(bundle);
    ASSERT_EQ(bundle->strokes.size(), 1);
    const PresentSessionBundle expected{
        .meta = {.schemaVersion = 99, .id = u"a"_s, .createdAtMs = 5, .provenance = u"mine"_s},
        .strokes = {{.id = bundle->strokes[0].id,
                     .kind = u"star"_s,
                     .colorHex = u"red"_s,
                     .strokeWidth = 2,
                     .role = u"human"_s,
                     .startAbs = {1, 2},
                     .endAbs = {3, 4},
                     .endNorm = {1, 1}}}};
    EXPECT_EQ(bundle, expected);
}

TEST(PresentSessionJson, IgnoresUnknownKeysEverywhere) {
    for (const Record record :
         {Record::root, Record::meta, Record::display, Record::window, Record::stroke}) {
        EXPECT_EQ(decodedWith(record, u"more"_s, QJsonArray{QJsonValue::Null, u"x"_s}), fullBundle());
        EXPECT_EQ(decodedWith(record, u"ID"_s, 1), fullBundle());
    }
}

} // namespace orvane
