#include "OrvaneCore/recording/Timeline.h"

#include "OrvaneCore/base/FixedText.h"
#include "OrvaneCore/recording/RegionDiff.h"

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// The number that the text begins with; 0 for none.
qint64 leadingNumber(const QString& text) {
    const auto* digitsEnd =
        std::find_if_not(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return text.left(digitsEnd - text.cbegin()).toLongLong();
}

qsizetype countOf(const Timeline& timeline, const QString& event) {
    return std::count_if(timeline.begin(), timeline.end(),
                         [&event](const TimelineEntry& entry) { return entry.event == event; });
}

qint64 coalescedUpdates(const Timeline& timeline) {
    qint64 sum = 0;
    for (const TimelineEntry& entry : timeline) {
        if (entry.event == u"minor_changes"_s)
            sum += leadingNumber(entry.details);
    }
    return sum;
}

std::optional<QString> endFrame(const Timeline& timeline) {
    const auto last = std::find_if(timeline.rbegin(), timeline.rend(), [](const TimelineEntry& entry) {
        return entry.event == u"recording_end"_s;
    });
    return last == timeline.rend() ? std::nullopt : last->keyframe;
}

QString row(const TimelineEntry& entry, const QDateTime& startTime) {
    return u"| T+%1s | %2 | %3 | %4 |\n"_s.arg(secondsText(startTime, entry.timestamp), entry.event,
                                               entry.details, entry.keyframe.value_or(u"—"_s));
}

} // namespace

QString secondsText(const QDateTime& from, const QDateTime& to) {
    return fixedText(double(from.msecsTo(to)) / 1000.0, 1);
}

QString timelineLine(const TimelineEntry& entry, const QDateTime& startTime) {
    const QString line =
        u"T+%1s | %2 | %3"_s.arg(secondsText(startTime, entry.timestamp), entry.event, entry.details);
    return entry.keyframe ? line + u" | "_s + *entry.keyframe : line;
}

QString recordingMarkdown(const RecordingReport& report) {
    const auto lastFrame = endFrame(report.timeline);
    // What is told may hold anything, place markers too: each part gets all that it holds in one call of
    // arg().
    QString text =
        u"# Orvane Session\n\n"
        "- **Session ID:** %1\n"
        "- **Timestamp:** %2\n"
        "- **Type:** recording\n"
        "- **Source:** %3\n"
        "- **App:** %4\n"
        "- **Duration:** %5s\n"
        "- **Frames captured:** %6\n"
        "- **Start frame:** frame-000-start.png\n"
        "%7"
        "\n## Timeline\n\n"
        "| Time | Event | Details | Screenshot |\n"
        "|------|-------|---------|------------|\n"_s.arg(
            report.sessionId, report.startTime.toUTC().toString(Qt::ISODate), report.source, report.appName,
            secondsText(report.startTime, report.endTime), QString::number(report.framesCaptured),
            lastFrame ? u"- **End frame:** "_s + *lastFrame + u'\n' : QString());
    for (const TimelineEntry& entry : report.timeline)
        text += row(entry, report.startTime);
    text += u"\n## Summary\n\n"
            "- **Major changes:** %1 (saved as diff summary frames)\n"
            "- **Minor changes:** %2 visual + %3 coalesced minor updates\n"
            "- **Detection grid:** %4x%5 cells\n"
            "\n*Future: semantic region detection (ISSUE 007) will replace grid with VLM-identified UI "
            "elements.*\n"_s.arg(QString::number(countOf(report.timeline, u"major_change"_s)),
                                 QString::number(countOf(report.timeline, u"visual_change"_s)),
                                 QString::number(coalescedUpdates(report.timeline)),
                                 QString::number(gridCols), QString::number(gridRows));
    return text;
}

} // namespace orvane
