#include "OrvaneCore/present/session/AnnotationFeedback.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using Comment = annotation_feedback::Comment;
using AgentStroke = annotation_feedback::AgentStroke;
using Indices = std::vector<qint64>;

StrokeRecord stroke(const QString& id, const QString& role, bool removed,
                    std::optional<qint64> displayIndex = 0) {
    return {.id = id,
            .kind = u"box"_s,
            .text = id + u" text"_s,
            .label = id + u" label"_s,
            .role = role,
            .removed = removed,
            .startAbs = {100, 200},
            .startNorm = {0.25, 0.75},
            .endNorm = {0.5, 1},
            .displayIndex = displayIndex};
}

PresentSessionBundle session(const std::vector<StrokeRecord>& strokes,
                             std::optional<qint64> reviewedAtMs = std::nullopt) {
    return {.meta = {.reviewedAtMs = reviewedAtMs}, .strokes = strokes};
}

std::vector<DisplayInfo> displays(const std::vector<std::pair<qint64, quint32>>& indicesAndIds) {
    std::vector<DisplayInfo> infos;
    infos.reserve(indicesAndIds.size());
    for (const auto& [index, id] : indicesAndIds)
        infos.push_back({.displayId = id, .index = index});
    return infos;
}

QStringList selected(const std::set<QString>& available,
                     const std::vector<std::pair<qint64, quint32>>& indicesAndIds, const Indices& indices) {
    return annotation_feedback::selectFeedbackImages(available, displays(indicesAndIds), indices);
}

} // namespace

// What the review says

TEST(AnnotationFeedback, IsPendingWithTheAgentsStrokesBeforeAnyReview) {
    const auto result = annotation_feedback::feedback(
        session({stroke(u"a"_s, u"agent"_s, false), stroke(u"b"_s, u"agent"_s, false)}));
    EXPECT_EQ(result, (annotation_feedback::Result{
                          .status = u"pending"_s,
                          .agentStrokes = {{.id = u"a"_s, .kind = u"box"_s, .label = u"a label"_s},
                                           {.id = u"b"_s, .kind = u"box"_s, .label = u"b label"_s}}}));
}

TEST(AnnotationFeedback, IsSubmittedByThePresenceOfTheTimeAlone) {
    for (const qint64 time : {qint64(1'700'000'000'000), qint64(0), qint64(-1)})
        EXPECT_EQ(annotation_feedback::feedback(session({}, time)).status, u"submitted"_s) << time;
    EXPECT_EQ(annotation_feedback::feedback(session({})),
              (annotation_feedback::Result{.status = u"pending"_s}));
}

TEST(AnnotationFeedback, ListsCommentsAndAgentStrokesInTheirOrder) {
    const auto result = annotation_feedback::feedback(
        session({stroke(u"r1"_s, u"review"_s, false, 2), stroke(u"a1"_s, u"agent"_s, true),
                 stroke(u"r2"_s, u"review"_s, true), stroke(u"h1"_s, u"human"_s, false),
                 stroke(u"a2"_s, u"agent"_s, false), stroke(u"h2"_s, u"human"_s, true),
                 stroke(u"r3"_s, u"review"_s, false, std::nullopt)},
                5));
    EXPECT_EQ(
        result,
        (annotation_feedback::Result{
            .status = u"submitted"_s,
            .comments = {{.id = u"r1"_s,
                          .kind = u"box"_s,
                          .text = u"r1 text"_s,
                          .label = u"r1 label"_s,
                          .displayIndex = 2,
                          .x = 0.25,
                          .y = 0.75},
                         {.id = u"r3"_s,
                          .kind = u"box"_s,
                          .text = u"r3 text"_s,
                          .label = u"r3 label"_s,
                          .x = 0.25,
                          .y = 0.75}},
            .agentStrokes = {{.id = u"a1"_s, .kind = u"box"_s, .label = u"a1 label"_s, .removed = true},
                             {.id = u"a2"_s, .kind = u"box"_s, .label = u"a2 label"_s, .removed = false}}}));
}

