// An eight-page card with the HID section on and default boundaries, a one-byte field on
// every free byte of every page: page 0 from block 19, pages 1 to 7 from block 6
// (1,560 items, each its own host field).
#include "BenchLayouts.h"
#include "SaveOpenRunner.h"

namespace kestrin::bench {
namespace {

const BenchLayout& layout() {
    static const BenchLayout l = makeEightPageByteLayout();
    return l;
}

void eightPageFieldsSave(benchmark::State& state) { runSaveBenchmark(state, layout()); }
void eightPageFieldsOpen(benchmark::State& state) { runOpenBenchmark(state, layout()); }

BENCHMARK(eightPageFieldsSave)->Name("EightPageFields1560/Save")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(eightPageFieldsOpen)->Name("EightPageFields1560/Open")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kestrin::bench
