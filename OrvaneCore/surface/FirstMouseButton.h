#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPainterPath>
#include <QString>

#include <optional>

namespace orvane {

/// A button of the overlay. It paints itself, acts on the first click, also in a window that was not active,
/// and never takes the keyboard: keys stay with whoever has them. (A parent that takes the focus by a click
/// would take it for its buttons as well; the overlay's view takes it by its own rules only.)
///
/// It is checkable for those that show something that is on or off; a click does not change that by itself,
/// what is shown is what its owner sets. Main thread; sizes are in points.
class FirstMouseButton : public QAbstractButton {
public:
    /// The title is also the name for assistive technology.
    FirstMouseButton(const QString& title, QWidget* parent);

    const QString& title() const { return m_title; }
    void setTitle(const QString& title);

    /// Shown in place of the title: a path to fill, around the middle of the button.
    void setGlyph(const QPainterPath& glyph);
    /// Shown in place of the title.
    void setSwatch(const QColor& color);

    /// The one button of several that stands out.
    void setProminent(bool prominent);
    /// Whether it shows that there is nothing for it to do now. It can be pressed all the same.
    void setDimmed(bool dimmed);
    bool isDimmed() const { return m_isDimmed; }
    void setCornerRadius(qreal radius);
    /// What is kept free on both sides of the title. A title that does not fit is shortened.
    void setPadding(int padding);

    /// The width that the whole title takes, without padding.
    int titleWidth() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}

private:
    QFont titleFont() const;
    void drawGround(QPainter& painter) const;
    void drawTitle(QPainter& painter) const;
    void drawSwatch(QPainter& painter) const;

    QString m_title;
    QPainterPath m_glyph;
    std::optional<QColor> m_swatch;
    bool m_isProminent = false;
    bool m_isDimmed = false;
    qreal m_cornerRadius;
    int m_padding;
};

} // namespace orvane
