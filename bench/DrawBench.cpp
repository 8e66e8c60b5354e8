#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/Palettes.h"
#include "bench/DesktopPicture.h"

#include <benchmark/benchmark.h>

#include <QPainter>

#include <array>
#include <numbers>
#include <random>

namespace {

using namespace orvane;
using namespace Qt::StringLiterals;

constexpr QSize fourK(3840, 2160);
constexpr qreal scale = 2;
constexpr QSizeF screenPoints(1920, 1080);

/// Shapes of all kinds and of the sizes that people draw, from a word to a third of the screen. The same on
/// every call; half of them have a label.
std::vector<Annotation> mixedAnnotations(int count) {
    constexpr std::array kinds{Annotation::Kind::arrow,     Annotation::Kind::box,  Annotation::Kind::ellipse,
                               Annotation::Kind::highlight, Annotation::Kind::text, Annotation::Kind::image};
    const QImage photo = bench::photoPicture({320, 200});
    std::mt19937 random(20'260'101);
    std::uniform_real_distribution<qreal> share(0, 1);
    std::vector<Annotation> annotations;
    annotations.reserve(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        Annotation annotation;
        annotation.kind = kinds[i % kinds.size()];
        annotation.start = {share(random) * screenPoints.width(), share(random) * screenPoints.height()};
        annotation.end = annotation.start + QPointF(40 + 600 * share(random) * share(random),
                                                    20 + 340 * share(random) * share(random));
        annotation.text = u"This moves when the list is empty"_s;
        annotation.color = QColor(markup_colors::presets[i % markup_colors::presets.size()]);
        annotation.strokeWidth = markup_colors::strokePresets[i % markup_colors::strokePresets.size()];
        annotation.label = i % 2 == 0 ? u"note %1"_s.arg(i) : QString();
        annotation.image = photo;
        annotation.rotation = i % 12 == 5 ? std::numbers::pi / 8 : 0;
        annotations.push_back(annotation);
    }
    return annotations;
}

void drawAnnotations(benchmark::State& state) {
    const std::vector<Annotation> annotations = mixedAnnotations(static_cast<int>(state.range(0)));
    const PointMap toPixels{.origin = {}, .scaleX = scale, .scaleY = scale};
    QImage picture = bench::desktopPicture(fourK);
    for ([[maybe_unused]] auto iteration : state) {
        QPainter painter(&picture);
        for (const Annotation& annotation : annotations)
            annotation_renderer::draw(painter, annotation, toPixels, scale);
        painter.end();
        benchmark::DoNotOptimize(picture.constBits());
    }
}

void drawMarkers(benchmark::State& state) {
    QImage picture = bench::desktopPicture(fourK);
    for ([[maybe_unused]] auto iteration : state) {
        QPainter painter(&picture);
        for (int number = 1; number <= state.range(0); ++number) {
            const QRectF rect((number % 8) * 220 + 40, (number % 6) * 170 + 40, 180, 110);
            const Marker marker{.rect = rect,
                                .label = u"the button in question"_s,
                                .color = marker_palette::border(number),
                                .index = number};
            marker_painter::draw(painter, marker, QRectF(rect.topLeft() * scale, rect.size() * scale), scale,
                                 MarkerStyle::onImage, marker_painter::Spotlight::off);
        }
        painter.end();
        benchmark::DoNotOptimize(picture.constBits());
    }
}

BENCHMARK(drawAnnotations)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(drawMarkers)->Arg(20)->Unit(benchmark::kMillisecond);

} // namespace
