// One-byte-field layouts of 500, 1,000, 2,000 and 4,000 items, each item its own host
// field, with the growth fitted to a straight line. The in-memory writer shows the item
// cost alone; save and open add the disk. A writer or reader that is quadratic in the
// item count shows up as a bad fit (a large RMS) and a per-item cost rising with N.
#include <string>

#include "BenchChecks.h"
#include "BenchLayouts.h"
#include "SaveOpenRunner.h"
#include "persist/ChipEncodeFile.h"
#include "persist/LayoutRenderer.h"

namespace kestrin::bench {
namespace {

BenchLayout scaledLayout(const benchmark::State& state) {
    return makeScaledByteLayout(static_cast<int32_t>(state.range(0)));
}

void scalingRender(benchmark::State& state) {
    const BenchLayout layout = scaledLayout(state);
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
    std::string why = checkLayoutBytes(layoutBytes, layout);
    if (why.empty()) why = checkChipEncodeBytes(encodeBytes, layout);
    if (!why.empty()) return state.SkipWithError(why.c_str());
    reportItems(state, layout);
    state.SetComplexityN(state.range(0));
}

void scalingSave(benchmark::State& state) {
    runSaveBenchmark(state, scaledLayout(state));
    state.SetComplexityN(state.range(0));
}

void scalingOpen(benchmark::State& state) {
    runOpenBenchmark(state, scaledLayout(state));
    state.SetComplexityN(state.range(0));
}

// The item counts of every scaling benchmark.
void itemCounts(benchmark::internal::Benchmark* b) {
    for (int64_t n : {500, 1000, 2000, 4000}) b->Arg(n);
    b->ArgName("items")->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

BENCHMARK(scalingRender)->Name("ScalingFields/Render")->Apply(itemCounts);
BENCHMARK(scalingSave)->Name("ScalingFields/Save")->Apply(itemCounts)->UseRealTime();
BENCHMARK(scalingOpen)->Name("ScalingFields/Open")->Apply(itemCounts)->UseRealTime();

}  // namespace
}  // namespace kestrin::bench