TEST(AnnotationFeedback, TakesRolesByTheirExactWords) {
    const auto bundle = session({stroke(u"a"_s, u"Review"_s, false), stroke(u"b"_s, u"AGENT"_s, true),
                                 stroke(u"c"_s, u""_s, false), stroke(u"d"_s, u"review "_s, false)});
    EXPECT_EQ(annotation_feedback::feedback(bundle), (annotation_feedback::Result{.status = u"pending"_s}));
    EXPECT_EQ(annotation_feedback::feedbackDisplayIndices(bundle), Indices());
}

TEST(AnnotationFeedback, KeepsMarksOfAnyKind) {
    StrokeRecord star = stroke(u"a"_s, u"review"_s, false);
    star.kind = u"star"_s;
    const auto result = annotation_feedback::feedback(session({star}));
    ASSERT_EQ(result.comments.size(), 1);
    EXPECT_EQ(result.comments[0].kind, u"star"_s);
}

TEST(AnnotationFeedback, CanBePendingWithComments) {
    const auto result = annotation_feedback::feedback(session({stroke(u"r"_s, u"review"_s, false)}));
    EXPECT_EQ(result.status, u"pending"_s);
    EXPECT_EQ(result.comments.size(), 1);
}

TEST(AnnotationFeedback, ReportsThatTheHumanClearedEverything) {
    const auto bundle =
        session({stroke(u"a"_s, u"agent"_s, true, 1), stroke(u"b"_s, u"agent"_s, true, 0)}, 9);
    const auto result = annotation_feedback::feedback(bundle);
    EXPECT_EQ(result.status, u"submitted"_s);
    EXPECT_TRUE(result.comments.empty());
    ASSERT_EQ(result.agentStrokes.size(), 2);
    EXPECT_TRUE(result.agentStrokes[0].removed);
    EXPECT_TRUE(result.agentStrokes[1].removed);
    EXPECT_EQ(annotation_feedback::feedbackDisplayIndices(bundle), (Indices{0, 1}));
}

TEST(AnnotationFeedback, ReadsAHumansOwnDrawingByTheSameRules) {
    const auto result = annotation_feedback::feedback(
        session({stroke(u"h"_s, u"human"_s, false), stroke(u"r"_s, u"review"_s, false)}, 1));
    EXPECT_TRUE(result.agentStrokes.empty());
    ASSERT_EQ(result.comments.size(), 1);
    EXPECT_EQ(result.comments[0].id, u"r"_s);
}

TEST(AnnotationFeedback, ComparesEveryField) {
    const Comment comment{.id = u"i"_s, .displayIndex = 0, .x = 0.1};
    Comment other = comment;
    EXPECT_EQ(comment, other);
    other.displayIndex.reset();
    EXPECT_NE(comment, other);
    other = comment;
    other.x += 1e-15;
    EXPECT_NE(comment, other);
    EXPECT_NE((AgentStroke{.id = u"i"_s}), (AgentStroke{.id = u"i"_s, .removed = true}));
}

// Where the human changed something

TEST(FeedbackDisplayIndices, AreSortedAndUnique) {
    EXPECT_EQ(annotation_feedback::feedbackDisplayIndices(
                  session({stroke(u"a"_s, u"review"_s, false, 7), stroke(u"b"_s, u"agent"_s, true, -2),
                           stroke(u"c"_s, u"review"_s, false, 0), stroke(u"d"_s, u"agent"_s, true, 7),
                           stroke(u"e"_s, u"review"_s, false, 10)})),
              (Indices{-2, 0, 7, 10}));
}

TEST(FeedbackDisplayIndices, CountChangesByTheHumanOnly) {
    EXPECT_EQ(annotation_feedback::feedbackDisplayIndices(
                  session({stroke(u"a"_s, u"review"_s, false, 1), stroke(u"b"_s, u"review"_s, true, 2),
                           stroke(u"c"_s, u"agent"_s, false, 3), stroke(u"d"_s, u"agent"_s, true, 4),
                           stroke(u"e"_s, u"human"_s, false, 5), stroke(u"f"_s, u"human"_s, true, 6),
                           stroke(u"g"_s, u"review"_s, false, std::nullopt)})),
              (Indices{1, 4}));
    EXPECT_EQ(annotation_feedback::feedbackDisplayIndices(session({})), Indices());
}

// Which pictures show it

