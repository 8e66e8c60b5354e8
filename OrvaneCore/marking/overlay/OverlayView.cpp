#include "OrvaneCore/marking/overlay/OverlayView.h"

#include "OrvaneCore/marking/editing/MarkupPalette.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/MarkerPopover.h"
#include "OrvaneCore/marking/overlay/OverlayBar.h"
#include "OrvaneCore/marking/overlay/OverlayCommands.h"
#include "OrvaneCore/marking/overlay/OverlayDamage.h"
#include "OrvaneCore/marking/overlay/OverlayKeys.h"
#include "OrvaneCore/marking/overlay/OverlayPainter.h"
#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/surface/RepaintRegion.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int paletteGap = 16;

/// Pictures have no place among marks on a screen that is a picture itself.
std::vector<std::pair<AnnotationTool, QString>> paletteTools() {
    return {{AnnotationTool::select, u"Select"_s},   {AnnotationTool::region, u"Region"_s},
            {AnnotationTool::arrow, u"Arrow"_s},     {AnnotationTool::box, u"Box"_s},
            {AnnotationTool::ellipse, u"Ellipse"_s}, {AnnotationTool::highlight, u"Highlight"_s},
            {AnnotationTool::text, u"Text"_s}};
}

/// Keys that every keyboard has, whatever its letters. The PC's Delete key does what its label says.
std::optional<int> fixedKeyCode(int key) {
    switch (key) {
    case Qt::Key_Return:
        return 36;
    case Qt::Key_Enter:
        return 76;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 48;
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return 51;
    case Qt::Key_Escape:
        return 53;
    case Qt::Key_Left:
        return 123;
    case Qt::Key_Right:
        return 124;
    default:
        return std::nullopt;
    }
}

} // namespace

OverlayView::OverlayView(const OverlayDocument& document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_gestures(document.manager, *this)
    , m_refresh([this] { refresh(); })
    , m_bar(new OverlayBar(
          document.manager, [this](OverlayCommand command) { m_document.commands.perform(command); },
          document.targetIcon, this))
    , m_palette(new MarkupPalette(document.manager, paletteTools(), this))
    , m_textEditor(*this, [this](const QUuid& annotation, const QString& text) {
        m_gestures.textClosed(annotation, text);
    }) {
    // Given the keys by calls only: a click on the bar is not to take them from a text.
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    m_palette->setDraggable(true);
    m_palette->hide();
    m_bar->installEventFilter(this);
    m_palette->installEventFilter(this);
    m_subscription = m_document.manager.observe([this] { m_refresh.request(); });
}

OverlayView::~OverlayView() = default;

void OverlayView::setFrame(const QRect& globalFrame, qreal primaryHeight, qreal pixelSide) {
    m_frame = globalFrame;
    m_gestures.setFrame(globalFrame, primaryHeight, pixelSide);
    m_refresh.request();
}

void OverlayView::closeEditors() {
    if (m_labelEditor) {
        const LabelEditor editor = std::move(m_labelEditor);
        editor->closePopover();
        m_gestures.labelSubmitted(m_labelledMarker, editor->text());
    }
    closeTextEditor();
}

void OverlayView::closeTextEditor() {
    m_textEditor.close();
}

// A widget is painted anew as a whole when the focus comes or goes. This one looks the same, and on a large
// display that would be the most work that there is.

void OverlayView::focusInEvent(QFocusEvent* /*event*/) {}

void OverlayView::focusOutEvent(QFocusEvent* /*event*/) {}

void OverlayView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    paintOverlay(painter, m_shown, event->region());
}

void OverlayView::resizeEvent(QResizeEvent* /*event*/) {
    placeControls();
    m_refresh.request();
}

void OverlayView::placeControls() {
    m_bar->place(rect());
    m_palette->adjustSize();
    m_palette->move((width() - m_palette->width()) / 2, m_bar->y() - paletteGap - m_palette->height());
}

QPointF OverlayView::placeOf(const QMouseEvent& event) const {
    // Within the window, which the view fills: Qt rounds what it tells a widget inside a window to whole
    // points, and a pixel may be less.
    const QPointF place = event.scenePosition();
    // A move that has just left a button has the place in the window of the event that told the button so.
    const bool isOverwritten = place == QPointF(-1, -1);
    return isOverwritten ? event.globalPosition() - QPointF(window()->geometry().topLeft()) : place;
}

void OverlayView::mousePressEvent(QMouseEvent* event) {
    const EventRefresh::Event handled(m_refresh);
    if (event->button() == Qt::LeftButton) {
        m_gestures.pointerPressed(placeOf(*event));
    } else if (event->button() == Qt::RightButton) {
        m_gestures.rightPressed(placeOf(*event));
    }
}

