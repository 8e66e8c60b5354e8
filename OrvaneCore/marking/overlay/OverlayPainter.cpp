#include "OrvaneCore/marking/overlay/OverlayPainter.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/PlateEdge.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/editing/AnnotationScenePainter.h"
#include "OrvaneCore/marking/overlay/OverlayBounds.h"
#include "OrvaneCore/marking/overlay/OverlayFonts.h"
#include "OrvaneCore/marking/overlay/OverlayLayout.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include <QPainterPath>
#include <QRegion>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

struct Dashes {
    qreal length;
    qreal gap;
};
constexpr Dashes crosshairDashes{4, 4};
constexpr Dashes outlineDashes{6, 4};

/// One scene on its way to one painter.
class ScenePainting {
public:
    ScenePainting(QPainter& painter, const OverlayScene& scene, const QRegion& exposed)
        : m_painter(painter)
        , m_scene(scene)
        , m_bounds(scene)
        , m_exposed(exposed & m_bounds.view()) {}

    void paint() {
        if (m_exposed.isEmpty())
            return;
        if (m_scene.modes.spotlight)
            darken();
        for (const Marker& marker : m_scene.markers)
            drawMarker(marker);
        if (const auto rect = currentRectInView(m_scene); rect && m_bounds.currentRect().touches(m_exposed))
            drawCurrentRect(*rect);
        paintAnnotations(m_painter, m_scene.shapes, m_exposed);
        if (m_bounds.selectedMarker().touches(m_exposed))
            annotation_renderer::drawHandleDots(m_painter, selectedCornersInView(m_scene), 1);
        if (const auto pointer = pointerInView(m_scene); pointer && m_bounds.crosshair().touches(m_exposed))
            drawCrosshair(*pointer);
        if (m_bounds.instructions().touches(m_exposed))
            drawInstructions();
    }

private:
    /// All but the regions. Where two of them overlap it is dark again.
    void darken() {
        const QRectF view({0, 0}, m_scene.shapes.size);
        QPainterPath path;
        path.setFillRule(Qt::OddEvenFill);
        path.addRect(QRectF(m_exposed.boundingRect().adjusted(-1, -1, 1, 1)) & view);
        for (const Marker& marker : m_scene.markers) {
            const auto region = regionInView(m_scene, marker);
            const QRectF hole = region.value_or(QRectF()) & path.boundingRect();
            if (!hole.isEmpty() && m_exposed.intersects(hole.toAlignedRect()))
                path.addRect(hole);
        }
        m_painter.fillPath(path, withAlpha(Qt::black, 0.55F));
    }

    void drawMarker(const Marker& marker) {
        const auto region = regionInView(m_scene, marker);
        const VisualBounds bounds = m_bounds.marker(marker);
        if (!region || !bounds.touches(m_exposed))
            return;
        const PainterState state(m_painter);
        // Whatever is written on the label, it does not leave marks where nobody wipes them off.
        m_painter.setClipRect(bounds.boundingRect(), Qt::IntersectClip);
        const MarkerStyle& style = MarkerStyle::onOverlay;
        const MarkerLayout layout = markerInView(m_scene, marker, *region);
        marker_painter::draw(m_painter, marker, layout, 1, style, spotlight(m_scene));
        drawPlate(overlay_layout::sizeTag(layout, m_scene.shapes.size), 3, gray(0.12F), OverlayFont::sizeTag,
                  sizeTagText(region->size()), withAlpha(Qt::white, 0.8F));
        if (hasHint(m_scene, marker)) {
            // What shone through would be read together with it.
            drawPlate(overlay_layout::hint(layout), 6, gray(0.12F), OverlayFont::hint, labelHintText(),
                      withAlpha(Qt::white, 0.75F));
        }
    }

    void drawCurrentRect(const QRectF& rect) {
        m_painter.fillRect(rect, withAlpha(QColor(overlay_layout::currentRectColor), 0.2F));
        const QColor color = withAlpha(QColor(overlay_layout::currentRectColor), 0.8F);
        constexpr qreal outlineWidth = overlay_layout::currentRectOutline;
        constexpr qreal half = outlineWidth / 2;
        const QRectF outer = rect.adjusted(-half, -half, half, half);
        for (const qreal y : {outer.top(), outer.bottom() - outlineWidth})
            drawRow({outer.left(), y, outer.width(), outlineWidth}, outlineDashes, color);
        // Between the rows: where dashes lie on each other they are denser.
        const qreal height = outer.height() - 2 * outlineWidth;
        for (const qreal x : {outer.left(), outer.right() - outlineWidth})
            drawColumn({x, outer.top() + outlineWidth, outlineWidth, height}, outlineDashes, color);
        drawPlate(overlay_layout::dimensionLabel(rect, m_scene.shapes.size), 4, gray(0.12F, 0.9F),
                  OverlayFont::plate, dimensionText(rect.size()), Qt::white);
    }

