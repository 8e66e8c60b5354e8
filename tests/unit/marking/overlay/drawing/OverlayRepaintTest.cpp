#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/marking/overlay/OverlayDamage.h"
#include "OrvaneCore/surface/RepaintRegion.h"
#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

/// Stacked marks, which leave their line by far.
const QString stacked = u"Za\u0300\u0301\u0302\u0303\u0304\u0305\u0306\u0307\u0308\u030a\u030b\u030clgo\u0323"
                        u"\u0324\u0325\u0326\u0329"_s;

const QString longLabel = u"A label that is longer than the display is wide and so stands in several lines"_s;

/// A human's work with the overlay, with the same dice for the same seed.
class RandomWork {
public:
    RandomWork(quint32 seed, bool spotlight, bool drawsPictures)
        : m_random(seed)
        , m_drawsPictures(drawsPictures) {
        scene = emptyScene({371, 263});
        scene.shapes.origin = {-1500.5, 120};
        // What belongs to marks beside the view is kept on the display there.
        if (seed % 2 == 0)
            scene.shapes.displays = {{-1500.5, 120, 371, 263}, {-1129.5, 120, 200, 263}};
        scene.modes.spotlight = spotlight;
        for (int i = 0; i < 3; ++i) {
            addMarker();
            scene.shapes.annotations.push_back(annotation());
        }
    }

    /// Its name.
    std::string step() {
        switch (m_random.bounded(16)) {
        case 0:
            addMarker();
            return "marker added";
        case 1:
            return onMarker("marker moved",
                            [this](Marker& marker) { marker.rect.translate(offset(20), offset(20)); });
        case 2:
            return onMarker("marker resized", [this](Marker& marker) {
                marker.rect = QRectF(marker.rect.topLeft(), point()).normalized();
            });
        case 3:
            return onMarker("marker labelled", [this](Marker& marker) { marker.label = label(); });
        case 4:
            if (!scene.markers.empty())
                removeMarker(m_random.bounded(int(scene.markers.size())));
            return "marker removed";
        case 5:
            scene.selectedMarkerId.reset();
            return onMarker("marker selected",
                            [this](const Marker& marker) { scene.selectedMarkerId = marker.id; });
        case 6:
            scene.shapes.annotations.push_back(annotation());
            return "annotation added";
        case 7:
            return onAnnotation("annotation moved", [this](Annotation& annotation) {
                annotation = annotation.moved({offset(20), offset(20)});
            });
        case 8:
            return onAnnotation("annotation recoloured",
                                [this](Annotation& annotation) { annotation.color = color(); });
        case 9:
            return onAnnotation("annotation widened, turned and named", [this](Annotation& annotation) {
                annotation.strokeWidth = m_random.bounded(12.0);
                annotation.rotation = m_random.bounded(6.0);
                annotation.label = label();
            });
        case 10:
            scene.shapes.selectedId.reset();
            return onAnnotation("annotation selected", [this](const Annotation& annotation) {
                scene.shapes.selectedId = annotation.id;
            });
        case 11:
            if (!scene.shapes.annotations.empty()) {
                scene.shapes.annotations.erase(scene.shapes.annotations.begin() +
                                               m_random.bounded(int(scene.shapes.annotations.size())));
            }
            return "annotation removed";
        case 12:
            scene.shapes.draft.reset();
            if (m_random.bounded(3) != 0)
                scene.shapes.draft = annotation();
            return "draft";
        case 13:
            scene.mousePosition.reset();
            if (m_random.bounded(8) != 0)
                scene.mousePosition = point();
            return "pointer moved";
        case 14:
            if (scene.currentRect && m_random.bounded(4) == 0) {
                scene.currentRect.reset();
            } else if (scene.currentRect) {
                scene.currentRect = QRectF(scene.currentRect->topLeft(), point()).normalized();
            } else {
                scene.currentRect = QRectF(point(), point()).normalized();
            }
            scene.mousePosition = point();
            return "dragged";
        default:
            break;
        }
        if (m_random.bounded(6) == 0) {
            scene.modes.ocr = !scene.modes.ocr;
            return "recognition";
        }
        if (m_random.bounded(3) != 0) {
            scene.tool = m_random.bounded(2) == 0 ? AnnotationTool::region : AnnotationTool::arrow;
            return "tool";
        }
        if (scene.markers.size() > 6)
            scene.markers.clear();
        if (scene.shapes.annotations.size() > 6)
            scene.shapes.annotations.clear();
        return "cleared";
    }

    OverlayScene scene;

private:
    /// In quarters, half of them whole as pointers are; sometimes outside the view. Finer ones would find
    /// that Qt's rasteriser rounds rectangles that reach less than a hundredth into a pixel by where the clip
    /// ends, to one grey level more or less.
    QPointF point() {
        const QPointF place(m_random.bounded(4 * 430) / 4.0 - 30, m_random.bounded(4 * 320) / 4.0 - 30);
        return m_random.bounded(2) == 0 ? QPointF(place.toPoint()) : place;
    }
    qreal offset(int most) { return m_random.bounded(8 * most) / 4.0 - most; }
    QColor color() { return QColor(markup_colors::presets[size_t(m_random.bounded(6))]); }
    QString label() {
        const std::array labels{QString(), u"Note"_s,        u"Two\nlines"_s, u"A longer label, with gj"_s,
                                stacked,   u"يا 日本 ไทย"_s, longLabel};
        return labels[size_t(m_random.bounded(int(labels.size())))];
    }