void OverlayView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    const EventRefresh::Event handled(m_refresh);
    m_gestures.pointerDoublePressed(placeOf(*event));
}

void OverlayView::mouseMoveEvent(QMouseEvent* event) {
    const EventRefresh::Event handled(m_refresh);
    if (event->buttons().testFlag(Qt::LeftButton)) {
        m_gestures.pointerDragged(placeOf(*event));
        return;
    }
    // The release of a gesture may have gone to another program that took the pointer.
    m_gestures.cancel();
    m_gestures.pointerMoved(placeOf(*event));
}

void OverlayView::mouseReleaseEvent(QMouseEvent* event) {
    const EventRefresh::Event handled(m_refresh);
    if (event->button() == Qt::LeftButton)
        m_gestures.pointerReleased(placeOf(*event));
}

void OverlayView::leaveEvent(QEvent* /*event*/) {
    const EventRefresh::Event handled(m_refresh);
    m_gestures.pointerLeft();
}

bool OverlayView::eventFilter(QObject* watched, QEvent* event) {
    // A pointer that goes over to the bar or the palette does not leave the view for Qt.
    if (event->type() == QEvent::Enter) {
        const EventRefresh::Event handled(m_refresh);
        m_gestures.pointerLeft();
    }
    return QWidget::eventFilter(watched, event);
}

void OverlayView::keyPressEvent(QKeyEvent* event) {
    const std::optional<int> code = keyCode(*event);
    const std::optional<OverlayCommand> command =
        code ? overlayCommand(*code, event->modifiers()) : std::nullopt;
    if (!command) {
        QWidget::keyPressEvent(event);
        return;
    }
    const EventRefresh::Event handled(m_refresh);
    if (!event->isAutoRepeat() || *command == OverlayCommand::deleteMark)
        m_document.commands.perform(*command);
}

std::optional<int> OverlayView::keyCode(const QKeyEvent& event) const {
    if (const std::optional<int> code = fixedKeyCode(event.key()))
        return code;
    return m_document.keyboard.keyCode({.scanCode = event.nativeScanCode(),
                                        .virtualKey = event.nativeVirtualKey(),
                                        .modifiers = event.nativeModifiers()});
}

bool OverlayView::focusNextPrevChild(bool /*next*/) {
    // Tab has a meaning of its own here.
    return false;
}

void OverlayView::openLabelEditor(const QUuid& marker, const QPointF& viewPoint) {
    closeEditors();
    const auto& markers = m_document.manager.markers();
    const auto found = std::find_if(markers.begin(), markers.end(),
                                    [&marker](const Marker& candidate) { return candidate.id == marker; });
    if (found == markers.end())
        return;
    m_labelledMarker = marker;
    m_labelEditor.reset(new MarkerPopover(found->label, this));
    m_labelEditor->setOnSubmit(
        [this, marker](const QString& label) { m_gestures.labelSubmitted(marker, label); });
    m_labelEditor->setOnClose([this] {
        m_labelEditor.reset();
        setFocus();
    });
    m_labelEditor->openAt(viewPoint);
}

void OverlayView::openTextEditor(const QUuid& annotation, const QPointF& viewPoint) {
    closeEditors();
    if (const Annotation* text = findAnnotation(m_document.manager, annotation))
        m_textEditor.open(annotation, viewPoint, QString(text->text));
}

void OverlayView::takeKeyboard() {
    setFocus();
}

void OverlayView::refresh() {
    m_palette->setVisible(m_document.manager.markupMode());
    OverlayScene now = scene();
    const QRegion changed = damage(m_shown, now);
    m_shown = std::move(now);
    if (!changed.isEmpty())
        update(repaintRegion(changed, rect(), screen()->devicePixelRatio()));
}

OverlayScene OverlayView::scene() const {
    const MarkerManager& manager = m_document.manager;
    return {.shapes = {.size = size(),
                       .origin = m_frame.topLeft(),
                       .annotations = manager.annotations(),
                       .selectedId = manager.selectedAnnotationId(),
                       .draft = m_gestures.draft(),
                       .displays = m_document.displays ? m_document.displays() : std::vector<QRectF>()},
            .modes = manager.modes(),
            .tool = manager.currentTool(),
            .markers = manager.markers(),
            .selectedMarkerId = manager.selectedMarkerId(),
            .currentRect = m_gestures.currentRect(),
            .mousePosition = m_gestures.mousePosition()};
}

} // namespace orvane
