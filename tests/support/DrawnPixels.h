#pragma once

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPoint>
#include <QRect>
#include <QRgb>
#include <QTransform>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

/// What tests of drawing look at: which pixel has which colour, and where a painted edge lies within a pixel.
namespace orvane::test {

inline constexpr QRgb white = 0xFFFFFFFF;
inline constexpr QRgb black = 0xFF000000;

/// A picture of one colour to draw on.
inline QImage ground(const QSize& size, QRgb color = white) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(color);
    return picture;
}

/// What comes of a colour that lies on another with that opacity.
inline QRgb blended(QRgb color, qreal opacity, QRgb under) {
    const auto channel = [opacity](int over, int below) {
        return static_cast<int>(std::lround(over * opacity + below * (1 - opacity)));
    };
    return qRgb(channel(qRed(color), qRed(under)), channel(qGreen(color), qGreen(under)),
                channel(qBlue(color), qBlue(under)));
}

/// The largest difference between two channels.
inline int colorDistance(QRgb left, QRgb right) {
    return std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                     std::abs(qBlue(left) - qBlue(right))});
}

/// True when all of the pixels of `area`, of which there has to be one, are of a colour.
inline ::testing::AssertionResult isFilled(const QImage& picture, const QRect& area, QRgb color,
                                           int tolerance = 1) {
    if (area.isEmpty() || !picture.rect().contains(area))
        return ::testing::AssertionFailure() << "no such pixels";
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (colorDistance(picture.pixel(x, y), color) > tolerance) {
                return ::testing::AssertionFailure() << "pixel " << x << "," << y << " is " << std::hex
                                                     << picture.pixel(x, y) << ", not " << color;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

/// The pixel that a point lies in.
inline QPoint pixelAt(const QPointF& point) {
    return {static_cast<int>(std::floor(point.x())), static_cast<int>(std::floor(point.y()))};
}

inline ::testing::AssertionResult isColor(const QImage& picture, const QPointF& point, QRgb color,
                                          int tolerance = 1) {
    return isFilled(picture, QRect(pixelAt(point), QSize(1, 1)), color, tolerance);
}

/// The pixels that lie wholly inside a rectangle.
inline QRect pixelsInside(const QRectF& rect) {
    const QPoint first(static_cast<int>(std::ceil(rect.left())), static_cast<int>(std::ceil(rect.top())));
    const QPoint end(static_cast<int>(std::floor(rect.right())), static_cast<int>(std::floor(rect.bottom())));
    return {first, end - QPoint(1, 1)};
}

/// The smallest rectangle around all that differs from the ground by more than the tolerance; empty for
/// nothing.
inline QRect inkBounds(const QImage& picture, QRgb under = white, int tolerance = 0) {
    QRect bounds;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (colorDistance(picture.pixel(x, y), under) > tolerance)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

/// How far a pixel has gone from the colour of the ground to that of the ink: 0 to 1 on the way.
inline qreal coverage(QRgb pixel, QRgb under, QRgb ink) {
    const auto product = [under](QRgb left, QRgb right) {
        return (qRed(left) - qRed(under)) * (qRed(right) - qRed(under)) +
               (qGreen(left) - qGreen(under)) * (qGreen(right) - qGreen(under)) +
               (qBlue(left) - qBlue(under)) * (qBlue(right) - qBlue(under));
    };
    return static_cast<qreal>(product(pixel, ink)) / product(ink, ink);
}

/// The stretch that ink covers of a row or a column, to a small part of a pixel.
struct Span {
    qreal begin = 0;
    qreal end = 0;

    qreal length() const { return end - begin; }
};

inline ::testing::AssertionResult isSpan(const Span& actual, qreal begin, qreal end, qreal margin = 0.06) {
    if (std::abs(actual.begin - begin) <= margin && std::abs(actual.end - end) <= margin)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << actual.begin << " to " << actual.end << ", not " << begin << " to " << end;
}

/// Of the pixels of a row or a column, given by a rectangle that is one pixel wide or high. There is one
/// piece of ink in it, of one colour and without gaps.
inline Span spanIn(const QImage& picture, const QRect& line, QRgb under, QRgb ink) {
    const bool isRow = line.height() == 1;
    const int count = std::max(0, isRow ? line.width() : line.height());
    const int first = isRow ? line.left() : line.top();
    qreal sum = 0;
    qreal moment = 0;
    for (int i = 0; i < count; ++i) {
        const QPoint place = line.topLeft() + (isRow ? QPoint(i, 0) : QPoint(0, i));
        const qreal part = coverage(picture.pixel(place), under, ink);
        sum += part;
        moment += part * (first + i + 0.5);
    }
    const qreal middle = sum > 0 ? moment / sum : 0;
    return {middle - sum / 2, middle + sum / 2};
}

/// In the row of pixels that holds y, from one x to another, or to the edge of the picture.
inline Span spanInRow(const QImage& picture, qreal y, qreal fromX, qreal toX, QRgb under, QRgb ink) {
    const QPoint first = pixelAt({fromX, y});
    const QRect line(first, QPoint(pixelAt({toX, y}).x(), first.y()));
    return spanIn(picture, line & picture.rect(), under, ink);
}

inline Span spanInColumn(const QImage& picture, qreal x, qreal fromY, qreal toY, QRgb under, QRgb ink) {
    const QPoint first = pixelAt({x, fromY});
    const QRect line(first, QPoint(first.x(), pixelAt({x, toY}).y()));
    return spanIn(picture, line & picture.rect(), under, ink);
}

/// How two pictures of the same size differ.
struct Difference {
    /// Of all channels, in grey levels.
    qreal mean = 0;
    /// The part of the pixels that differ by more than the limit, 0 to 1.
    qreal share = 0;
    int largest = 0;
};

inline Difference difference(const QImage& left, const QImage& right, int limit) {
    Difference result;
    qreal sum = 0;
    qreal over = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb one = left.pixel(x, y);
            const QRgb other = right.pixel(x, y);
            const int distance = colorDistance(one, other);
            sum += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
                   std::abs(qBlue(one) - qBlue(other));
            over += distance > limit ? 1 : 0;
            result.largest = std::max(result.largest, distance);
        }
    }
    const qreal pixels = static_cast<qreal>(left.width()) * left.height();
    result.mean = sum / (3 * pixels);
    result.share = over / pixels;
    return result;
}

/// What a drawing may change of a painter while it goes on, and has to give back.
struct PainterSettings {
    QPen pen;
    QBrush brush;
    QFont font;
    QTransform transform;
    QPainter::CompositionMode compositionMode;
    QPainter::RenderHints renderHints;
    qreal opacity;
    bool hasClipping;

    explicit PainterSettings(const QPainter& painter)
        : pen(painter.pen())
        , brush(painter.brush())
        , font(painter.font())
        , transform(painter.transform())
        , compositionMode(painter.compositionMode())
        , renderHints(painter.renderHints())
        , opacity(painter.opacity())
        , hasClipping(painter.hasClipping()) {}

    bool operator==(const PainterSettings&) const = default;
};

/// Sets all of them to what no drawing wants, and yet such that what is painted can be seen.
inline void setUnusual(QPainter& painter) {
    painter.setPen(QPen(QColor(1, 2, 3), 4, Qt::DotLine, Qt::RoundCap, Qt::BevelJoin));
    painter.setBrush(QBrush(QColor(5, 6, 7), Qt::Dense3Pattern));
    QFont font(painter.font());
    font.setPixelSize(31);
    font.setItalic(true);
    painter.setFont(font);
    painter.setTransform(QTransform(1.5, 0, 0, 1.25, 3, 4));
    painter.setCompositionMode(QPainter::CompositionMode_Xor);
    painter.setRenderHints(painter.renderHints(), false);
    painter.setRenderHint(QPainter::LosslessImageRendering);
    painter.setOpacity(0.75);
}

} // namespace orvane::test