    Annotation annotation() {
        static const QImage image = [] {
            QImage picture(40, 30, QImage::Format_RGB32);
            picture.fill(QColor(10, 200, 90));
            return picture;
        }();
        const auto kind = Annotation::Kind(m_random.bounded(m_drawsPictures ? 6 : 5));
        Annotation shape =
            shapeAt(kind, scene.shapes.origin + point(), scene.shapes.origin + point(), color().rgb());
        shape.text = kind == Annotation::Kind::text ? label() : QString();
        shape.strokeWidth = 3 * (1 + m_random.bounded(4));
        shape.label = m_random.bounded(3) == 0 ? label() : QString();
        if (kind == Annotation::Kind::image && m_random.bounded(4) != 0)
            shape.image = image;
        return shape;
    }

    void addMarker() {
        const QRectF rect = QRectF(scene.shapes.origin + point(), scene.shapes.origin + point()).normalized();
        scene.markers.push_back(markerAt(rect, label()));
        renumber();
    }
    void removeMarker(int place) {
        scene.markers.erase(scene.markers.begin() + place);
        renumber();
    }
    void renumber() {
        int index = 0;
        for (Marker& marker : scene.markers) {
            marker.index = ++index;
            marker.color = marker_palette::border(index);
        }
    }

    template <typename Change>
    std::string onMarker(const char* name, Change change) {
        if (!scene.markers.empty())
            change(scene.markers[size_t(m_random.bounded(int(scene.markers.size())))]);
        return name;
    }
    template <typename Change>
    std::string onAnnotation(const char* name, Change change) {
        if (!scene.shapes.annotations.empty())
            change(scene.shapes.annotations[size_t(m_random.bounded(int(scene.shapes.annotations.size())))]);
        return name;
    }

    QRandomGenerator m_random;
    bool m_drawsPictures;
};

/// A picture that is not as large on the screen as it is itself, and the slanting line to the handle of a
/// turned one, are drawn by steps of a fraction of a pixel, which begin where the painter's clip does.
constexpr int smoothingError = 2;

bool showsPictures(const OverlayScene& scene) {
    const auto isPicture = [](const Annotation& annotation) {
        return annotation.kind == Annotation::Kind::image;
    };
    return std::any_of(scene.shapes.annotations.begin(), scene.shapes.annotations.end(), isPicture) ||
           (scene.shapes.draft && isPicture(*scene.shapes.draft));
}

struct Case {
    qreal ratio;
    bool spotlight;
    quint32 seed;
};

/// For messages.
std::ostream& operator<<(std::ostream& out, const Case& run) {
    return out << run.ratio << (run.spotlight ? " spotlight " : " plain ") << run.seed;
}

std::vector<Case> allCases() {
    std::vector<Case> cases;
    cases.reserve(26);
    for (const qreal ratio : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0}) {
        for (const bool spotlight : {false, true}) {
            for (const quint32 seed : {1U, 2U})
                cases.push_back({ratio, spotlight, seed});
        }
    }
    // Large pictures take long.
    for (const qreal ratio : {2.25, 2.9})
        cases.push_back({ratio, false, 1U});
    return cases;
}

class Repaints : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(Repaints, DamageIsAllThatDiffers) {
    const auto& [ratio, spotlight, seed] = GetParam();
    constexpr QRgb under = 0xFF8C9AA8;
    constexpr int steps = 100;
    // Those with an even seed are exact.
    RandomWork work(seed, spotlight, seed % 2 == 1);
    QImage picture = pictureOf(work.scene, ratio, under);
    qreal damagedShare = 0;
    int changes = 0;
    for (int i = 0; i < steps; ++i) {
        const OverlayScene before = work.scene;
        const std::string name = work.step();
        const QRegion region =
            repaintRegion(damage(before, work.scene), wholeOf(work.scene).boundingRect(), ratio);
        const QImage stale = picture;
        const QImage expected = pictureOf(work.scene, ratio, under);
        repaint(picture, work.scene, region, under);
        const int tolerance = showsPictures(before) || showsPictures(work.scene) ? smoothingError : 0;
        if (difference(picture, expected, 0).largest > tolerance) {
            QRect bounds;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    if (picture.pixel(x, y) != expected.pixel(x, y))
                        bounds |= QRect(x, y, 1, 1);
                }
            }
            FAIL() << "step " << i << ", " << name << ": wrong by up to "
                   << difference(picture, expected, 0).largest << " from " << bounds.left() << ","
                   << bounds.top() << " to " << bounds.right() << "," << bounds.bottom();
        }
        picture = expected;
        changes += stale != expected ? 1 : 0;
        damagedShare += static_cast<qreal>(areaOf(region)) / static_cast<qreal>(areaOf(wholeOf(work.scene)));
    }
    // It was not the same picture all along, nor was all of it painted each time.
    EXPECT_GT(changes, steps / 3);
    EXPECT_LT(damagedShare / steps, 0.3);
}

INSTANTIATE_TEST_SUITE_P(OverlayDamage, Repaints, testing::ValuesIn(allCases()), [](const auto& run) {
    return nameOfScale(run.param.ratio) + (run.param.spotlight ? "Spotlight" : "Plain") +
           std::to_string(run.param.seed);
});

} // namespace orvane::test
