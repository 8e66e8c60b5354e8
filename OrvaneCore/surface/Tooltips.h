#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class QWidget;

namespace orvane {

class Surfaces;
class TooltipBubble;

/// Shows the tool tips (QWidget::setToolTip) of all widgets of the application as bubbles that look like the
/// rest of it, in place of the toolkit's. A bubble goes when the pointer leaves its widget, when anything is
/// pressed and when the widget goes. One for the application, which outlives it. Main thread.
class Tooltips final : public QObject {
public:
    /// `surfaces` outlives this object.
    explicit Tooltips(Surfaces& surfaces);
    ~Tooltips() override;
    Tooltips(const Tooltips&) = delete;
    Tooltips& operator=(const Tooltips&) = delete;

    /// Null while none is shown.
    const TooltipBubble* shown() const { return m_bubble.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// It may be in one of its events.
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };

    void show(QWidget& widget);
    void hide();

    Surfaces& m_surfaces;
    /// Whose tool tip is shown.
    QPointer<QWidget> m_widget;
    std::unique_ptr<TooltipBubble, DeleteLater> m_bubble;
};

} // namespace orvane
