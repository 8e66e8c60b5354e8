#include "OrvaneCore/recording/Timeline.h"

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QDateTime begin({2026, 3, 4}, {5, 6, 7, 250}, Qt::UTC);

RecordingReport emptyReport() {
    return {.sessionId = u"20260304-050607.250"_s,
            .startTime = begin,
            .endTime = begin.addMSecs(12340),
            .source = u"mcp"_s,
            .appName = u"Terminal"_s,
            .framesCaptured = 12,
            .timeline = {}};
}

} // namespace

TEST(TimelineTest, TellsAnEntryInOneLine) {
    TimelineEntry entry{
        .timestamp = begin.addMSecs(1230), .event = u"visual_change"_s, .details = u"New activity | here."_s};
    EXPECT_EQ(timelineLine(entry, begin), u"T+1.2s | visual_change | New activity | here.");
    entry.keyframe = u"change-001.png"_s;
    EXPECT_EQ(timelineLine(entry, begin), u"T+1.2s | visual_change | New activity | here. | change-001.png");
}

TEST(TimelineTest, TellsTheWholeReport) {
    RecordingReport report = emptyReport();
    report.timeline = {
        {begin, u"recording_start"_s, u"Started monitoring Terminal — a|b (300x200)"_s,
         u"frame-000-start.png"_s},
        {begin.addMSecs(1000), u"visual_change"_s, u"New activity in top-left area (1 cells changed)."_s,
         u"change-001.png"_s, 1, 50},
        {begin.addMSecs(3000), u"minor_changes"_s,
         u"4 minor update(s) (continuous activity in active regions)"_s},
        {begin.addMSecs(3000), u"major_change"_s, u"Significant change."_s, u"change-003.png"_s, 12, 50},
        {begin.addMSecs(12000), u"recording_end"_s,
         u"Recording stopped. Duration: 12.0s, 12 frames analyzed."_s, u"frame-013-end.png"_s},
    };
    EXPECT_EQ(
        recordingMarkdown(report).toStdString(),
        "# Orvane Session\n"
        "\n"
        "- **Session ID:** 20260304-050607.250\n"
        "- **Timestamp:** 2026-03-04T05:06:07Z\n"
        "- **Type:** recording\n"
        "- **Source:** mcp\n"
        "- **App:** Terminal\n"
        "- **Duration:** 12.3s\n"
        "- **Frames captured:** 12\n"
        "- **Start frame:** frame-000-start.png\n"
        "- **End frame:** frame-013-end.png\n"
        "\n"
        "## Timeline\n"
        "\n"
        "| Time | Event | Details | Screenshot |\n"
        "|------|-------|---------|------------|\n"
        "| T+0.0s | recording_start | Started monitoring Terminal — a|b (300x200) | frame-000-start.png |\n"
        "| T+1.0s | visual_change | New activity in top-left area (1 cells changed). | change-001.png |\n"
        "| T+3.0s | minor_changes | 4 minor update(s) (continuous activity in active regions) | — |\n"
        "| T+3.0s | major_change | Significant change. | change-003.png |\n"
        "| T+12.0s | recording_end | Recording stopped. Duration: 12.0s, 12 frames analyzed. | "
        "frame-013-end.png |\n"
        "\n"
        "## Summary\n"
        "\n"
        "- **Major changes:** 1 (saved as diff summary frames)\n"
        "- **Minor changes:** 1 visual + 4 coalesced minor updates\n"
        "- **Detection grid:** 8x6 cells\n"
        "\n"
        "*Future: semantic region detection (ISSUE 007) will replace grid with VLM-identified UI "
        "elements.*\n");
}

TEST(TimelineTest, TakesNamesAndTitlesAsTheyAre) {
    RecordingReport report = emptyReport();
    report.appName = u"%7 App %99"_s;
    report.timeline = {
        {begin, u"recording_start"_s, u"Started monitoring %7 App %99 — %1 %2 %4 (300x200)"_s, u"%3.png"_s},
        {begin.addMSecs(500), u"recording_end"_s, u"Recording stopped (%1)"_s, u"%6.png"_s}};
    EXPECT_EQ(timelineLine(report.timeline.front(), begin),
              u"T+0.0s | recording_start | Started monitoring %7 App %99 — %1 %2 %4 (300x200) | %3.png");
    const QString text = recordingMarkdown(report);
    EXPECT_TRUE(text.contains(u"\n- **App:** %7 App %99\n- **Duration:** 12.3s\n"_s));
    EXPECT_TRUE(text.contains(u"\n- **End frame:** %6.png\n\n## Timeline\n"_s));
    EXPECT_TRUE(text.contains(u"\n| T+0.0s | recording_start | Started monitoring %7 App %99 — %1 %2 %4 "
                              "(300x200) | %3.png |\n| T+0.5s | recording_end | Recording stopped (%1) | "
                              "%6.png |\n\n## Summary\n\n- **Major changes:** 0 (saved"_s));
}

TEST(TimelineTest, NamesNoEndFrameWhereThereIsNone) {
    RecordingReport report = emptyReport();
    EXPECT_FALSE(recordingMarkdown(report).contains(u"End frame"));
    report.timeline = {{begin, u"recording_end"_s, u"Recording stopped (end frame capture failed: no)"_s}};
    EXPECT_FALSE(recordingMarkdown(report).contains(u"End frame"));
    // The last end counts.
    report.timeline.insert(report.timeline.begin(),
                           {begin, u"recording_end"_s, u""_s, u"frame-001-end.png"_s});
    EXPECT_FALSE(recordingMarkdown(report).contains(u"End frame"));
}

TEST(TimelineTest, AddsUpTheCoalescedUpdates) {
    RecordingReport report = emptyReport();
    for (const char* details : {"4 minor update(s)", "7 minor", "2", "x9", "", "\u0663 arabic"})
        report.timeline.push_back({begin, u"minor_changes"_s, QString::fromUtf8(details)});
    report.timeline.push_back({begin, u"visual_change"_s, u"100 cells"_s});
    EXPECT_TRUE(recordingMarkdown(report).contains(u"1 visual + 13 coalesced minor updates\n"));
}

} // namespace orvane
