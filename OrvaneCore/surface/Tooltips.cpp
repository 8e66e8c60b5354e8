#include "OrvaneCore/surface/Tooltips.h"

#include "OrvaneCore/surface/TooltipBubble.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace orvane {

Tooltips::Tooltips(Surfaces& surfaces)
    : m_surfaces(surfaces) {
    qApp->installEventFilter(this);
}

Tooltips::~Tooltips() = default;

bool Tooltips::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip:
        if (auto* widget = qobject_cast<QWidget*>(watched); widget && !widget->toolTip().isEmpty()) {
            show(*widget);
            // The next one comes sooner.
            event->accept();
            return true;
        }
        break;
    case QEvent::Leave:
    case QEvent::Hide:
    case QEvent::Destroy:
    case QEvent::ToolTipChange:
        if (watched == m_widget)
            hide();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
        hide();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void Tooltips::show(QWidget& widget) {
    if (m_bubble && m_widget == &widget)
        return;
    hide();
    m_widget = &widget;
    const QRect around(widget.mapToGlobal(QPoint(0, 0)), widget.size());
    m_bubble.reset(new TooltipBubble(widget.toolTip(), around, *widget.screen(), m_surfaces));
    m_bubble->show();
}

void Tooltips::hide() {
    m_widget.clear();
    if (const auto bubble = std::exchange(m_bubble, nullptr))
        bubble->hide();
}

} // namespace orvane
