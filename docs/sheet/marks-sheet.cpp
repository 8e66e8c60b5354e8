// marks-sheet SCALE FILE.png: every kind of mark in its colours and states, SCALE pixels a point.
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/SpotlightBlur.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/Palettes.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <cstdlib>
#include <numbers>

using namespace orvane;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize sheetSize(1180, 1240);
constexpr QRgb paper = 0xFFE8ECF1;
constexpr QRgb ink = 0xFF2B3440;

/// A small picture with a top and a bottom, and sides that differ.
QImage samplePicture() {
    QImage picture(120, 80, QImage::Format_RGB32);
    picture.fill(QColor(0xFF8FC7F0));
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xFFFFE08A));
    painter.drawEllipse(QPointF(95, 20), 12, 12);
    painter.setBrush(QColor(0xFF5B8C5A));
    painter.drawPolygon(QPolygonF({{0, 80}, {40, 30}, {75, 70}, {90, 55}, {120, 80}}));
    return picture;
}

class Sheet {
public:
    explicit Sheet(qreal scale)
        : m_map{.origin = {}, .scaleX = scale, .scaleY = scale}
        , m_picture((QSizeF(sheetSize) * scale).toSize(), QImage::Format_RGB32)
        , m_painter(&m_picture) {
        m_picture.fill(QColor(paper));
    }

    QImage finish() {
        m_painter.end();
        return m_picture;
    }

    void title(const QPointF& place, const QString& text) {
        DrawnText(text, 14, QFont::DemiBold, scale()).draw(m_painter, m_map(place), QColor(ink));
    }

    /// Rows of kinds, columns of colours.
    void kinds(const QPointF& corner) {
        title(corner, u"Kinds and colours"_s);
        const std::array kinds{Annotation::Kind::arrow,     Annotation::Kind::box,  Annotation::Kind::ellipse,
                               Annotation::Kind::highlight, Annotation::Kind::text, Annotation::Kind::image};
        for (std::size_t row = 0; row < kinds.size(); ++row) {
            for (std::size_t column = 0; column < markup_colors::presets.size(); ++column) {
                const QPointF start =
                    corner + QPointF(static_cast<qreal>(column) * 125, 60 + static_cast<qreal>(row) * 75);
                Annotation shape = annotation(kinds[row], start, start + QPointF(90, 40), column);
                shape.text = u"Text"_s;
                shape.label = QString(rawValue(kinds[row]));
                draw(shape);
            }
        }
    }

    void strokes(const QPointF& corner) {
        title(corner, u"Stroke widths"_s);
        qreal y = corner.y() + 45;
        for (const qreal width : markup_colors::strokePresets) {
            const QPointF start(corner.x(), y);
            Annotation arrow =
                annotation(Annotation::Kind::arrow, start + QPointF(0, 40), start + QPointF(90, 0), 0);
            Annotation box =
                annotation(Annotation::Kind::box, start + QPointF(120, 0), start + QPointF(200, 40), 2);
            Annotation oval =
                annotation(Annotation::Kind::ellipse, start + QPointF(230, 0), start + QPointF(320, 40), 3);
            arrow.strokeWidth = box.strokeWidth = oval.strokeWidth = width;
            draw(arrow);
            draw(box);
            draw(oval);
            y += 60;
        }
    }

    void selections(const QPointF& corner) {
        title(corner, u"Selected"_s);
        const std::array kinds{Annotation::Kind::arrow, Annotation::Kind::box, Annotation::Kind::ellipse,
                               Annotation::Kind::highlight};
        qreal x = corner.x();
        for (const Annotation::Kind kind : kinds) {
            const QPointF start(x, corner.y() + 50);
            select(annotation(kind, start, start + QPointF(70, 50), 2));
            x += 95;
        }
    }

