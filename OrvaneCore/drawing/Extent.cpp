#include "OrvaneCore/drawing/Extent.h"

#include <QLineF>
#include <QPointF>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane {

namespace {

/// How far ink may leave its plate, at scale 1: most of an em of the largest font that humans type in.
constexpr qreal inkReach = 14;

bool hasCombiningMarks(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar character) { return character.isMark(); });
}

} // namespace

void Extent::add(const QRectF& rect, qreal margin) {
    parts.push_back(rect.adjusted(-margin, -margin, margin, margin));
}

void Extent::addFrame(const QRectF& rect, qreal margin) {
    add({rect.topLeft(), QSizeF(rect.width(), 0)}, margin);
    add({rect.bottomLeft(), QSizeF(rect.width(), 0)}, margin);
    add({rect.topLeft(), QSizeF(0, rect.height())}, margin);
    add({rect.topRight(), QSizeF(0, rect.height())}, margin);
}

void Extent::addEllipse(const QRectF& rect, qreal margin) {
    // Larger ones leave their curve by more than this where they are drawn as cubic pieces.
    constexpr qreal largestOutline = 4000;
    constexpr qreal curveError = 0.6;
    if (std::max(rect.width(), rect.height()) > largestOutline) {
        add(rect, margin);
        return;
    }
    // Between two points of a quarter both coordinates only rise or only fall.
    constexpr int pieces = 32;
    const auto pointAt = [&rect](int piece) {
        const qreal angle = piece * 2 * std::numbers::pi / pieces;
        return rect.center() +
               QPointF(rect.width() / 2 * std::cos(angle), rect.height() / 2 * std::sin(angle));
    };
    for (int piece = 0; piece < pieces; ++piece)
        add(QRectF(pointAt(piece), pointAt(piece + 1)).normalized(), margin + curveError);
}

void Extent::addLine(const QPointF& from, const QPointF& to, qreal margin) {
    // A slanting line is far from the corners of the rectangle around it.
    constexpr qreal pieceLength = 48;
    constexpr qreal mostPieces = 64;
    const QLineF line(from, to);
    const qreal slant = std::min(std::abs(line.dx()), std::abs(line.dy()));
    const int pieces = static_cast<int>(std::clamp(std::ceil(slant / pieceLength), 1.0, mostPieces));
    for (int piece = 0; piece < pieces; ++piece) {
        const QPointF first = line.pointAt(static_cast<qreal>(piece) / pieces);
        const QPointF last = line.pointAt(static_cast<qreal>(piece + 1) / pieces);
        add(QRectF(first, last).normalized(), margin);
    }
}

void Extent::addTypedText(const QRectF& plate, const QString& text, qreal scale) {
    add(plate, inkReach * scale);
    overflows = overflows || hasCombiningMarks(text);
}

} // namespace orvane
