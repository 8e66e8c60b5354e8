#include "OrvaneCore/present/session/PresentSessionJson.h"

#include "tests/unit/present/session/SampleSession.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using namespace test;

constexpr qint64 greatest = std::numeric_limits<qint64>::max();
constexpr qint64 least = std::numeric_limits<qint64>::min();

class TextKey : public ::testing::TestWithParam<Key> {};
class NumberKey : public ::testing::TestWithParam<Key> {};
class IntegerKey : public ::testing::TestWithParam<Key> {};
class PointKey : public ::testing::TestWithParam<Key> {};
class RectKey : public ::testing::TestWithParam<Key> {};

} // namespace

// Types

TEST_P(TextKey, TakesStringsOnly) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_TRUE(decodedWith(record, key, u"other"_s));
    for (const QJsonValue& value :
         {QJsonValue(1), QJsonValue(true), QJsonValue(QJsonArray{u"x"_s}), QJsonValue(QJsonObject())})
        EXPECT_EQ(decodedWith(record, key, value), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, TextKey,
                         ::testing::Values(Key{Record::meta, u"id"}, Key{Record::meta, u"title"},
                                           Key{Record::meta, u"provenance"}, Key{Record::window, u"appName"},
                                           Key{Record::window, u"title"}, Key{Record::stroke, u"id"},
                                           Key{Record::stroke, u"kind"}, Key{Record::stroke, u"colorHex"},
                                           Key{Record::stroke, u"text"}, Key{Record::stroke, u"label"},
                                           Key{Record::stroke, u"imageFile"}, Key{Record::stroke, u"role"}));

TEST_P(NumberKey, TakesNumbersOnly) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_TRUE(decodedWith(record, key, 2));
    EXPECT_TRUE(decodedWith(record, key, -2.5));
    for (const QJsonValue& value :
         {QJsonValue(u"1"_s), QJsonValue(true), QJsonValue(QJsonArray{1}), QJsonValue(QJsonObject())})
        EXPECT_EQ(decodedWith(record, key, value), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, NumberKey,
                         ::testing::Values(Key{Record::display, u"scale"},
                                           Key{Record::stroke, u"strokeWidth"},
                                           Key{Record::stroke, u"rotation"}));

TEST_P(IntegerKey, TakesNumbersWithoutAFractionOnly) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_TRUE(decodedWith(record, key, 2));
    EXPECT_TRUE(decodedWith(record, key, 0));
    for (const QJsonValue& value : {QJsonValue(1.5), QJsonValue(1e30), QJsonValue(-1e30), QJsonValue(u"1"_s),
                                    QJsonValue(true), QJsonValue(QJsonArray{1}), QJsonValue(QJsonObject())})
        EXPECT_EQ(decodedWith(record, key, value), std::nullopt);
}

TEST_P(IntegerKey, MayBeWrittenWithAFractionOfZero) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    // QJsonDocument writes numbers in one way only, so the other ways are put in for a word.
    QByteArray json = QJsonDocument(changed(record, [&](QJsonObject& object) {
                          object.insert(key, u"NUMBER"_s);
                      })).toJson();
    const auto expected = decodedWith(record, key, 20);
    ASSERT_TRUE(expected);
    for (const char* number : {"20.0", "2e1", "2.0E+1", "200e-1", "20.000"})
        EXPECT_EQ(decodeSession(QByteArray(json).replace("\"NUMBER\"", number)), expected) << number;
    for (const char* number : {"9223372036854775808", "-9223372036854777856", "20.01", "1e400"})
        EXPECT_EQ(decodeSession(QByteArray(json).replace("\"NUMBER\"", number)), std::nullopt) << number;
}

INSTANTIATE_TEST_SUITE_P(
    All, IntegerKey,
    ::testing::Values(Key{Record::meta, u"schemaVersion"}, Key{Record::meta, u"createdAtMs"},
                      Key{Record::meta, u"reviewedAtMs"}, Key{Record::display, u"displayId"},
                      Key{Record::display, u"index"}, Key{Record::stroke, u"displayIndex"},
                      Key{Record::stroke, u"zOrder"}, Key{Record::stroke, u"timestampMs"}));

