#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace orvane {

/// One thing that happened during a recording.
struct TimelineEntry {
    /// Wall clock.
    QDateTime timestamp;
    /// "recording_start", "visual_change", "major_change", "minor_changes" or "recording_end".
    QString event;
    /// A sentence for the reader.
    QString details;
    /// The name of the picture in the session folder.
    std::optional<QString> keyframe = {};
    /// How many cells changed and by how many percent on average; 0 unless the event is a change.
    int changedCells = 0;
    double totalDiffPercent = 0;

    bool operator==(const TimelineEntry&) const = default;
};

using Timeline = std::vector<TimelineEntry>;

/// Everything that the report of a recording tells.
struct RecordingReport {
    QString sessionId;
    QDateTime startTime;
    /// Now, for the duration.
    QDateTime endTime;
    QString source;
    QString appName;
    /// How many frames were searched for changes.
    int framesCaptured = 0;
    Timeline timeline;
};

/// The seconds from one moment to another with one decimal.
QString secondsText(const QDateTime& from, const QDateTime& to);

/// An entry as a line of its own: "T+1.0s | event | details | keyframe", the last only where there is one.
QString timelineLine(const TimelineEntry& entry, const QDateTime& startTime);

/// The text of SESSION.md. Nothing in it is escaped.
QString recordingMarkdown(const RecordingReport& report);

} // namespace orvane
