#pragma once

#include <QFont>
#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <stdexcept>

namespace orvane::test {

/// Text that was drawn, and the smallest box around its pixels.
struct DrawnText {
    QString text;
    QRect ink;
};

/// The box of the pixels within `area` that differ from the pixel in its top-left corner.
inline QRect inkIn(const QImage& picture, const QRect& area) {
    QRect ink;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (picture.pixel(x, y) != picture.pixel(area.topLeft()))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// Fails where the family is not installed, because another font would be drawn in its place.
inline QFont fontOf(const QString& family, int pixelSize) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    if (!QFontInfo(font).family().startsWith(family))
        throw std::runtime_error("the font " + family.toStdString() + " is not installed");
    return font;
}

inline QFont interfaceFont(int pixelSize = 13) {
    return fontOf(QStringLiteral("DejaVu Sans"), pixelSize);
}

/// Draws a line with its top-left corner at `corner`, and tells where its ink is.
inline DrawnText drawLine(QImage& picture, const QPoint& corner, const QString& text, const QColor& ink,
                          const QFont& font) {
    const QFontMetrics metrics(font);
    QPainter painter(&picture);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(corner.x(), corner.y() + metrics.ascent(), text);
    painter.end();
    const QRect area(corner - QPoint(2, 1), QSize(metrics.horizontalAdvance(text) + 4, metrics.height() + 2));
    return {text, inkIn(picture, area & picture.rect())};
}

/// A picture of one line with a margin of `margin` pixels.
inline QImage pictureOf(const QString& text, const QColor& ink, const QColor& background, const QFont& font,
                        int margin = 4) {
    const QFontMetrics metrics(font);
    QImage picture(metrics.horizontalAdvance(text) + 2 * margin, metrics.height() + 2 * margin,
                   QImage::Format_RGB32);
    picture.fill(background);
    drawLine(picture, {margin, margin}, text, ink, font);
    return picture;
}

} // namespace orvane::test
