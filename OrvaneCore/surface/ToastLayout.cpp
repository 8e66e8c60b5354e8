#include "OrvaneCore/surface/ToastLayout.h"

#include <algorithm>
#include <cmath>

namespace orvane::toast {

namespace {

constexpr qreal sidePadding = 20;
constexpr qreal verticalPadding = 24;
constexpr qreal lineGap = 4;
constexpr qreal iconSide = 28;
constexpr qreal iconGap = 8;
constexpr int edgeGap = 12;

qreal textLeft(bool hasIcon) {
    return sidePadding + (hasIcon ? iconSide + iconGap : 0);
}

} // namespace

ToastLayout layout(const ToastContent& content, const QRect& available) {
    const qreal subtitleWidth = content.subtitle ? content.subtitle->width() : 0;
    const qreal subtitleHeight = content.subtitle ? content.subtitle->height() + lineGap : 0;
    const qreal left = textLeft(content.hasIcon);

    ToastLayout result;
    // Windows have whole sizes.
    const QSize size(
        static_cast<int>(std::ceil(left + std::max(content.title.width(), subtitleWidth) + sidePadding)),
        static_cast<int>(std::ceil(content.title.height() + subtitleHeight + verticalPadding)));
    result.frame = QRect(
        QPoint(available.left() + (available.width() - size.width()) / 2, available.top() + edgeGap), size);
    if (content.hasIcon)
        result.icon = QRectF(sidePadding, (size.height() - iconSide) / 2, iconSide, iconSide);
    result.title = QPointF(left, verticalPadding / 2);
    if (content.subtitle)
        result.subtitle = result.title + QPointF(0, content.title.height() + lineGap);
    return result;
}

qreal widestText(bool hasIcon, const QRect& available) {
    return std::max(0.0, available.width() - 2.0 * edgeGap - textLeft(hasIcon) - sidePadding);
}

} // namespace orvane::toast