TEST(PresentSessionJsonBadInput, DisplayIdsAreUnsignedAndOf32Bits) {
    const QString key = u"displayId"_s;
    EXPECT_EQ(decodedWith(Record::display, key, 0)->displays[0].displayId, 0);
    EXPECT_EQ(decodedWith(Record::display, key, qint64(4'294'967'295))->displays[0].displayId, 4'294'967'295);
    EXPECT_EQ(decodedWith(Record::display, key, qint64(4'294'967'296)), std::nullopt);
    EXPECT_EQ(decodedWith(Record::display, key, -1), std::nullopt);
}

TEST(PresentSessionJsonBadInput, OtherIntegersHave64Bits) {
    EXPECT_EQ(decodedWith(Record::stroke, u"zOrder"_s, greatest)->strokes[0].zOrder, greatest);
    EXPECT_EQ(decodedWith(Record::stroke, u"displayIndex"_s, least)->strokes[0].displayIndex, least);
    EXPECT_EQ(decodedWith(Record::display, u"index"_s, -1)->displays[0].index, -1);
    EXPECT_EQ(decodedWith(Record::meta, u"reviewedAtMs"_s, -1)->meta.reviewedAtMs, -1);
}

TEST(PresentSessionJsonBadInput, RemovedIsABooleanOnly) {
    EXPECT_EQ(decodedWith(Record::stroke, u"removed"_s, false)->strokes[0].removed, false);
    for (const QJsonValue& value : {QJsonValue(1), QJsonValue(0), QJsonValue(u"true"_s)})
        EXPECT_EQ(decodedWith(Record::stroke, u"removed"_s, value), std::nullopt);
}

TEST_P(PointKey, IsAnArrayOfTwoNumbers) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    EXPECT_TRUE(decodedWith(record, key, QJsonArray{1, -2.5}));
    for (const QJsonValue& value :
         {QJsonValue(QJsonArray()), QJsonValue(QJsonArray{1}), QJsonValue(QJsonArray{1, 2, 3}),
          QJsonValue(QJsonArray{1, u"2"_s}), QJsonValue(QJsonArray{QJsonValue::Null, 2}),
          QJsonValue(QJsonArray{1, true}), QJsonValue(QJsonArray{QJsonArray{1, 2}}), QJsonValue(1),
          QJsonValue(u"1,2"_s), QJsonValue(QJsonObject{{u"x"_s, 1}, {u"y"_s, 2}})})
        EXPECT_EQ(decodedWith(record, key, value), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, PointKey,
                         ::testing::Values(Key{Record::stroke, u"startAbs"}, Key{Record::stroke, u"endAbs"},
                                           Key{Record::stroke, u"startNorm"},
                                           Key{Record::stroke, u"endNorm"}));

TEST_P(RectKey, IsAnArrayOfAPointAndASize) {
    const Record record = GetParam().record;
    const QString key = GetParam().text();
    const QJsonArray pair{1, 2};
    EXPECT_TRUE(decodedWith(record, key, QJsonArray{pair, pair}));
    for (const QJsonValue& value :
         {QJsonValue(QJsonArray()), QJsonValue(QJsonArray{pair}), QJsonValue(QJsonArray{pair, pair, pair}),
          QJsonValue(QJsonArray{1, 2, 3, 4}), QJsonValue(QJsonArray{pair, QJsonArray{1}}),
          QJsonValue(QJsonArray{pair, QJsonArray{1, 2, 3}}), QJsonValue(QJsonArray{pair, QJsonValue::Null}),
          QJsonValue(QJsonArray{pair, QJsonArray{u"1"_s, 2}}), QJsonValue(1), QJsonValue(QJsonObject())})
        EXPECT_EQ(decodedWith(record, key, value), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, RectKey,
                         ::testing::Values(Key{Record::display, u"bounds"}, Key{Record::window, u"bounds"}));

TEST(PresentSessionJsonBadInput, KeepsRectanglesAsTheyStand) {
    const QJsonArray bounds{QJsonArray{0.1, -2}, QJsonArray{-0.3, 0}};
    const auto bundle = decodedWith(Record::window, u"bounds"_s, bounds);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(exactValues(bundle->window->bounds), exactValues(QRectF(0.1, -2, -0.3, 0)));
}

TEST(PresentSessionJsonBadInput, ListsHoldNothingButObjects) {
    for (const QString& key : {u"displays"_s, u"strokes"_s}) {
        const QJsonValue good = encodedObject(fullBundle())[key].toArray().at(0);
        EXPECT_TRUE(decodedWith(Record::root, key, QJsonArray()));
        EXPECT_TRUE(decodedWith(Record::root, key, QJsonArray{good, good}));
        for (const QJsonValue& value :
             {QJsonValue(QJsonArray{good, QJsonValue::Null}), QJsonValue(QJsonArray{good, 1}),
              QJsonValue(QJsonArray{good, QJsonArray()}), QJsonValue(QJsonArray{good, QJsonObject()}),
              QJsonValue(good), QJsonValue(u"[]"_s), QJsonValue(true)})
            EXPECT_EQ(decodedWith(Record::root, key, value), std::nullopt);
    }
}

// What is no session at all

TEST(PresentSessionJsonBadInput, RefusesWhatIsNoObject) {
    for (const char* json : {"", " ", "null", "true", "1", "\"text\"", "[]", "[{}]", "{}", "not json", "{}{}",
                             "{\"meta\":{},\"displays\":[],\"strokes\":[]}"})
        EXPECT_EQ(decodeSession(json), std::nullopt) << json;
}

TEST(PresentSessionJsonBadInput, RefusesEveryTruncation) {
    const QByteArray json = encoded(fullBundle()).trimmed();
    ASSERT_TRUE(decodeSession(json));
    for (qsizetype length = 0; length < json.size(); ++length)
        EXPECT_EQ(decodeSession(json.first(length)), std::nullopt) << length;
}

TEST(PresentSessionJsonBadInput, RefusesDamagedBytes) {
    const QByteArray json = encoded(fullBundle()).trimmed();
    EXPECT_EQ(decodeSession(json + "x"), std::nullopt);
    EXPECT_EQ(decodeSession(json + QByteArray(1, '\0')), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray(json).replace("Editor", "Edi\xfftor")), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray(json).replace("Editor", "Edi\ntor")), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray(4096, '\0')), std::nullopt);
}

TEST(PresentSessionJsonBadInput, SurvivesAnyByteInAnyPlace) {
    const QByteArray json = QJsonDocument(encodedObject(fullBundle())).toJson(QJsonDocument::Compact);
    int accepted = 0;
    for (qsizetype at = 0; at < json.size(); ++at) {
        for (const char byte : {'\0', '"', '[', '}', ',', '9', '\xff'}) {
            QByteArray damaged = json;
            damaged[at] = byte;
            const auto bundle = decodeSession(damaged);
            accepted += bundle ? 1 : 0;
            // Whatever could be read can be written and read again.
            if (bundle) {
                EXPECT_EQ(decodeSession(encoded(*bundle)), bundle) << at << " " << byte;
            }
        }
    }
    EXPECT_GT(accepted, 0);
}

TEST(PresentSessionJsonBadInput, RefusesDeepNesting) {
    constexpr int levels = 100'000;
    const QByteArray head = "{\"more\":";
    const QByteArray tail = "," + encoded(fullBundle()).trimmed().sliced(1);
    ASSERT_TRUE(decodeSession(head + "[]" + tail));
    EXPECT_EQ(decodeSession(head + QByteArray(levels, '[') + QByteArray(levels, ']') + tail), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray(levels, '[')), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray("{\"meta\":").repeated(levels)), std::nullopt);
    EXPECT_EQ(decodeSession(QByteArray("{\"strokes\":[").repeated(levels)), std::nullopt);
}

TEST(PresentSessionJsonBadInput, TakesLongFilesInProportionalTime) {
    constexpr qsizetype length = 50'000'000;
    const QByteArray head = "{\"more\":";
    const QByteArray tail = "," + encoded(fullBundle()).trimmed().sliced(1);
    EXPECT_EQ(decodeSession(head + "\"" + QByteArray(length, 'x') + "\"" + tail), fullBundle());
    EXPECT_EQ(decodeSession(head + "[" + QByteArray("12345678,").repeated(length / 9) + "0]" + tail),
              fullBundle());
    EXPECT_EQ(decodeSession(QByteArray(length, ' ')), std::nullopt);
    EXPECT_EQ(decodeSession("{\"strokes\":[" + QByteArray(length, '1')), std::nullopt);
}

TEST(PresentSessionJsonBadInput, ReadsManyStrokes) {
    PresentSessionBundle bundle = fullBundle();
    bundle.strokes.resize(20'000, bundle.strokes.front());
    bundle.displays.resize(20'000, bundle.displays.front());
    EXPECT_EQ(decodeSession(encoded(bundle)), bundle);
}

} // namespace orvane