    void pictures(const QPointF& corner) {
        title(corner, u"Pictures: letterboxed, turned, missing"_s);
        const QPointF start = corner + QPointF(0, 60);
        Annotation wide = annotation(Annotation::Kind::image, start, start + QPointF(120, 50), 0);
        wide.image = samplePicture();
        Annotation turned =
            annotation(Annotation::Kind::image, start + QPointF(150, 0), start + QPointF(240, 60), 0);
        turned.image = samplePicture();
        turned.rotation = std::numbers::pi / 9;
        Annotation missing =
            annotation(Annotation::Kind::image, start + QPointF(280, 0), start + QPointF(350, 50), 0);
        select(wide);
        select(turned);
        select(missing);
    }

    void texts(const QPointF& corner) {
        title(corner, u"Any text"_s);
        const std::array texts{u"Two\nlines of it"_s, u"שלום עולם (RTL)"_s, u"Grüße, Ελληνικά, Ж"_s};
        qreal y = corner.y() + 40;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            Annotation text = annotation(Annotation::Kind::text, {corner.x(), y}, {corner.x(), y}, i + 1);
            text.text = texts[i];
            draw(text);
            y += annotation_renderer::textSize(text, 1).height() + 22;
        }
    }

    void markers(const QPointF& corner, const MarkerStyle& style, marker_painter::Spotlight spotlight,
                 const QString& name) {
        title(corner, name);
        for (int number = 1; number <= 8; ++number) {
            Marker marker{.rect = QRectF(corner + QPointF((number - 1) * 143, 50), QSizeF(100, 56)),
                          .label = number % 2 == 1 ? u"Note %1"_s.arg(number) : QString(),
                          .color = marker_palette::border(number),
                          .index = number};
            marker_painter::draw(m_painter, marker, m_map(marker.rect), scale(), style, spotlight);
        }
    }

    /// A part of the sheet so far, as a spotlight shows it.
    void spotlight(const QRectF& source, const QRectF& clear, const QPointF& target) {
        title(target, u"Spotlight"_s);
        const QImage part = m_picture.copy(m_map(source).toAlignedRect());
        const QRectF inPart((clear.topLeft() - source.topLeft()) * scale(), clear.size() * scale());
        m_painter.drawImage(m_map(target + QPointF(0, 30)), blurOutside(part, {inPart}, 18 * scale() / 2));
    }

private:
    qreal scale() const { return m_map.scaleX; }

    static Annotation annotation(Annotation::Kind kind, const QPointF& start, const QPointF& end,
                                 std::size_t color) {
        return {.kind = kind,
                .start = start,
                .end = end,
                .color = QColor(markup_colors::presets[color]),
                .strokeWidth = markup_colors::strokePresets[0]};
    }

    void draw(const Annotation& shape) { annotation_renderer::draw(m_painter, shape, m_map, scale()); }

    void select(const Annotation& shape) {
        draw(shape);
        annotation_renderer::drawSelectionHandles(m_painter, shape, m_map, scale());
    }

    PointMap m_map;
    QImage m_picture;
    QPainter m_painter;
};

} // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const double scale = arguments.size() == 3 ? arguments[1].toDouble() : 0;
    if (!(scale > 0 && scale <= 8)) {
        std::fputs("usage: marks-sheet SCALE FILE.png\n", stderr);
        return EXIT_FAILURE;
    }

    Sheet sheet(scale);
    sheet.kinds({30, 20});
    sheet.strokes({800, 20});
    sheet.selections({800, 270});
    sheet.pictures({800, 400});
    sheet.markers({40, 560}, MarkerStyle::onImage, marker_painter::Spotlight::off, u"Markers on a picture"_s);
    sheet.markers({40, 730}, MarkerStyle::onOverlay, marker_painter::Spotlight::off,
                  u"Markers on the screen"_s);
    sheet.markers({40, 900}, MarkerStyle::onOverlay, marker_painter::Spotlight::on,
                  u"Markers on the screen, spotlight"_s);
    sheet.texts({40, 1070});
    sheet.spotlight(QRectF(20, 600, 700, 110), QRectF(183, 610, 100, 56), {330, 1070});
    return sheet.finish().save(arguments[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
