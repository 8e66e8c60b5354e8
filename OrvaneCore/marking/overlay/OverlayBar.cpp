#include "OrvaneCore/marking/overlay/OverlayBar.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/marking/overlay/OverlayBarLayout.h"
#include "OrvaneCore/surface/FirstMouseButton.h"
#include "OrvaneCore/surface/WidgetLook.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qreal barRadius = 22;
constexpr int iconSide = 18;
/// On both sides of the hint and its icon, which would touch the buttons beside them.
constexpr int hintPadding = 5;

} // namespace

/// How to choose among applications, and which one is chosen.
class OverlayBar::SendHintLabel : public QWidget {
public:
    explicit SendHintLabel(QWidget* parent)
        : QWidget(parent) {
        setObjectName(u"sendHintLabel"_s);
    }

    void setContent(const QString& text, const QIcon& icon) {
        m_text = text;
        m_icon = icon;
        setAccessibleName(text);
        setVisible(!text.isEmpty());
        update();
    }

    int contentWidth() const {
        const QFontMetricsF metrics(systemFont(look::textPixelSize));
        return static_cast<int>(std::ceil(metrics.horizontalAdvance(m_text))) + hintPadding + iconWidth();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const PainterState state(painter);
        const QFontMetricsF metrics(systemFont(look::textPixelSize));
        painter.setFont(systemFont(look::textPixelSize));
        painter.setPen(gray(1, 0.6F));
        const int room = width() - hintPadding - iconWidth();
        painter.drawText(QPointF(hintPadding, (height() + metrics.capHeight()) / 2),
                         width() >= contentWidth() ? m_text
                                                   : metrics.elidedText(m_text, Qt::ElideRight, room));
        m_icon.paint(&painter, QRect(width() - iconWidth(), (height() - iconSide) / 2, iconSide, iconSide));
    }

private:
    int iconWidth() const { return m_icon.isNull() ? 0 : iconSide + hintPadding; }

    QString m_text;
    QIcon m_icon;
};

OverlayBar::OverlayBar(MarkerManager& manager, const std::function<void(OverlayCommand)>& perform,
                       std::function<QIcon(const SendTarget&)> targetIcon, QWidget* parent)
    : QWidget(parent)
    , m_manager(manager)
    , m_targetIcon(std::move(targetIcon))
    , m_cancelButton(addButton(u"cancelButton", OverlayCommand::cancel, overlay_bar_tips::cancel(), perform))
    , m_imageButton(
          addButton(u"imageButton", OverlayCommand::toggleImage, overlay_bar_tips::image(), perform))
    , m_markupButton(
          addButton(u"markupButton", OverlayCommand::toggleMarkup, overlay_bar_tips::markup(), perform))
    , m_spotlightButton(addButton(u"spotlightButton", OverlayCommand::toggleSpotlight,
                                  overlay_bar_tips::spotlight(), perform))
    , m_ocrButton(addButton(u"ocrButton", OverlayCommand::toggleOcr, overlay_bar_tips::ocr(), perform))
    , m_sendButton(addButton(u"sendButton", OverlayCommand::toggleSend, overlay_bar_tips::send(), perform))
    , m_sendHintLabel(new SendHintLabel(this))
    , m_submitButton(
          addButton(u"submitButton", OverlayCommand::submit, overlay_bar_tips::submit(), perform)) {
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::ArrowCursor);
    for (FirstMouseButton* toggle :
         {m_imageButton, m_markupButton, m_spotlightButton, m_ocrButton, m_sendButton})
        toggle->setCheckable(true);
    m_submitButton->setProminent(true);
    m_subscription = manager.observe([this] { refresh(); });
    showTitles();
    dimSubmit();
}

void OverlayBar::place(const QRect& viewRect) {
    m_viewRect = viewRect;
    arrange();
}

void OverlayBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    look::drawPlate(painter, rect(), barRadius);
    painter.fillRect(m_divider, gray(1, 0.2F));
}

