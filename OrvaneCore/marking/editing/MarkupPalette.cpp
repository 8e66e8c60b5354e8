#include "OrvaneCore/marking/editing/MarkupPalette.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/marking/editing/MarkupGlyphs.h"
#include "OrvaneCore/surface/FirstMouseButton.h"
#include "OrvaneCore/surface/WidgetLook.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qreal paletteRadius = 14;
constexpr qreal buttonRadius = 7;
constexpr int buttonWidth = 30;
constexpr int swatchWidth = 26;
constexpr int spacing = 2;
constexpr int dividerGap = 6;
constexpr int gripWidth = 12;
/// What stays inside the parent.
constexpr int reachable = 32;

const std::array<QString, markup_colors::presets.size()> colorNames{u"Red"_s,   u"Orange"_s, u"Blue"_s,
                                                                    u"Green"_s, u"White"_s,  u"Black"_s};
const std::array<QString, markup_colors::strokePresets.size()> strokeNames{u"Thin"_s, u"Medium"_s,
                                                                           u"Thick"_s};

QPoint keptInside(const QPoint& corner, const QSize& size, const QRect& bounds) {
    const auto within = [](int at, int length, int space) {
        return std::max(reachable - length, std::min(at, space - reachable));
    };
    return {within(corner.x(), size.width(), bounds.width()),
            within(corner.y(), size.height(), bounds.height())};
}

} // namespace

MarkupPalette::MarkupPalette(MarkupStateStore& store,
                             const std::vector<std::pair<AnnotationTool, QString>>& tools, QWidget* parent)
    : QWidget(parent)
    , m_store(store) {
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::ArrowCursor);
    m_toolButtons.reserve(tools.size());
    for (const auto& [tool, title] : tools) {
        FirstMouseButton* button =
            addButton(title, [this, chosen = tool] { m_store.setCurrentTool(chosen); });
        button->setGlyph(toolGlyph(tool));
        m_toolButtons.emplace_back(tool, button);
    }
    m_colorButtons.reserve(markup_colors::presets.size());
    for (std::size_t i = 0; i < markup_colors::presets.size(); ++i) {
        const QRgb preset = markup_colors::presets[i];
        const QColor color = QColor::fromRgb(preset);
        FirstMouseButton* button = addButton(colorNames[i], [this, color] {
            m_store.setMarkupColor(color);
            applyToSelection([color](Annotation& annotation) { annotation.color = color; });
        });
        button->setSwatch(color);
        m_colorButtons.emplace_back(preset, button);
    }
    m_strokeButtons.reserve(markup_colors::strokePresets.size());
    for (std::size_t i = 0; i < markup_colors::strokePresets.size(); ++i) {
        const qreal width = markup_colors::strokePresets[i];
        FirstMouseButton* button = addButton(strokeNames[i], [this, width] {
            m_store.setMarkupStrokeWidth(width);
            applyToSelection([width](Annotation& annotation) { annotation.strokeWidth = width; });
        });
        button->setGlyph(strokeGlyph(width));
        m_strokeButtons.emplace_back(width, button);
    }
    arrange();
    refresh();
    m_subscription = store.observe([this] { refresh(); });
}

void MarkupPalette::setOnChange(std::function<void()> onChange) {
    m_onChange = std::move(onChange);
}

void MarkupPalette::setDraggable(bool draggable) {
    m_isDraggable = draggable;
    m_dragStartInWindow.reset();
    arrange();
}

void MarkupPalette::refresh() {
    for (const auto& [tool, button] : m_toolButtons)
        button->setChecked(tool == m_store.currentTool());
    for (const auto& [color, button] : m_colorButtons)
        button->setChecked(color == m_store.markupColor().rgba());
    for (const auto& [width, button] : m_strokeButtons)
        button->setChecked(qFuzzyCompare(width, m_store.markupStrokeWidth()));
}

void MarkupPalette::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    look::drawPlate(painter, rect(), paletteRadius);
    for (const QRect& divider : m_dividers)
        painter.fillRect(divider, gray(1, 0.2F));
    if (!m_isDraggable)
        return;
    const PainterState state(painter);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gray(1, 0.4F));
    for (const qreal x : {9.0, 13.5}) {
        for (const qreal y : {-5.0, 0.0, 5.0})
            painter.drawEllipse(QPointF(x, height() / 2.0 + y), 1.25, 1.25);
    }
}

void MarkupPalette::mousePressEvent(QMouseEvent* event) {
    if (!m_isDraggable || event->button() != Qt::LeftButton)
        return;
    m_dragStartInWindow = event->scenePosition();
    m_originAtDragStart = pos();
}

void MarkupPalette::mouseMoveEvent(QMouseEvent* event) {
    if (!m_dragStartInWindow || !parentWidget())
        return;
    const QPointF way = event->scenePosition() - *m_dragStartInWindow;
    move(keptInside(m_originAtDragStart + way.toPoint(), size(), parentWidget()->rect()));
}

void MarkupPalette::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        m_dragStartInWindow.reset();
}

FirstMouseButton* MarkupPalette::addButton(const QString& title, const std::function<void()>& act) {
    auto* button = new FirstMouseButton(title, this);
    button->setToolTip(title);
    button->setCheckable(true);
    button->setCornerRadius(buttonRadius);
    connect(button, &QAbstractButton::clicked, this, [this, act] {
        act();
        if (m_onChange)
            m_onChange();
    });
    return button;
}

void MarkupPalette::applyToSelection(const std::function<void(Annotation&)>& change) {
    const std::optional<QUuid> selected = m_store.selectedAnnotationId();
    std::vector<Annotation> annotations = m_store.annotations();
    const auto found =
        std::find_if(annotations.begin(), annotations.end(),
                     [&selected](const Annotation& candidate) { return candidate.id == selected; });
    if (found == annotations.end() || !m_store.canChange(*found))
        return;
    change(*found);
    m_store.setAnnotations(std::move(annotations));
}

void MarkupPalette::arrange() {
    int x = look::stripPadding + (m_isDraggable ? gripWidth : 0);
    m_dividers.clear();
    const auto place = [&x](const auto& buttons, int width) {
        for (const auto& [value, button] : buttons) {
            button->setGeometry(x, look::stripPadding, width, look::buttonHeight);
            x += width + spacing;
        }
    };
    const auto divide = [this, &x] {
        x += dividerGap - spacing;
        m_dividers.emplace_back(x, (look::stripHeight - look::dividerHeight) / 2, look::dividerWidth,
                                look::dividerHeight);
        x += look::dividerWidth + dividerGap;
    };
    place(m_toolButtons, buttonWidth);
    divide();
    place(m_colorButtons, swatchWidth);
    divide();
    place(m_strokeButtons, buttonWidth);
    setFixedSize(x - spacing + look::stripPadding, look::stripHeight);
    update();
}

} // namespace orvane
