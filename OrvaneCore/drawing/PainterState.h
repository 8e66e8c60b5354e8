#pragma once

#include <QPainter>

namespace orvane {

/// Prepares a painter for smooth shapes and gives it back as it was. Lives as long as the drawing.
class PainterState {
public:
    explicit PainterState(QPainter& painter)
        : m_painter(painter) {
        m_painter.save();
        m_painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    ~PainterState() { m_painter.restore(); }
    PainterState(const PainterState&) = delete;
    PainterState& operator=(const PainterState&) = delete;

private:
    QPainter& m_painter;
};

} // namespace orvane
