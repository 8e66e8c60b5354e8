#include "OrvaneCore/capture/WindowInfo.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int windowCount = 100;

std::vector<orvane::WindowInfo> windows() {
    std::vector<orvane::WindowInfo> windows;
    windows.reserve(windowCount);
    for (qint32 i = 0; i < windowCount; ++i) {
        windows.push_back({.appName = u"Application %1"_s.arg(i % 12),
                           .windowTitle = u"Report “%1” — the \"final\" version"_s.arg(i),
                           .pid = 1000 + i,
                           .windowId = 0x1400000 + qint64{0x200000} * i,
                           .x = qint64{10} * i,
                           .y = qint64{7} * i,
                           .width = 640,
                           .height = 480,
                           .displayId = 3141592653U,
                           .displayBounds = u"0,0,3840,2160"_s});
    }
    return windows;
}

void encodeWindows(benchmark::State& state) {
    const std::vector<orvane::WindowInfo> list = windows();
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(orvane::encodeWindowInfos(list));
    state.SetItemsProcessed(state.iterations() * windowCount);
}

BENCHMARK(encodeWindows)->Unit(benchmark::kMicrosecond);

} // namespace
