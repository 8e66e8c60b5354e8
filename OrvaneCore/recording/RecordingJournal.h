#pragma once

#include "OrvaneCore/platform/PngWriter.h"
#include "OrvaneCore/recording/ChangeTracker.h"
#include "OrvaneCore/recording/RecordingTarget.h"
#include "OrvaneCore/recording/Timeline.h"
#include "OrvaneCore/recording/WorkQueue.h"

#include <QImage>
#include <QStringList>

#include <memory>
#include <mutex>
#include <optional>

namespace orvane {

/// What is kept of one recording in its session folder: the pictures of its beginning, its changes and its
/// end, the timeline that tells of them, and the report. A picture that cannot be written does not matter.
///
/// Changes are sought and written on the queue, in the order in which they were asked for, so that whoever
/// captures waits for neither. Any thread.
class RecordingJournal : public std::enable_shared_from_this<RecordingJournal> {
public:
    /// Told once, before anything happens.
    struct Head {
        QString sessionId;
        QString folder;
        QDateTime startTime;
        RecordingSource source = RecordingSource::mcp;
        QString appName;
    };

    /// Writer, tracker and queue outlive the journal. The tracker is used by the queue's jobs alone and
    /// remembers from one recording to the next which cells were active.
    RecordingJournal(Head head, const PngWriter& pngWriter, ChangeTracker& tracker, WorkQueue& work)
        : m_head(std::move(head))
        , m_pngWriter(pngWriter)
        , m_tracker(tracker)
        , m_work(work) {}

    const Head& head() const { return m_head; }

    void writeStartFrame(const QByteArray& png) const;
    /// `description` of what is recorded.
    void tellStart(const QString& description);

    /// Has two frames that follow one another compared, unless too many comparisons wait; whether it has.
    /// `time` is that of the later frame. One that is not compared counts as not seen: nothing tells of it
    /// but the log.
    bool compare(const QImage& previous, const QImage& current, const QDateTime& time);

    /// Has the activity told that went on until `time` and was only counted.
    void tellPendingChanges(const QDateTime& time);

    /// The end, with its picture. Comes after what was asked for before only where the queue was drained.
    void tellEnd(const QByteArray& endFramePng, const QDateTime& time);
    /// The end, without a picture for that reason.
    void tellEndWithoutFrame(const QString& reason, const QDateTime& time);

    /// SESSION.md with everything told until now. `time` is that of the end.
    void writeReport(const QDateTime& time) const;

    /// Tells the log how many frames were not compared, where there are any.
    void logFramesLeftOut() const;

    /// Has the small picture of the session made.
    void makeThumbnail();

    /// One line for each entry of the timeline since the last call, whoever made that.
    QStringList takeNews();

private:
    void analyse(const QImage& previous, const QImage& current, int frameIndex, const QDateTime& time);
    void append(const TimelineEntry& entry);
    int framesAnalysed() const;

    const Head m_head;
    const PngWriter& m_pngWriter;
    ChangeTracker& m_tracker;
    WorkQueue& m_work;

    mutable std::mutex m_mutex;
    Timeline m_timeline;
    std::size_t m_newsCursor = 0;
    /// The number of the frame compared last, from 1 on.
    int m_frameIndex = 0;
    qint64 m_framesLeftOut = 0;
};

} // namespace orvane
