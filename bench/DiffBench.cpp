#include "OrvaneCore/recording/FrameDiff.h"
#include "bench/DesktopPicture.h"

#include <benchmark/benchmark.h>

namespace {

using orvane::diffFrames;
using orvane::gridCells;

QSize size(const benchmark::State& state) {
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

void diff(benchmark::State& state, const QImage& prev, const QImage& current, int expectedCells) {
    int cells = 0;
    for ([[maybe_unused]] auto iteration : state)
        cells = static_cast<int>(diffFrames(prev, current).size());
    if (cells != expectedCells)
        state.SkipWithError("the comparison is wrong");
    state.SetItemsProcessed(state.iterations());
}

void diffIdentical(benchmark::State& state) {
    const QImage prev = orvane::bench::desktopPicture(size(state));
    diff(state, prev, prev.copy(), 0);
}

void diffEverywhere(benchmark::State& state) {
    const QImage prev = orvane::bench::desktopPicture(size(state));
    QImage current = prev;
    current.invertPixels();
    diff(state, prev, current, gridCells);
}

BENCHMARK(diffIdentical)->Args({3840, 2160})->Args({1920, 1080})->Unit(benchmark::kMillisecond);
BENCHMARK(diffEverywhere)->Args({3840, 2160})->Args({1920, 1080})->Unit(benchmark::kMillisecond);

} // namespace
