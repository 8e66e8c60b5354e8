#pragma once

#include "OrvaneCore/present/session/PresentSession.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <set>
#include <vector>

namespace orvane {

/// The human's review of an agent's drawing, read from its session. Pure; any thread.
namespace annotation_feedback {

/// A mark that the human drew while reviewing.
struct Comment {
    QString id = {};
    QString kind = {};
    QString text = {};
    QString label = {};
    std::optional<qint64> displayIndex = {};
    /// Where the mark starts, in fractions of its display.
    qreal x = 0;
    qreal y = 0;

    bool operator==(const Comment&) const = default;
};

struct AgentStroke {
    QString id = {};
    QString kind = {};
    QString label = {};
    /// Cleared by the human, which need not mean that it was wrong.
    bool removed = false;

    bool operator==(const AgentStroke&) const = default;
};

struct Result {
    /// "pending" until the human hands in a review, then "submitted".
    QString status = {};
    std::vector<Comment> comments = {};
    std::vector<AgentStroke> agentStrokes = {};

    bool operator==(const Result&) const = default;
};

/// Comments and agent's strokes in the order of the session. Both are independent of the status.
Result feedback(const PresentSessionBundle& bundle);

/// The displays on which the human changed something, in rising order.
std::vector<qint64> feedbackDisplayIndices(const PresentSessionBundle& bundle);

/// The pictures that show those displays: out of the names of the files in the session's folder, for each
/// index the one with the review, else the agent's own. When that gives none, the picture of all displays
/// with the review, else the agent's own, else all of the agent's by name.
QStringList selectFeedbackImages(const std::set<QString>& available, const std::vector<DisplayInfo>& displays,
                                 const std::vector<qint64>& indices);

} // namespace annotation_feedback

// What the agent reads: indented JSON with sorted keys. `displayPath` is the session's folder as shown to
// people.

/// "{}" when a number is not finite, which JSON cannot express.
QString feedbackReplyText(const QString& sessionId, const QString& displayPath,
                          const annotation_feedback::Result& result);

/// For a session that is not there or cannot be read.
QString notFoundReplyText(const QString& sessionId, const QString& displayPath);

} // namespace orvane