TEST(SelectFeedbackImages, PrefersThePictureOfTheReview) {
    const std::set<QString> both{u"baked_review-2.png"_s, u"baked-2.png"_s};
    EXPECT_EQ(selected(both, {{0, 2}}, {0}), QStringList{u"baked_review-2.png"_s});
    EXPECT_EQ(selected({u"baked-2.png"_s}, {{0, 2}}, {0}), QStringList{u"baked-2.png"_s});
}

TEST(SelectFeedbackImages, KeepsTheOrderOfTheIndices) {
    const std::set<QString> available{u"baked-10.png"_s, u"baked-9.png"_s, u"baked_review-8.png"_s,
                                      u"baked.png"_s, u"baked_review.png"_s};
    EXPECT_EQ(selected(available, {{0, 10}, {1, 9}, {2, 8}}, {1, 2, 0}),
              (QStringList{u"baked-9.png"_s, u"baked_review-8.png"_s, u"baked-10.png"_s}));
}

TEST(SelectFeedbackImages, GoesByTheIndexFieldAndItsFirstDisplay) {
    const std::set<QString> available{u"baked-5.png"_s, u"baked-6.png"_s, u"baked-7.png"_s};
    EXPECT_EQ(selected(available, {{2, 5}, {0, 6}}, {0}), QStringList{u"baked-6.png"_s});
    EXPECT_EQ(selected(available, {{0, 5}, {0, 6}}, {0}), QStringList{u"baked-5.png"_s});
    // That the first has no picture does not bring in the second.
    EXPECT_EQ(selected(available, {{0, 1}, {0, 6}, {1, 7}}, {0, 1}), QStringList{u"baked-7.png"_s});
}