FirstMouseButton* OverlayBar::addButton(const char16_t* name, OverlayCommand command, const QString& tip,
                                        const std::function<void(OverlayCommand)>& perform) {
    auto* button = new FirstMouseButton(QString(), this);
    button->setObjectName(QString::fromUtf16(name));
    button->setToolTip(tip);
    button->setAccessibleDescription(tip);
    // A copy of its own: the bar may be gone before the call is over.
    connect(button, &QAbstractButton::clicked, this, [perform, command] { perform(command); });
    return button;
}

void OverlayBar::refresh() {
    dimSubmit();
    // The manager also tells of every step of a drag.
    const bool isIconCurrent =
        !m_manager.modes().directSend || !m_manager.currentSendTarget() ||
        (m_cachedTargetIcon && m_cachedTargetIcon->first == m_manager.currentSendTarget()->bundleID);
    if (isIconCurrent &&
        m_texts == overlayBarTexts(m_manager.modes(), m_manager.markupMode(), m_manager.currentSendTarget()))
        return;
    showTitles();
    arrange();
}

void OverlayBar::showTitles() {
    const MarkupModes& modes = m_manager.modes();
    m_texts = overlayBarTexts(modes, m_manager.markupMode(), m_manager.currentSendTarget());
    m_cancelButton->setTitle(m_texts.cancel);
    m_imageButton->setTitle(m_texts.image);
    m_imageButton->setChecked(modes.image);
    m_markupButton->setTitle(m_texts.markup);
    m_markupButton->setChecked(m_manager.markupMode());
    m_spotlightButton->setTitle(m_texts.spotlight);
    m_spotlightButton->setChecked(modes.spotlight);
    m_ocrButton->setTitle(m_texts.ocr);
    m_ocrButton->setChecked(modes.ocr);
    m_sendButton->setTitle(m_texts.send);
    m_sendButton->setChecked(modes.directSend);
    m_sendHintLabel->setContent(m_texts.sendHint,
                                modes.directSend ? iconOf(m_manager.currentSendTarget()) : QIcon());
    m_submitButton->setTitle(m_texts.submit);
}

void OverlayBar::arrange() {
    using Kind = OverlayBarPart::Kind;
    struct Place {
        QWidget* widget;
        OverlayBarPart part;
    };
    std::vector<Place> places;
    places.reserve(9);
    const auto add = [&places](FirstMouseButton* button) {
        places.push_back({button, {Kind::button, button->titleWidth()}});
    };
    add(m_cancelButton);
    places.push_back({nullptr, {Kind::divider, 0}});
    for (FirstMouseButton* button :
         {m_imageButton, m_markupButton, m_spotlightButton, m_ocrButton, m_sendButton})
        add(button);
    if (!m_texts.sendHint.isEmpty())
        places.push_back({m_sendHintLabel, {Kind::label, m_sendHintLabel->contentWidth()}});
    add(m_submitButton);

    std::vector<OverlayBarPart> parts;
    parts.reserve(places.size());
    for (const Place& place : places)
        parts.push_back(place.part);
    const OverlayBarLayout layout = overlayBarLayout(parts, m_viewRect);
    setGeometry(layout.bar);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (!places[i].widget) {
            m_divider = layout.parts[i];
        } else {
            places[i].widget->setGeometry(layout.parts[i]);
        }
    }
    for (FirstMouseButton* button : {m_cancelButton, m_imageButton, m_markupButton, m_spotlightButton,
                                     m_ocrButton, m_sendButton, m_submitButton})
        button->setPadding(layout.padding);
    update();
}

void OverlayBar::dimSubmit() {
    // Shapes alone are no submission.
    m_submitButton->setDimmed(m_manager.markers().empty());
}

QIcon OverlayBar::iconOf(const std::optional<SendTarget>& target) {
    if (!target)
        return {};
    if (!m_cachedTargetIcon || m_cachedTargetIcon->first != target->bundleID)
        m_cachedTargetIcon = {target->bundleID, m_targetIcon(*target)};
    return m_cachedTargetIcon->second;
}

} // namespace orvane
