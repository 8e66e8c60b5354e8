#include "OrvaneCore/mcp/ToolCatalogue.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

QByteArray fixture(const QString& name) {
    QFile file(QStringLiteral(ORVANE_FIXTURES_DIR "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    return file.readAll();
}

std::vector<std::string> strings(const QJsonValue& array) {
    std::vector<std::string> texts;
    const QJsonArray elements = array.toArray();
    for (const auto& element : elements)
        texts.push_back(element.toString().toStdString());
    return texts;
}

QJsonObject schemaOf(const QString& name) {
    const QJsonArray tools = tool_catalogue::toolDefinitions();
    for (const auto& tool : tools) {
        if (tool[u"name"_s] == name)
            return tool[u"inputSchema"_s].toObject();
    }
    return {};
}

class Tool : public testing::TestWithParam<std::pair<int, const char*>> {};

TEST_P(Tool, IsWordForWordItsSnapshot) {
    const auto [index, name] = GetParam();
    const QJsonObject tool = tool_catalogue::toolDefinitions().at(index).toObject();
    EXPECT_EQ(tool[u"name"_s].toString().toStdString(), name);
    EXPECT_EQ(tool.keys(), (QStringList{u"description"_s, u"inputSchema"_s, u"name"_s}));

    const QJsonDocument snapshot =
        QJsonDocument::fromJson(fixture(u"catalogue/%1.json"_s.arg(QLatin1String(name))));
    ASSERT_FALSE(snapshot.isNull());
    EXPECT_EQ(QJsonDocument(tool).toJson().toStdString(), snapshot.toJson().toStdString());
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Tool,
                         testing::Values(std::pair(0, "list_windows"), std::pair(1, "capture_window"),
                                         std::pair(2, "capture_region"), std::pair(3, "activate_window"),
                                         std::pair(4, "capture_window_region"),
                                         std::pair(5, "capture_annotated"), std::pair(6, "capture_diff"),
                                         std::pair(7, "start_recording"), std::pair(8, "stop_recording"),
                                         std::pair(9, "poll_recording"), std::pair(10, "read_frame"),
                                         std::pair(11, "get_annotations"),
                                         std::pair(12, "annotate_understanding"),
                                         std::pair(13, "get_annotation_feedback")),
                         [](const auto& instance) { return std::string(instance.param.second); });

TEST(ToolCatalogue, NamesFourteenToolsInTheirOrder) {
    std::vector<std::string> names;
    for (const QString& name : tool_catalogue::names())
        names.push_back(name.toStdString());
    EXPECT_THAT(names, ElementsAre("list_windows", "capture_window", "capture_region", "activate_window",
                                   "capture_window_region", "capture_annotated", "capture_diff",
                                   "start_recording", "stop_recording", "poll_recording", "read_frame",
                                   "get_annotations", "annotate_understanding", "get_annotation_feedback"));
    EXPECT_EQ(tool_catalogue::toolDefinitions().size(), 14);
}

TEST(ToolCatalogue, HasASnapshotOfEveryToolAndOfNoOther) {
    QStringList expected;
    for (const QString& name : tool_catalogue::names())
        expected.append(name + u".json"_s);
    expected.sort();
    QStringList found = QDir(QStringLiteral(ORVANE_FIXTURES_DIR "/catalogue")).entryList(QDir::Files);
    found.sort();
    EXPECT_EQ(found, expected);
}

TEST(ToolCatalogue, IntroducesItselfWordForWord) {
    EXPECT_EQ(tool_catalogue::instructions().toUtf8().toStdString(),
              fixture(u"instructions.txt"_s).toStdString());
}

TEST(ToolCatalogue, TheIntroductionKeepsItsParagraphsAndTheRunOfBlanks) {
    const QStringList paragraphs = tool_catalogue::instructions().split(u"\n\n"_s);
    ASSERT_EQ(paragraphs.size(), 4);
    EXPECT_EQ(paragraphs[0], u"Orvane lets an AI agent see the screen and draw on it."_s);
    const QStringList pair = paragraphs[2].split(u'\n');
    ASSERT_EQ(pair.size(), 3);
    EXPECT_EQ(pair[0], u"ANNOTATION PAIR (bidirectional visual feedback):"_s);
    EXPECT_TRUE(pair[1].startsWith(u"\u2022 annotate_understanding \u2014 YOU draw"_s));
    EXPECT_TRUE(pair[1].contains(u"live screen to show   the human what"_s));
    EXPECT_EQ(pair[2],
              u"\u2022 get_annotations \u2014 read back what the HUMAN marked (the inverse direction)."_s);
    EXPECT_TRUE(paragraphs[3].endsWith(u"Recording tools produce artifacts to read later."_s));
}

TEST(ToolCatalogue, RequiredArgumentsAreNamedOnlyWhereThereAreAny) {
    const QJsonArray tools = tool_catalogue::toolDefinitions();
    std::vector<std::string> without;
    for (const auto& tool : tools) {
        const QJsonObject schema = tool[u"inputSchema"_s].toObject();
        EXPECT_EQ(schema[u"type"_s], u"object"_s);
        EXPECT_TRUE(schema[u"properties"_s].isObject());
        if (!schema.contains(u"required"_s))
            without.push_back(tool[u"name"_s].toString().toStdString());
        for (const std::string& name : strings(schema[u"required"_s]))
            EXPECT_TRUE(schema[u"properties"_s].toObject().contains(QString::fromStdString(name))) << name;
    }
    EXPECT_THAT(without, ElementsAre("list_windows", "stop_recording", "poll_recording", "get_annotations"));
}

TEST(ToolCatalogue, OnlyTheRegionsOfACaptureMustHaveALabel) {
    const QJsonArray tools = tool_catalogue::toolDefinitions();
    std::vector<std::string> labelled;
    for (const auto& tool : tools) {
        const QJsonObject properties = tool[u"inputSchema"_s][u"properties"_s].toObject();
        for (const auto& property : properties) {
            const std::vector<std::string> required = strings(property[u"items"_s][u"required"_s]);
            if (std::find(required.begin(), required.end(), "label") != required.end())
                labelled.push_back(tool[u"name"_s].toString().toStdString());
        }
    }
    EXPECT_THAT(labelled, ElementsAre("capture_annotated"));
    EXPECT_THAT(strings(schemaOf(
                    u"annotate_understanding"_s)[u"properties"_s][u"strokes"_s][u"items"_s][u"required"_s]),
                ElementsAre("kind", "frame", "start", "end"));
}

TEST(ToolCatalogue, SpellsTheSessionArgumentInTwoWays) {
    EXPECT_EQ(schemaOf(u"read_frame"_s)[u"properties"_s].toObject().keys(),
              (QStringList{u"frame"_s, u"session_id"_s}));
    EXPECT_EQ(schemaOf(u"get_annotations"_s)[u"properties"_s].toObject().keys(), QStringList{u"ocr"_s});
    EXPECT_EQ(schemaOf(u"get_annotation_feedback"_s)[u"properties"_s].toObject().keys(),
              QStringList{u"sessionId"_s});
}

} // namespace
} // namespace orvane