    void drawCrosshair(const QPointF& pointer) {
        constexpr qreal crosshairWidth = overlay_layout::crosshairWidth;
        const QSizeF view = m_scene.shapes.size;
        const QPointF corner = onPixel(pointer);
        const QColor color = withAlpha(Qt::white, 0.4F);
        drawRow({0, corner.y(), view.width(), crosshairWidth}, crosshairDashes, color);
        drawColumn({corner.x(), 0, crosshairWidth, view.height()}, crosshairDashes, color);
        const QString text = coordinateText(m_scene, pointer);
        drawPlate(overlay_layout::coordinatePlate(pointer, text, view), 4, gray(0.12F, 0.9F),
                  OverlayFont::plate, text, Qt::white);
    }

    void drawInstructions() {
        const auto [pill, lines] =
            overlay_layout::instructions(overlayInstructions(m_scene), m_scene.shapes.size);
        drawGround(pill, 14, withAlpha(Qt::black, 0.75F));
        for (const auto& [text, place] : lines)
            drawOverlayText(m_painter, OverlayFont::instructions, text, place.topLeft(), Qt::white);
    }

    /// The corner of the pixel that the point is in, so that a thin line fills as few pixels as it can.
    QPointF onPixel(const QPointF& point) const {
        const QTransform toDevice = m_painter.deviceTransform();
        if (toDevice.type() > QTransform::TxScale)
            return point;
        const QPointF pixel = toDevice.map(point);
        return toDevice.inverted().map(QPointF(std::floor(pixel.x()), std::floor(pixel.y())));
    }

    // Dashes along a bar from its left or upper end, each as a rectangle: on a large display that takes a
    // small part of the time that a path of all of them, or a pen, does. Only those that show.

    void drawRow(const QRectF& bar, const Dashes& dashes, const QColor& color) {
        const QRectF shown = QRectF(m_exposed.boundingRect()).adjusted(-1, -1, 1, 1);
        const qreal period = dashes.length + dashes.gap;
        const auto [first, end] = dashesWithin(shown.left() - bar.left(),
                                               std::min(bar.right(), shown.right()) - bar.left(), period);
        const bool isExposed = isWhollyExposed(bar);
        for (int i = first; i < end; ++i) {
            const qreal x = bar.left() + i * period;
            drawDash({x, bar.top(), std::min(dashes.length, bar.right() - x), bar.height()}, isExposed,
                     color);
        }
    }

    void drawColumn(const QRectF& bar, const Dashes& dashes, const QColor& color) {
        const QRectF shown = QRectF(m_exposed.boundingRect()).adjusted(-1, -1, 1, 1);
        const qreal period = dashes.length + dashes.gap;
        const auto [first, end] =
            dashesWithin(shown.top() - bar.top(), std::min(bar.bottom(), shown.bottom()) - bar.top(), period);
        const bool isExposed = isWhollyExposed(bar);
        for (int i = first; i < end; ++i) {
            const qreal y = bar.top() + i * period;
            drawDash({bar.left(), y, bar.width(), std::min(dashes.length, bar.bottom() - y)}, isExposed,
                     color);
        }
    }

    /// The numbers of the first dash and of the one after the last that show between two distances from the
    /// end of the bar where the dashes begin.
    static std::pair<int, int> dashesWithin(qreal from, qreal to, qreal period) {
        return {std::max(0, qFloor(from / period)), std::max(0, qCeil(to / period))};
    }

    /// Whether a bar shows from end to end, so that nobody need ask for each of its dashes.
    bool isWhollyExposed(const QRectF& bar) const {
        const QRect place = bar.toAlignedRect() & m_bounds.view();
        return std::any_of(m_exposed.begin(), m_exposed.end(),
                           [&place](const QRect& exposed) { return exposed.contains(place); });
    }

    void drawDash(const QRectF& dash, bool isExposed, const QColor& color) {
        if (isExposed || m_exposed.intersects(dash.adjusted(-1, -1, 1, 1).toAlignedRect()))
            m_painter.fillRect(dash, color);
    }

    void drawGround(const QRectF& rect, qreal radius, const QColor& color) {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(color);
        m_painter.drawRoundedRect(rect, radius, radius);
        drawPlateEdge(m_painter, rect, radius);
    }

    void drawPlate(const QRectF& plate, qreal radius, const QColor& ground, OverlayFont font,
                   const QString& text, const QColor& color) {
        drawGround(plate, radius, ground);
        const QSizeF free = plate.size() - overlayTextSize(font, text);
        drawOverlayText(m_painter, font, text, plate.topLeft() + QPointF(free.width() / 2, free.height() / 2),
                        color);
    }

    QPainter& m_painter;
    const OverlayScene& m_scene;
    OverlayBounds m_bounds;
    QRegion m_exposed;
};

} // namespace

void paintOverlay(QPainter& painter, const OverlayScene& scene, const QRegion& exposed) {
    const PainterState state(painter);
    ScenePainting(painter, scene, exposed).paint();
}

} // namespace orvane
