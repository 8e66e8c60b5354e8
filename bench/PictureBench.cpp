#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "bench/DesktopPicture.h"

#include <benchmark/benchmark.h>

namespace {

using orvane::ScreenCapture;
using orvane::png::IgzipWriter;

constexpr QSize fourK(3840, 2160);
constexpr int agentMaxDimension = 1024;

void encode(benchmark::State& state, const QImage& picture) {
    const IgzipWriter writer;
    qsizetype fileBytes = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const QByteArray png = writer.encode(picture);
        if (png.isEmpty())
            state.SkipWithError("the picture cannot be encoded");
        fileBytes = png.size();
    }
    state.SetBytesProcessed(state.iterations() * picture.sizeInBytes());
    state.counters["fileKiB"] = static_cast<double>(fileBytes) / 1024;
}

void pngOfDesktop(benchmark::State& state) {
    encode(state, orvane::bench::desktopPicture(fourK));
}

void pngOfPhoto(benchmark::State& state) {
    encode(state, orvane::bench::photoPicture(fourK));
}

void pngForAgent(benchmark::State& state) {
    encode(state, ScreenCapture::resizeForLLM(orvane::bench::desktopPicture(fourK), agentMaxDimension));
}

void resizeForAgent(benchmark::State& state) {
    const QImage picture = orvane::bench::desktopPicture(fourK);
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(ScreenCapture::resizeForLLM(picture, agentMaxDimension));
    state.SetBytesProcessed(state.iterations() * picture.sizeInBytes());
}

BENCHMARK(pngOfDesktop)->Unit(benchmark::kMillisecond);
BENCHMARK(pngOfPhoto)->Unit(benchmark::kMillisecond);
BENCHMARK(pngForAgent)->Unit(benchmark::kMillisecond);
BENCHMARK(resizeForAgent)->Unit(benchmark::kMillisecond);

} // namespace
