#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

class QScreen;

namespace orvane {

class Surfaces;

/// The window of a tool tip: a plate with a text beside the widget that it explains. It takes neither the
/// keyboard nor any input. Main thread.
class TooltipBubble : public QWidget {
public:
    /// For a widget that covers that rectangle, in global points. Opaque where windows cannot be translucent
    /// now.
    TooltipBubble(const QString& text, const QRect& around, QScreen& screen, Surfaces& surfaces);

    /// Where a bubble of that size is: above the widget, below it where there is no room, and always on the
    /// screen, or at its left and top ends where it is larger than the screen. In global points. Pure.
    static QRect place(const QSize& size, const QRect& around, const QRect& screen);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    bool m_isTranslucent;
};

} // namespace orvane
