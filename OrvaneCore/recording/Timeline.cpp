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
    return u"| T+"_s + secondsText(startTime, entry.timestamp) + u"s | "_s + entry.event + u" | "_s +
           entry.details + u" | "_s + entry.keyframe.value_or(u"—"_s) + u" |\n"_s;
}

} // namespace

QString secondsText(const QDateTime& from, const QDateTime& to) {
    return fixedText(double(from.msecsTo(to)) / 1000.0, 1);
}

QString timelineLine(const TimelineEntry& entry, const QDateTime& startTime) {
    QString line = u"T+"_s + secondsText(startTime, entry.timestamp) + u"s | "_s + entry.event + u" | "_s +
                   entry.details;
    if (entry.keyframe)
        line += u" | "_s + *entry.keyframe;
    return line;
}

QString recordingMarkdown(const RecordingReport& report) {
    QString text = u"# Orvane Session\n\n"_s;
    text += u"- **Session ID:** "_s + report.sessionId + u'\n';
    text += u"- **Timestamp:** "_s + report.startTime.toUTC().toString(Qt::ISODate) + u'\n';
    text += u"- **Type:** recording\n"_s;
    text += u"- **Source:** "_s + report.source + u'\n';
    text += u"- **App:** "_s + report.appName + u'\n';
    text += u"- **Duration:** "_s + secondsText(report.startTime, report.endTime) + u"s\n"_s;
    text += u"- **Frames captured:** "_s + QString::number(report.framesCaptured) + u'\n';
    text += u"- **Start frame:** frame-000-start.png\n"_s;
    if (const auto keyframe = endFrame(report.timeline))
        text += u"- **End frame:** "_s + *keyframe + u'\n';
    text += u"\n## Timeline\n\n"_s;
    text += u"| Time | Event | Details | Screenshot |\n"_s;
    text += u"|------|-------|---------|------------|\n"_s;
    for (const TimelineEntry& entry : report.timeline)
        text += row(entry, report.startTime);
    text += u"\n## Summary\n\n"_s;
    text += u"- **Major changes:** "_s + QString::number(countOf(report.timeline, u"major_change"_s)) +
            u" (saved as diff summary frames)\n"_s;
    text += u"- **Minor changes:** "_s + QString::number(countOf(report.timeline, u"visual_change"_s)) +
            u" visual + "_s + QString::number(coalescedUpdates(report.timeline)) +
            u" coalesced minor updates\n"_s;
    text += u"- **Detection grid:** "_s + QString::number(gridCols) + u'x' + QString::number(gridRows) +
            u" cells\n"_s;
    text += u"\n*Future: semantic region detection (ISSUE 007) will replace grid with VLM-identified UI "_s
            u"elements.*\n"_s;
    return text;
}

} // namespace orvane
