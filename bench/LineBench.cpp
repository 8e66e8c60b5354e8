#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/mcp/ToolCallHandler.h"
#include "bench/MemoryStreams.h"

#include <benchmark/benchmark.h>

namespace {

using orvane::LineReader;
using orvane::MCPServer;
using orvane::bench::MemoryStreams;

constexpr qsizetype hugeLineBytes = qsizetype{64} * 1024 * 1024;
constexpr int smallLineCount = 10000;

class NoTools final : public orvane::ToolCallHandler {
public:
    QJsonObject handleToolCall(const QString& /*name*/, const QJsonObject& /*arguments*/) override {
        return {};
    }
};

/// A request with one long text in it, as large as `bytes` in all.
QByteArray hugeRequest(qsizetype bytes) {
    QByteArray line = R"({"jsonrpc":"2.0","id":1,"method":"ping","params":{"text":")";
    const QByteArray end = "\"}}\n";
    line.append(bytes - line.size() - end.size(), 'x');
    return line + end;
}

QByteArray smallRequests() {
    return QByteArray("{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"ping\"}\n").repeated(smallLineCount);
}

void readLines(benchmark::State& state, const QByteArray& input) {
    for ([[maybe_unused]] auto iteration : state) {
        MemoryStreams streams(input);
        LineReader lines(streams);
        while (const auto line = lines.next())
            benchmark::DoNotOptimize(line->data());
    }
    state.SetBytesProcessed(state.iterations() * input.size());
}

void serve(benchmark::State& state, const QByteArray& input) {
    NoTools tools;
    const MCPServer server(tools);
    for ([[maybe_unused]] auto iteration : state) {
        MemoryStreams streams(input);
        server.run(streams);
        if (streams.written() == 0)
            state.SkipWithError("the server does not answer");
    }
    state.SetBytesProcessed(state.iterations() * input.size());
}

void readHugeLine(benchmark::State& state) {
    readLines(state, hugeRequest(hugeLineBytes));
}

void readSmallLines(benchmark::State& state) {
    readLines(state, smallRequests());
    state.SetItemsProcessed(state.iterations() * smallLineCount);
}

void serveHugeLine(benchmark::State& state) {
    serve(state, hugeRequest(hugeLineBytes));
}

void serveSmallLines(benchmark::State& state) {
    serve(state, smallRequests());
    state.SetItemsProcessed(state.iterations() * smallLineCount);
}

BENCHMARK(readHugeLine)->Unit(benchmark::kMillisecond);
BENCHMARK(readSmallLines)->Unit(benchmark::kMillisecond);
BENCHMARK(serveHugeLine)->Unit(benchmark::kMillisecond);
BENCHMARK(serveSmallLines)->Unit(benchmark::kMillisecond);

} // namespace
