// The one-page card with bit-wise placement on: every bit of every free byte holds a
// one-bit field (15,168 items), eight bits to each of the 1,896 host fields.
#include "BenchLayouts.h"
#include "SaveOpenRunner.h"

namespace kestrin::bench {
namespace {

const BenchLayout& layout() {
    static const BenchLayout l = makeOnePageBitLayout();
    return l;
}

void onePageBitsSave(benchmark::State& state) { runSaveBenchmark(state, layout()); }
void onePageBitsOpen(benchmark::State& state) { runOpenBenchmark(state, layout()); }

BENCHMARK(onePageBitsSave)->Name("OnePageBits15168/Save")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(onePageBitsOpen)->Name("OnePageBits15168/Open")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kestrin::bench
