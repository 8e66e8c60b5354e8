#include "OrvaneCore/marking/overlay/OverlayWindow.h"

#include "OrvaneCore/platform/DesktopKeyboard.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QPalette>
#include <QWindow>

#include <chrono>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto keyboardRetry = 20ms;
constexpr int keyboardTries = 100;

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

OverlayWindow::OverlayWindow(const OverlayDocument& document, QScreen& screen, const QImage& frozen)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint)
    , m_keyboard(document.keyboard)
    , m_screen(&screen)
    , m_frozen(frozen)
    , m_view(new OverlayView(document, this)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_TranslucentBackground, m_frozen.isNull());
    setAttribute(Qt::WA_OpaquePaintEvent, !m_frozen.isNull());
    setPalette(steadyPalette());
    setWindowTitle(u"Orvane overlay"_s);
    setFocusProxy(m_view);
    connect(&m_keyboardTimer, &QTimer::timeout, this, [this] {
        if (isActiveWindow() || ++m_keyboardTries > keyboardTries)
            m_keyboardTimer.stop();
        else
            m_keyboard.give(winId());
    });
    winId();
    windowHandle()->setScreen(&screen);
    windowHandle()->installEventFilter(this);
    coverScreen();
}

void OverlayWindow::coverScreen() {
    if (!m_screen)
        return;
    setGeometry(m_screen->geometry());
    m_view->setFrame(m_screen->geometry(), QGuiApplication::primaryScreen()->geometry().height());
}

void OverlayWindow::takeKeyboard() {
    m_view->setFocus();
    m_keyboardTries = 0;
    m_keyboardTimer.start(keyboardRetry);
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

bool OverlayWindow::eventFilter(QObject* watched, QEvent* event) {
    // Before it is painted for the first time, so that the first key finds it there. Later, wherever in the
    // window a press lands, it brings back a keyboard that was lost.
    const bool isShowing = event->type() == QEvent::Expose && m_keyboardTimer.isActive();
    if ((isShowing || event->type() == QEvent::MouseButtonPress) && !isActiveWindow())
        m_keyboard.give(winId());
    return QWidget::eventFilter(watched, event);
}

} // namespace orvane