TEST(SelectFeedbackImages, WritesLargeIdsUnsigned) {
    EXPECT_EQ(selected({u"baked-4294967295.png"_s, u"baked.png"_s}, {{0, 4'294'967'295}}, {0}),
              QStringList{u"baked-4294967295.png"_s});
}

TEST(SelectFeedbackImages, SkipsWhatHasNoDisplayOrNoPicture) {
    const std::set<QString> available{u"baked-5.png"_s, u"baked_review.png"_s};
    EXPECT_EQ(selected(available, {{0, 4}, {1, 5}}, {0, 1, 2}), QStringList{u"baked-5.png"_s});
}

TEST(SelectFeedbackImages, FallsBackWhenNoIndexHasAPicture) {
    // Index 1 is between the displays' own.
    EXPECT_EQ(selected({u"baked-5.png"_s, u"baked-6.png"_s, u"baked_review.png"_s}, {{0, 5}, {2, 6}}, {1}),
              QStringList{u"baked_review.png"_s});
    EXPECT_EQ(selected({u"baked.png"_s}, {{0, 5}}, {0}), QStringList{u"baked.png"_s});
    EXPECT_EQ(selected({u"baked.png"_s, u"baked_review.png"_s}, {}, {0}), QStringList{u"baked_review.png"_s});
}

TEST(SelectFeedbackImages, FallsBackOnOnePictureBeforeTheMany) {
    EXPECT_EQ(selected({u"baked-5.png"_s, u"baked.png"_s, u"baked_review.png"_s}, {{0, 5}}, {}),
              QStringList{u"baked_review.png"_s});
    EXPECT_EQ(selected({u"baked-5.png"_s, u"baked.png"_s, u"baked_review-5.png"_s}, {{0, 5}}, {}),
              QStringList{u"baked.png"_s});
}

TEST(SelectFeedbackImages, FallsBackOnAllOfTheAgentsInPlainOrder) {
    EXPECT_EQ(selected({u"baked-9.png"_s, u"baked-10.png"_s, u"baked_review-9.png"_s, u"clean-9.png"_s,
                        u"baked-9.png.tmp"_s, u"baked-x.png"_s, u"baked-.png"_s, u"Baked-1.png"_s,
                        u"baked-1.PNG"_s, u"xbaked-1.png"_s, u"session.json"_s},
                       {{0, 5}}, {1}),
              (QStringList{u"baked-.png"_s, u"baked-10.png"_s, u"baked-9.png"_s, u"baked-x.png"_s}));
}

TEST(SelectFeedbackImages, MayBeNone) {
    EXPECT_TRUE(selected({}, {{0, 5}}, {0}).isEmpty());
    EXPECT_TRUE(selected({}, {}, {}).isEmpty());
    EXPECT_TRUE(selected({u"baked_review-5.png"_s, u"clean.png"_s}, {{0, 4}}, {0}).isEmpty());
}

TEST(SelectFeedbackImages, GivesMoreThanAnyoneWillShow) {
    std::set<QString> available;
    std::vector<std::pair<qint64, quint32>> five;
    for (quint32 id = 1; id <= 5; ++id) {
        available.insert(u"baked-%1.png"_s.arg(id));
        five.emplace_back(id, id);
    }
    EXPECT_EQ(selected(available, five, {1, 2, 3, 4, 5}).size(), 5);
}

TEST(SelectFeedbackImages, CopesWithAsManyDisplaysAsAFileCanList) {
    constexpr quint32 many = 200'000;
    std::vector<std::pair<qint64, quint32>> indicesAndIds;
    Indices indices;
    indicesAndIds.reserve(many);
    indices.reserve(many);
    for (quint32 i = 0; i < many; ++i) {
        indicesAndIds.emplace_back(i, i);
        indices.push_back(many - 1 - i);
    }
    EXPECT_EQ(selected({u"baked-199999.png"_s, u"baked-0.png"_s}, indicesAndIds, indices),
              (QStringList{u"baked-199999.png"_s, u"baked-0.png"_s}));
}

// What the agent reads

TEST(FeedbackReplyText, IsIndentedWithSortedKeys) {
    const annotation_feedback::Result result{
        .status = u"submitted"_s,
        .comments = {{.id = u"c1"_s,
                      .kind = u"text"_s,
                      .text = u"here \u2014 \"x\""_s,
                      .label = u""_s,
                      .displayIndex = 0,
                      .x = 0.25,
                      .y = 1},
                     {.id = u"c2"_s, .kind = u"arrow"_s, .label = u"l"_s, .x = -0.5, .y = 1.5}},
        .agentStrokes = {{.id = u"a1"_s, .kind = u"box"_s, .label = u"m"_s, .removed = true}}};
    EXPECT_EQ(feedbackReplyText(u"2026"_s, u"~/.orvane/sessions/2026"_s, result).toStdString(), R"({
    "agentStrokes": [
        {
            "id": "a1",
            "kind": "box",
            "label": "m",
            "removed": true
        }
    ],
    "comments": [
        {
            "displayIndex": 0,
            "id": "c1",
            "kind": "text",
            "label": "",
            "text": "here — \"x\"",
            "x": 0.25,
            "y": 1
        },
        {
            "id": "c2",
            "kind": "arrow",
            "label": "l",
            "text": "",
            "x": -0.5,
            "y": 1.5
        }
    ],
    "path": "~/.orvane/sessions/2026",
    "sessionId": "2026",
    "status": "submitted"
})");
}

TEST(FeedbackReplyText, ListsNothingAsEmptyArrays) {
    EXPECT_EQ(feedbackReplyText(u"s"_s, u"p"_s, {.status = u"pending"_s}).toStdString(), R"({
    "agentStrokes": [
    ],
    "comments": [
    ],
    "path": "p",
    "sessionId": "s",
    "status": "pending"
})");
}

TEST(FeedbackReplyText, IsAnEmptyObjectWhenANumberIsNotFinite) {
    for (const qreal value :
         {std::numeric_limits<qreal>::infinity(), std::numeric_limits<qreal>::quiet_NaN()}) {
        EXPECT_EQ(feedbackReplyText(u"s"_s, u"p"_s, {.status = u"pending"_s, .comments = {{.x = value}}}),
                  u"{}"_s);
        EXPECT_EQ(feedbackReplyText(u"s"_s, u"p"_s, {.status = u"pending"_s, .comments = {{}, {.y = value}}}),
                  u"{}"_s);
    }
}

TEST(NotFoundReplyText, NamesTheSessionAndItsPlace) {
    EXPECT_EQ(notFoundReplyText(u"../\"x\""_s, u"~/.orvane/sessions/x"_s).toStdString(), R"({
    "path": "~/.orvane/sessions/x",
    "sessionId": "../\"x\"",
    "status": "not_found"
})");
}

} // namespace orvane
