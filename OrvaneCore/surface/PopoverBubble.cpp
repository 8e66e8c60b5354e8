#include "OrvaneCore/surface/PopoverBubble.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/surface/WidgetLook.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <utility>

namespace orvane {

namespace {

/// Around the editor.
constexpr int padding = 10;

QPainterPath outlineOf(const PopoverPlacement& placement) {
    QPainterPath outline;
    outline.addRoundedRect(placement.bubble, PopoverPlacement::cornerRadius, PopoverPlacement::cornerRadius);
    const bool isAbove = placement.side == PopoverPlacement::Side::above;
    const qreal base = isAbove ? placement.tip.y() - PopoverPlacement::arrowHeight
                               : placement.tip.y() + PopoverPlacement::arrowHeight;
    // Begun a little inside, or there would be a seam.
    const qreal root = base + (isAbove ? -1 : 1);
    QPainterPath arrow;
    arrow.addPolygon(QPolygonF{{placement.tip.x() - qreal(PopoverPlacement::arrowHalfWidth), base},
                               QPointF(placement.tip),
                               {placement.tip.x() + qreal(PopoverPlacement::arrowHalfWidth), base},
                               {placement.tip.x() + qreal(PopoverPlacement::arrowHalfWidth), root},
                               {placement.tip.x() - qreal(PopoverPlacement::arrowHalfWidth), root}});
    arrow.closeSubpath();
    return outline | arrow;
}

} // namespace

PopoverBubble::PopoverBubble(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::ArrowCursor);
    // A click beside the text does not take the keyboard from it.
    setFocusPolicy(Qt::ClickFocus);
    hide();
}

void PopoverBubble::setEditor(QWidget* editor, const QSize& editorSize) {
    m_editor = editor;
    m_editorSize = editorSize;
    setFocusProxy(editor);
    editor->installEventFilter(this);
    // A menu would be a window of its own.
    editor->setContextMenuPolicy(Qt::NoContextMenu);
    editor->setFont(systemFont(look::textPixelSize));
    QPalette colors = editor->palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Window, Qt::transparent);
    colors.setColor(QPalette::Text, Qt::white);
    colors.setColor(QPalette::PlaceholderText, gray(1, 0.45F));
    colors.setColor(QPalette::Highlight, look::accent());
    colors.setColor(QPalette::HighlightedText, Qt::white);
    editor->setPalette(colors);
}

void PopoverBubble::openAt(const QPointF& viewPoint) {
    const QSize size = m_editorSize + QSize(2 * padding, 2 * padding);
    m_placement = popoverPlacement(size, viewPoint, parentWidget()->rect());
    setGeometry(m_placement.frame());
    m_editor->setGeometry(
        QRect(m_placement.bubble.topLeft() - pos() + QPoint(padding, padding), m_editorSize));
    m_isOpen = true;
    m_wasCancelled = false;
    show();
    raise();
    m_editor->setFocus(Qt::PopupFocusReason);
    selectAll();
}

void PopoverBubble::closePopover() {
    if (!m_isOpen)
        return;
    finishComposing();
    m_isOpen = false;
    // Hiding would pass the keyboard on to whatever comes next.
    if (m_editor->hasFocus())
        parentWidget()->setFocus(Qt::PopupFocusReason);
    hide();
    if (const std::function<void()> onClose = std::exchange(m_onClose, nullptr))
        onClose();
}

void PopoverBubble::setOnSubmit(std::function<void(const QString&)> onSubmit) {
    m_onSubmit = std::move(onSubmit);
}

void PopoverBubble::setOnClose(std::function<void()> onClose) {
    m_onClose = std::move(onClose);
}

bool PopoverBubble::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::InputMethod)
        m_preedit = static_cast<const QInputMethodEvent*>(event)->preeditString();
    if (event->type() == QEvent::KeyPress && handleKey(*static_cast<const QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void PopoverBubble::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.translate(-pos());
    look::drawPlate(painter, outlineOf(m_placement));
}

void PopoverBubble::keyPressEvent(QKeyEvent* event) {
    event->accept();
}

void PopoverBubble::keyReleaseEvent(QKeyEvent* event) {
    event->accept();
}

bool PopoverBubble::focusNextPrevChild(bool /*next*/) {
    return false;
}

bool PopoverBubble::handleKey(const QKeyEvent& event) {
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    const bool isEscape = event.key() == Qt::Key_Escape;
    // Tab would give the keyboard away.
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab)
        return true;
    if (!isReturn && !isEscape)
        return false;
    if (!m_preedit.isEmpty())
        return true;
    if (isReturn && isLineBreak(event))
        return false;
    if (isReturn && m_isOpen && m_onSubmit)
        m_onSubmit(text());
    m_wasCancelled = m_wasCancelled || (isEscape && m_isOpen);
    closePopover();
    return true;
}

void PopoverBubble::finishComposing() {
    QGuiApplication::inputMethod()->commit();
    if (m_preedit.isEmpty())
        return;
    // No input method took it upon itself.
    QInputMethodEvent commit;
    commit.setCommitString(m_preedit);
    QCoreApplication::sendEvent(m_editor, &commit);
}

} // namespace orvane
