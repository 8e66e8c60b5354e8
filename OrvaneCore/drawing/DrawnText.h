#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QSizeF>
#include <QString>

#include <memory>
#include <optional>

class QPainter;
class QTextLayout;

namespace orvane {

/// The font of all that the program draws: the same on every desktop and in every process, without hinting.
QFont systemFont(int pixelSize, QFont::Weight weight = QFont::Normal);

/// The same for text whose characters are all equally wide.
QFont monospacedFont(int pixelSize);

/// A piece of text in the system font or another one, measured and drawn by the same layout. It is laid out
/// once at scale 1 without hinting, so that its size at every scale is exactly in proportion and a plate made
/// for it fits. Newlines break lines, and so does the end of the room that a text is given: between words, or
/// within those that are wider. Any script. Needs a QGuiApplication; any thread.
class DrawnText {
public:
    /// `pixelSize` is that of the font at scale 1; `scale` is finite and positive.
    DrawnText(const QString& text, int pixelSize, QFont::Weight weight, qreal scale);
    /// `room` is what the text may take, at scale 1; as much as it likes without one. Lines that would leave
    /// it are left out, all but the first, and the last one then ends with an ellipsis.
    DrawnText(const QString& text, const QFont& font, qreal scale,
              const std::optional<QSizeF>& room = std::nullopt);
    ~DrawnText();
    DrawnText(const DrawnText&) = delete;
    DrawnText& operator=(const DrawnText&) = delete;

    /// The extent in units of the drawing: the widest line, and the height of all lines.
    QSizeF size() const { return m_size * m_scale; }

    void draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const;
    void drawCentered(QPainter& painter, const QPointF& center, const QColor& color) const;

private:
    /// Gives how many lines there are.
    int layOut(const QString& text, const std::optional<QSizeF>& room, int mostLines);
    int linesWithin(const std::optional<QSizeF>& room) const;

    std::unique_ptr<QTextLayout> m_layout;
    qreal m_scale;
    QSizeF m_size;
};

/// The size of a text that is drawn at scale 1, in a system or a monospaced font as above. It is remembered,
/// so that asking for the same text again costs no layout. Needs a QGuiApplication; any thread.
QSizeF drawnTextSize(const QString& text, const QFont& font,
                     const std::optional<QSizeF>& room = std::nullopt);

/// What a text that is too long for its place is wrapped to where there is room: lines that are easily read.
constexpr qreal readableTextWidth = 480;

/// The room for a text that must not take more than `most`, at scale 1: nothing where it takes less, and
/// otherwise one of `preferredWidth` where that is high enough for it. Needs a QGuiApplication; any thread.
std::optional<QSizeF> roomForText(const QString& text, const QFont& font, const QSizeF& most,
                                  qreal preferredWidth);

} // namespace orvane
