#include "OrvaneCore/surface/ToastPanel.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/SoftShadow.h"
#include "OrvaneCore/platform/Surfaces.h"
#include "OrvaneCore/surface/SymbolGlyphs.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <cmath>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int fadeMs = 250;
constexpr int shadowMargin = 32;
constexpr qreal shadowBlur = 20;
constexpr QPointF shadowOffset(0, 6);

/// Each line cut where it would be wider than there is room for.
QString fitted(const QString& text, int pixelSize, QFont::Weight weight, qreal width) {
    const DrawnText whole(text, pixelSize, weight, 1);
    if (whole.size().width() <= width)
        return text;
    const QFontMetricsF metrics(systemFont(pixelSize, weight));
    QStringList lines = text.split(u'\n');
    for (QString& line : lines)
        line = metrics.elidedText(line, Qt::ElideRight, std::floor(width));
    return lines.join(u'\n');
}

} // namespace

ToastPanel::ToastPanel(const ToastMessage& message, QScreen& screen, Surfaces& surfaces,
                       std::function<void(ToastPanel*)> closed)
    : m_icon(message.icon && !symbolPath(*message.icon).isEmpty() ? *message.icon : QString())
    , m_isTranslucent(surfaces.canBeTranslucent())
    , m_closed(std::move(closed))
    , m_margin(m_isTranslucent ? shadowMargin : 0) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_TranslucentBackground, m_isTranslucent);
    setAccessibleName(message.title);
    setWindowTitle(message.title);

    const QRect available = screen.availableGeometry();
    const bool hasIcon = !m_icon.isEmpty();
    const qreal width = toast::widestText(hasIcon, available);
    const auto text = [width](const QString& whole, int pixelSize, QFont::Weight weight) {
        return std::make_unique<DrawnText>(fitted(whole, pixelSize, weight, width), pixelSize, weight, 1);
    };
    m_title = text(message.title, toast::titlePixelSize, QFont::DemiBold);
    ToastContent content{.title = m_title->size(), .subtitle = {}, .hasIcon = hasIcon};
    if (message.subtitle && !message.subtitle->isEmpty()) {
        m_subtitle = text(*message.subtitle, toast::subtitlePixelSize, QFont::Normal);
        content.subtitle = m_subtitle->size();
        setAccessibleDescription(*message.subtitle);
    }
    m_layout = toast::layout(content, available);
    setGeometry(m_layout.frame.adjusted(-m_margin, -m_margin, m_margin, m_margin));
    if (!m_isTranslucent) {
        QPainterPath outline;
        outline.addRoundedRect(rect(), toast::cornerRadius, toast::cornerRadius);
        setMask(outline.toFillPolygon().toPolygon());
    }
    surfaces.dress(*this, SurfaceRole::toast, SurfaceKeyboard::never, screen);

    m_dismissTimer.setSingleShot(true);
    connect(&m_dismissTimer, &QTimer::timeout, this, [this] {
        if (m_isTranslucent)
            m_fadingPicture = grab();
        m_fade.start();
    });
    m_fade.setDuration(fadeMs);
    m_fade.setStartValue(1.0);
    m_fade.setEndValue(0.0);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&m_fade, &QVariantAnimation::finished, this, [this] {
        close();
        m_closed(this);
    });
}

ToastPanel::~ToastPanel() = default;

void ToastPanel::showFor(std::chrono::milliseconds duration) {
    show();
    m_dismissTimer.start(duration);
}

void ToastPanel::setHeldBack(bool isHeldBack) {
    if (isHeldBack == m_timeLeft.has_value())
        return;
    if (!isHeldBack) {
        showFor(*std::exchange(m_timeLeft, std::nullopt));
    } else if (m_dismissTimer.isActive()) {
        m_timeLeft = m_dismissTimer.remainingTimeAsDuration();
        m_dismissTimer.stop();
        hide();
    } else {
        // Its end is told as ever, and by then the screen is clear of it.
        hide();
        m_fade.setCurrentTime(m_fade.totalDuration());
    }
}

void ToastPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (m_fadingPicture.isNull()) {
        drawToast(painter);
    } else {
        painter.setOpacity(m_fade.currentValue().toReal());
        painter.drawPixmap(0, 0, m_fadingPicture);
    }
}

void ToastPanel::drawToast(QPainter& painter) const {
    const PainterState state(painter);
    const QRectF frame(QPointF(m_margin, m_margin), m_layout.frame.size());
    QPainterPath shape;
    shape.addRoundedRect(frame, toast::cornerRadius, toast::cornerRadius);
    if (m_isTranslucent) {
        // A shadow that went on below the translucent plate would make it darker than it is to be.
        painter.save();
        QPainterPath around;
        around.addRect(rect());
        painter.setClipPath(around - shape);
        drawSoftShadow(painter, shape, gray(0, 0.35F), shadowBlur, shadowOffset);
        painter.restore();
        painter.fillPath(shape, gray(0.12F, 0.9F));
    } else {
        painter.fillRect(rect(), gray(0.12F));
    }
    QPainterPath hairline;
    hairline.addRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), toast::cornerRadius - 0.5,
                            toast::cornerRadius - 0.5);
    painter.strokePath(hairline, QPen(gray(0.25F, 0.4F), 1));

    painter.translate(m_margin, m_margin);
    if (!m_icon.isEmpty())
        drawSymbol(painter, m_icon, m_layout.icon, gray(1));
    m_title->draw(painter, m_layout.title, gray(1));
    if (m_subtitle)
        m_subtitle->draw(painter, m_layout.subtitle, gray(0.6F));
}

} // namespace orvane
