#include "OrvaneCore/recording/RecordingJournal.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/recording/ChangeSentence.h"
#include "OrvaneCore/recording/DiffSummaryFrame.h"
#include "OrvaneCore/recording/FrameDiff.h"
#include "OrvaneCore/storage/ThumbnailCache.h"

#include <QDir>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QString startFrameName = u"frame-000-start.png"_s;

QString sourceText(RecordingSource source) {
    return source == RecordingSource::mcp ? u"mcp"_s : u"human"_s;
}

QString numbered(const QString& prefix, int number, const QString& suffix) {
    return prefix + u"%1"_s.arg(number, 3, 10, QChar(u'0')) + suffix;
}

void writeFile(const QString& folder, const QString& name, const QByteArray& bytes) {
    // A picture that cannot be kept does not end a recording.
    static_cast<void>(writeFileAtomically(QDir(folder).filePath(name), bytes));
}

} // namespace

void RecordingJournal::writeStartFrame(const QByteArray& png) const {
    writeFile(m_head.folder, startFrameName, png);
}

void RecordingJournal::tellStart(const QString& description) {
    append({.timestamp = m_head.startTime,
            .event = u"recording_start"_s,
            .details = u"Started monitoring "_s + description,
            .keyframe = startFrameName});
}

bool RecordingJournal::compare(const QImage& previous, const QImage& current, const QDateTime& time) {
    const int frameIndex = framesAnalysed() + 1;
    const bool taken = m_work.offer([journal = shared_from_this(), previous, current, frameIndex, time] {
        journal->analyse(previous, current, frameIndex, time);
    });
    const std::scoped_lock lock(m_mutex);
    if (taken) {
        m_frameIndex = frameIndex;
    } else {
        ++m_framesLeftOut;
    }
    return taken;
}

void RecordingJournal::analyse(const QImage& previous, const QImage& current, int frameIndex,
                               const QDateTime& time) {
    const std::optional<Change> change = m_tracker.analyse(diffFrames(previous, current));
    if (!change)
        return;
    const QString fileName = numbered(u"change-"_s, frameIndex, u".png"_s);
    writeFile(m_head.folder, fileName, m_pngWriter.encode(markChanges(current, change->regions)));
    const int cellCount = int(change->regions.size());
    const QString sentence = describeChange(change->regions, cellCount, change->averageDiff, change->isMajor);
    if (change->minorChangesBefore > 0) {
        append({.timestamp = time,
                .event = u"minor_changes"_s,
                .details = QString::number(change->minorChangesBefore) +
                           u" minor update(s) (continuous activity in active regions)"_s});
    }
    append({.timestamp = time,
            .event = change->isMajor ? u"major_change"_s : u"visual_change"_s,
            .details = sentence,
            .keyframe = fileName,
            .changedCells = cellCount,
            .totalDiffPercent = change->averageDiff});
    logLine(u"T+"_s + secondsText(m_head.startTime, time) + u"s "_s +
            (change->isMajor ? u"MAJOR"_s : u"change"_s) + u": "_s + sentence);
}

void RecordingJournal::tellPendingChanges(const QDateTime& time) {
    m_work.post([journal = shared_from_this(), time] {
        const int pending = journal->m_tracker.takePendingMinorChanges();
        if (pending > 0) {
            journal->append({.timestamp = time,
                             .event = u"minor_changes"_s,
                             .details = QString::number(pending) + u" minor update(s) in active regions"_s});
        }
    });
}

void RecordingJournal::tellEnd(const QByteArray& endFramePng, const QDateTime& time) {
    const int frames = framesAnalysed();
    const QString fileName = numbered(u"frame-"_s, frames + 1, u"-end.png"_s);
    writeFile(m_head.folder, fileName, endFramePng);
    append({.timestamp = time,
            .event = u"recording_end"_s,
            .details = u"Recording stopped. Duration: "_s + secondsText(m_head.startTime, time) + u"s, "_s +
                       QString::number(frames) + u" frames analyzed."_s,
            .keyframe = fileName});
}

void RecordingJournal::tellEndWithoutFrame(const QString& reason, const QDateTime& time) {
    append({.timestamp = time,
            .event = u"recording_end"_s,
            .details = u"Recording stopped (end frame capture failed: "_s + reason + u')'});
}

void RecordingJournal::writeReport(const QDateTime& time) const {
    RecordingReport report{.sessionId = m_head.sessionId,
                           .startTime = m_head.startTime,
                           .endTime = time,
                           .source = sourceText(m_head.source),
                           .appName = m_head.appName,
                           .framesCaptured = 0,
                           .timeline = {}};
    {
        const std::scoped_lock lock(m_mutex);
        report.framesCaptured = m_frameIndex;
        report.timeline = m_timeline;
    }
    writeFile(m_head.folder, u"SESSION.md"_s, recordingMarkdown(report).toUtf8());
}

void RecordingJournal::logFramesLeftOut() const {
    const std::scoped_lock lock(m_mutex);
    if (m_framesLeftOut > 0) {
        logLine(QString::number(m_framesLeftOut) +
                u" frame(s) came faster than they could be searched for changes"_s);
    }
}

void RecordingJournal::makeThumbnail() {
    m_work.post([&pngWriter = m_pngWriter, folder = m_head.folder] {
        ThumbnailCache(pngWriter).generate(QDir(folder).filePath(startFrameName), folder);
    });
}

QStringList RecordingJournal::takeNews() {
    const std::scoped_lock lock(m_mutex);
    QStringList news;
    for (; m_newsCursor < m_timeline.size(); ++m_newsCursor)
        news.append(timelineLine(m_timeline.at(m_newsCursor), m_head.startTime));
    return news;
}

void RecordingJournal::append(const TimelineEntry& entry) {
    const std::scoped_lock lock(m_mutex);
    m_timeline.push_back(entry);
}

int RecordingJournal::framesAnalysed() const {
    const std::scoped_lock lock(m_mutex);
    return m_frameIndex;
}

} // namespace orvane
