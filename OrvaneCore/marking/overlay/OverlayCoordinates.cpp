#include "OrvaneCore/marking/overlay/OverlayCoordinates.h"

#include "OrvaneCore/base/FixedText.h"
#include "OrvaneCore/base/Log.h"

#include <QString>

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// The same rectangle seen from the lower edge of an area of that height.
QRectF yUp(const QRectF& rect, qreal height) {
    return {rect.x(), height - rect.y() - rect.height(), rect.width(), rect.height()};
}

QString text(const QRectF& rect) {
    return u"(%1, %2, %3, %4)"_s.arg(fixedText(rect.x(), 1), fixedText(rect.y(), 1),
                                     fixedText(rect.width(), 1), fixedText(rect.height(), 1));
}

} // namespace

QPointF OverlayCoordinates::regionCorner(const QPointF& viewPoint) const {
    // Half a pixel more than the last one: a display's size in whole points is a rounded one.
    const auto corner = [this](qreal at, qreal length) {
        return at < length && at >= std::max(0.0, length - 1.5 * pixelSide) ? length : at;
    };
    return {corner(viewPoint.x(), view.frame.width()), corner(viewPoint.y(), view.frame.height())};
}

QRectF OverlayCoordinates::convertToScreen(const QRectF& viewRect) const {
    const QRectF global = view.convertToScreen(viewRect);
    logLine(u"convert viewRect=%1 → cocoaScreen=%2 → quartz=%3 mainH=%4"_s.arg(
        text(yUp(viewRect, view.frame.height())), text(yUp(global, primaryHeight)), text(global),
        fixedText(primaryHeight, 1)));
    return global;
}

} // namespace orvane
