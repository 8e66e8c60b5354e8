#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace orvane {

/// A line of text in the monospaced system font, with all of its spaces. As with DrawnText there is no
/// hinting, so that it has the same size on every display. Needs a QGuiApplication; any thread.
class MonospacedText {
public:
    /// `pixelSize` is that of the font, in the painter's units.
    MonospacedText(QString text, int pixelSize);

    /// In the painter's units: the advance of the line and its height.
    QSizeF size() const { return m_size; }

    void draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const;

private:
    QString m_text;
    QFont m_font;
    QSizeF m_size;
    qreal m_ascent = 0;
};

} // namespace orvane
