#include "OrvaneCore/present/session/AnnotationFeedback.h"

#include "OrvaneCore/marking/Annotation.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using Comment = annotation_feedback::Comment;
using AgentStroke = annotation_feedback::AgentStroke;

bool isComment(const StrokeRecord& stroke) {
    return stroke.role == rawValue(Annotation::Role::review) && !stroke.removed;
}

bool isAgentStroke(const StrokeRecord& stroke) {
    return stroke.role == rawValue(Annotation::Role::agent);
}

QJsonObject toJson(const Comment& comment) {
    QJsonObject object{{u"id"_s, comment.id},       {u"kind"_s, comment.kind}, {u"text"_s, comment.text},
                       {u"label"_s, comment.label}, {u"x"_s, comment.x},       {u"y"_s, comment.y}};
    if (comment.displayIndex)
        object.insert(u"displayIndex"_s, *comment.displayIndex);
    return object;
}

QJsonObject toJson(const AgentStroke& stroke) {
    return {{u"id"_s, stroke.id},
            {u"kind"_s, stroke.kind},
            {u"label"_s, stroke.label},
            {u"removed"_s, stroke.removed}};
}

template <typename Value>
QJsonArray toJson(const std::vector<Value>& values) {
    QJsonArray array;
    for (const Value& value : values)
        array.append(toJson(value));
    return array;
}

QString indented(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented).trimmed());
}

} // namespace

annotation_feedback::Result annotation_feedback::feedback(const PresentSessionBundle& bundle) {
    Result result;
    result.status = bundle.meta.reviewedAtMs ? u"submitted"_s : u"pending"_s;
    for (const StrokeRecord& stroke : bundle.strokes) {
        if (isComment(stroke)) {
            result.comments.push_back({.id = stroke.id,
                                       .kind = stroke.kind,
                                       .text = stroke.text,
                                       .label = stroke.label,
                                       .displayIndex = stroke.displayIndex,
                                       .x = stroke.startNorm.x(),
                                       .y = stroke.startNorm.y()});
        } else if (isAgentStroke(stroke)) {
            result.agentStrokes.push_back(
                {.id = stroke.id, .kind = stroke.kind, .label = stroke.label, .removed = stroke.removed});
        }
    }
    return result;
}

std::vector<qint64> annotation_feedback::feedbackDisplayIndices(const PresentSessionBundle& bundle) {
    std::set<qint64> indices;
    for (const StrokeRecord& stroke : bundle.strokes) {
        const bool changed = isComment(stroke) || (isAgentStroke(stroke) && stroke.removed);
        if (changed && stroke.displayIndex)
            indices.insert(*stroke.displayIndex);
    }
    return {indices.begin(), indices.end()};
}

QStringList annotation_feedback::selectFeedbackImages(const std::set<QString>& available,
                                                      const std::vector<DisplayInfo>& displays,
                                                      const std::vector<qint64>& indices) {
    // A file may list any number of displays and indices, so that looking each up in the list could take
    // for ever.
    QHash<qint64, quint32> displayIds;
    for (const DisplayInfo& display : displays) {
        if (!displayIds.contains(display.index))
            displayIds.insert(display.index, display.displayId);
    }

    QStringList images;
    for (const qint64 index : indices) {
        const auto displayId = displayIds.constFind(index);
        if (displayId == displayIds.constEnd())
            continue;
        for (const QString& prefix : {u"baked_review-"_s, u"baked-"_s}) {
            const QString name = prefix + QString::number(*displayId) + u".png"_s;
            if (available.contains(name)) {
                images.append(name);
                break;
            }
        }
    }
    if (!images.isEmpty())
        return images;

    for (const QString& name : {u"baked_review.png"_s, u"baked.png"_s}) {
        if (available.contains(name))
            return {name};
    }
    std::copy_if(available.begin(), available.end(), std::back_inserter(images), [](const QString& name) {
        return name.startsWith("baked-"_L1) && name.endsWith(".png"_L1);
    });
    return images;
}

QString feedbackReplyText(const QString& sessionId, const QString& displayPath,
                          const annotation_feedback::Result& result) {
    const bool finite =
        std::all_of(result.comments.begin(), result.comments.end(), [](const Comment& comment) {
            return std::isfinite(comment.x) && std::isfinite(comment.y);
        });
    if (!finite)
        return u"{}"_s;
    return indented({{u"sessionId"_s, sessionId},
                     {u"status"_s, result.status},
                     {u"path"_s, displayPath},
                     {u"comments"_s, toJson(result.comments)},
                     {u"agentStrokes"_s, toJson(result.agentStrokes)}});
}

QString notFoundReplyText(const QString& sessionId, const QString& displayPath) {
    return indented({{u"sessionId"_s, sessionId}, {u"status"_s, u"not_found"_s}, {u"path"_s, displayPath}});
}

} // namespace orvane
