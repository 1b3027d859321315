// Building the layout file and the chip encode file in memory, without the disk: the
// part of a save that grows with the number of items.
#include <string>

#include "BenchChecks.h"
#include "BenchLayouts.h"
#include "SaveOpenRunner.h"
#include "persist/ChipEncodeFile.h"
#include "persist/LayoutRenderer.h"

namespace kestrin::bench {
namespace {

void runRenderBenchmark(benchmark::State& state, const BenchLayout& layout) {
    std::string layoutBytes;
    std::string encodeBytes;
    for (auto _ : state) {
        RenderedLayout rendered = renderLayoutFile(layout.card, layout.records, layout.fields);
        std::string encode = renderChipEncodeFile(rendered.usedFieldList, rendered.bigItemNumbers, layout.fields);
        benchmark::DoNotOptimize(rendered.bytes.data());
        benchmark::DoNotOptimize(encode.data());
        layoutBytes = std::move(rendered.bytes);
        encodeBytes = std::move(encode);
    }
    if (state.error_occurred()) return;

    // The bytes of the last iteration must hold every item and every used host field.
    std::string why = checkLayoutBytes(layoutBytes, layout);
    if (why.empty()) why = checkChipEncodeBytes(encodeBytes, layout);
    if (!why.empty()) {
        state.SkipWithError(why.c_str());
        return;
    }
    state.counters["fileBytes"] = static_cast<double>(layoutBytes.size());
    reportItems(state, layout);
}

void renderOnePageFields(benchmark::State& state) {
    static const BenchLayout layout = makeOnePageByteLayout();
    runRenderBenchmark(state, layout);
}

void renderOnePageBits(benchmark::State& state) {
    static const BenchLayout layout = makeOnePageBitLayout();
    runRenderBenchmark(state, layout);
}

BENCHMARK(renderOnePageFields)->Name("OnePageFields1896/Render")->Unit(benchmark::kMillisecond);
BENCHMARK(renderOnePageBits)->Name("OnePageBits15168/Render")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin::bench
