#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace orvane {

/// What a toast shows, as far as its geometry depends on it: the sizes of its texts, in points.
struct ToastContent {
    QSizeF title;
    std::optional<QSizeF> subtitle = {};
    bool hasIcon = false;
};

/// Where a toast and its parts are.
struct ToastLayout {
    /// The toast's own rectangle in global points; a shadow falls outside it.
    QRect frame;
    /// The parts are relative to the frame's top-left corner. The icon is empty where there is none.
    QRectF icon;
    QPointF title;
    QPointF subtitle;

    bool operator==(const ToastLayout&) const = default;
};

namespace toast {

inline constexpr int titlePixelSize = 15;
inline constexpr int subtitlePixelSize = 12;
inline constexpr qreal cornerRadius = 12;

/// For the area of a screen that panels leave free, in global points. Pure.
ToastLayout layout(const ToastContent& content, const QRect& available);

/// The widest text, in points, with which a toast keeps off both sides of that area; at least 0.
qreal widestText(bool hasIcon, const QRect& available);

} // namespace toast

} // namespace orvane
