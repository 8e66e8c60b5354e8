#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUuid>

#include <array>
#include <optional>
#include <vector>

namespace orvane {

// The records of a drawing session, as `session.json` keeps them. Whoever reads the file knows nothing else
// of the drawing, so the records say it all. Points and rectangles are global points, y down, unless told
// otherwise; times are milliseconds since the Unix epoch. Comparisons are exact.

/// What every session says about the origin of its marks.
inline QString sessionProvenance() {
    return QStringLiteral(
        "Arrows, boxes, ellipses, highlights, and text in these images are user annotations "
        "added with Orvane \u2014 not part of the captured UI.");
}

/// The id as files and messages write it: upper case, without braces.
inline QString uuidText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

// Qt's own comparisons of points and rectangles let small differences pass.
inline std::array<qreal, 2> exactValues(const QPointF& point) {
    return {point.x(), point.y()};
}

inline std::array<qreal, 4> exactValues(const QRectF& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

struct SessionMeta {
    qint64 schemaVersion = 1;
    /// The name of the session's folder.
    QString id = {};
    qint64 createdAtMs = 0;
    std::optional<QString> title = {};
    QString provenance = sessionProvenance();
    /// Its presence alone tells that a human has handed in a review.
    std::optional<qint64> reviewedAtMs = {};

    bool operator==(const SessionMeta&) const = default;
};

/// A display at the time of writing.
struct DisplayInfo {
    quint32 displayId = 0;
    /// Its position in the platform's list, which may have gaps here.
    qint64 index = 0;
    QRectF bounds = {};
    /// Pixels a point.
    qreal scale = 1;

    friend bool operator==(const DisplayInfo& left, const DisplayInfo& right) {
        return left.displayId == right.displayId && left.index == right.index &&
               exactValues(left.bounds) == exactValues(right.bounds) && left.scale == right.scale;
    }
};

/// What was in front when a human saved a drawing.
struct WindowContext {
    QString appName = {};
    /// The application's first window's; empty without one.
    QString title = {};
    /// The same window's; all zero without one.
    QRectF bounds = {};

    friend bool operator==(const WindowContext& left, const WindowContext& right) {
        return left.appName == right.appName && left.title == right.title &&
               exactValues(left.bounds) == exactValues(right.bounds);
    }
};

/// One mark.
struct StrokeRecord {
    QString id = uuidText(QUuid::createUuid());
    /// The words of `Annotation::Kind`; files may hold others.
    QString kind = {};
    /// "#RRGGBB"; files may hold anything.
    QString colorHex = {};
    /// Points.
    qreal strokeWidth = 0;
    QString text = {};
    QString label = {};
    /// The name of the picture's file in the session's folder. Marks of kind "image" have it.
    std::optional<QString> imageFile = {};
    qreal rotation = 0;
    /// The words of `Annotation::Role`; files may hold others.
    QString role = QStringLiteral("human");
    bool removed = false;
    QPointF startAbs = {};
    QPointF endAbs = {};
    /// Fractions of the display's size from its top-left corner; beyond 0 to 1 outside the display.
    QPointF startNorm = {};
    QPointF endNorm = {};
    /// `DisplayInfo::index` of the mark's display; nothing when no display was known.
    std::optional<qint64> displayIndex = {};
    /// Its position among the marks. What counts for readers is the order of the list.
    qint64 zOrder = 0;
    /// When it was drawn.
    std::optional<qint64> timestampMs = {};

    friend bool operator==(const StrokeRecord& left, const StrokeRecord& right) {
        return left.id == right.id && left.kind == right.kind && left.colorHex == right.colorHex &&
               left.strokeWidth == right.strokeWidth && left.text == right.text &&
               left.label == right.label && left.imageFile == right.imageFile &&
               left.rotation == right.rotation && left.role == right.role && left.removed == right.removed &&
               exactValues(left.startAbs) == exactValues(right.startAbs) &&
               exactValues(left.endAbs) == exactValues(right.endAbs) &&
               exactValues(left.startNorm) == exactValues(right.startNorm) &&
               exactValues(left.endNorm) == exactValues(right.endNorm) &&
               left.displayIndex == right.displayIndex && left.zOrder == right.zOrder &&
               left.timestampMs == right.timestampMs;
    }
};

/// The whole of `session.json`.
struct PresentSessionBundle {
    SessionMeta meta = {};
    std::vector<DisplayInfo> displays = {};
    std::optional<WindowContext> window = {};
    /// Drawing order.
    std::vector<StrokeRecord> strokes = {};

    bool operator==(const PresentSessionBundle&) const = default;
};

} // namespace orvane
