#include "Orvane/PinButton.h"

#include "Orvane/StatusIcon.h"
#include "OrvaneCore/platform/Surfaces.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr int edgeGap = 12;
// On several displays Qt does not know what panels take of each, and a bar at the top is what most desktops
// have there.
constexpr int likelyBarHeight = 40;
constexpr qreal cornerRadius = 8;
constexpr int glyphSide = 18;
constexpr QRgb background = 0xff2b2d31;

/// The button's own idea of where it is can be wrong after a window manager has put it into a frame.
QPoint cornerAt(const QMouseEvent& event) {
    return (event.globalPosition() - event.position()).toPoint();
}

} // namespace

PinButton::PinButton(Surfaces& surfaces, std::function<void(const QPoint&)> pressed)
    : m_pressed(std::move(pressed)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    // It never has the keyboard.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setFocusPolicy(Qt::NoFocus);
    setFixedSize(side, side);
    QPainterPath outline;
    outline.addRoundedRect(rect(), cornerRadius, cornerRadius);
    // A mask needs no compositor.
    setMask(outline.toFillPolygon().toPolygon());
    surfaces.dress(*this, SurfaceRole::panel, SurfaceKeyboard::never, *screen());
    setRecording(false);
    watchScreens();
    place();
}

void PinButton::setRecording(bool isRecording) {
    m_isRecording = isRecording;
    const QString description = status_icon::description(isRecording);
    setWindowTitle(description);
    setAccessibleName(description);
    setToolTip(description);
    update();
}

QRect PinButton::home(const QRect& bounds, const QRect& available) {
    const int top = available == bounds ? likelyBarHeight : edgeGap;
    return {available.right() + 1 - edgeGap - side, available.top() + top, side, side};
}

QRect PinButton::inside(const QRect& place, const QRect& available) {
    const auto within = [](int at, int length, int from, int space) {
        return std::max(from, std::min(at, from + space - length));
    };
    return {within(place.x(), place.width(), available.x(), available.width()),
            within(place.y(), place.height(), available.y(), available.height()), place.width(),
            place.height()};
}

void PinButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor::fromRgba(background));
    QRectF square(0, 0, glyphSide, glyphSide);
    square.moveCenter(QRectF(rect()).center());
    status_icon::draw(painter, square, m_isRecording);
}

void PinButton::mousePressEvent(QMouseEvent* event) {
    m_pressPlace = event->globalPosition().toPoint();
    m_cornerAtPress = cornerAt(*event);
    m_isDragging = false;
}

void PinButton::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressPlace)
        return;
    const QPoint way = event->globalPosition().toPoint() - *m_pressPlace;
    m_isDragging = m_isDragging || way.manhattanLength() >= QApplication::startDragDistance();
    if (m_isDragging)
        move(m_cornerAtPress + way);
}

void PinButton::mouseReleaseEvent(QMouseEvent* event) {
    const std::optional<QPoint> pressPlace = std::exchange(m_pressPlace, std::nullopt);
    if (!pressPlace)
        return;
    if (m_isDragging) {
        m_chosenCorner = m_cornerAtPress + event->globalPosition().toPoint() - *pressPlace;
        place();
    } else {
        m_pressed(m_cornerAtPress + QPoint(0, height()));
    }
}

void PinButton::watchScreens() {
    const auto watch = [this](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, [this] { place(); });
        connect(screen, &QScreen::availableGeometryChanged, this, [this] { place(); });
    };
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
    connect(qApp, &QGuiApplication::screenAdded, this, [this, watch](QScreen* screen) {
        watch(screen);
        place();
    });
    connect(qApp, &QGuiApplication::screenRemoved, this, [this] { place(); });
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, [this] { place(); });
}

void PinButton::place() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (!primary)
        return;
    if (!m_chosenCorner) {
        move(home(primary->geometry(), primary->availableGeometry()).topLeft());
        return;
    }
    const QRect chosen(*m_chosenCorner, size());
    const QScreen* screen = QGuiApplication::screenAt(chosen.center());
    move(inside(chosen, (screen ? screen : primary)->availableGeometry()).topLeft());
}

} // namespace orvane
