#include "OrvaneCore/marking/overlay/OverlayWindow.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QPalette>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// The same whether or not the window has the keyboard: where it differs, a widget is painted anew as a whole
/// with each change, which on a large display is the most work that there is.
QPalette steadyPalette() {
    QPalette palette;
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        const auto colorRole = static_cast<QPalette::ColorRole>(role);
        palette.setBrush(QPalette::Inactive, colorRole, palette.brush(QPalette::Active, colorRole));
    }
    return palette;
}

} // namespace

OverlayWindow::OverlayWindow(const OverlayDocument& document, Surfaces& surfaces, QScreen& screen,
                             const QImage& frozen, SurfaceKeyboard keyboard)
    : m_screen(&screen)
    , m_frozen(frozen)
    , m_view(new OverlayView(document, this)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    // On the other displays, which do not have the keyboard, as well.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setAttribute(Qt::WA_TranslucentBackground, m_frozen.isNull());
    setAttribute(Qt::WA_OpaquePaintEvent, !m_frozen.isNull());
    setPalette(steadyPalette());
    setWindowTitle(u"Orvane overlay"_s);
    setFocusProxy(m_view);
    m_view->setFocus();
    surfaces.dress(*this, SurfaceRole::overlay, keyboard, screen);
    coverScreen();
}

void OverlayWindow::coverScreen() {
    if (!m_screen)
        return;
    setGeometry(m_screen->geometry());
    m_view->setFrame(m_screen->geometry(), QGuiApplication::primaryScreen()->geometry().height(),
                     1 / m_screen->devicePixelRatio());
}

void OverlayWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& exposed : event->region()) {
        if (m_frozen.isNull()) {
            painter.fillRect(exposed, overlayDimming);
            continue;
        }
        const qreal scaleX = qreal(m_frozen.width()) / width();
        const qreal scaleY = qreal(m_frozen.height()) / height();
        painter.drawImage(QRectF(exposed), m_frozen,
                          QRectF(exposed.x() * scaleX, exposed.y() * scaleY, exposed.width() * scaleX,
                                 exposed.height() * scaleY));
    }
}

void OverlayWindow::resizeEvent(QResizeEvent* /*event*/) {
    m_view->setGeometry(rect());
}

} // namespace orvane
