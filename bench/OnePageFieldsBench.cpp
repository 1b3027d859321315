// A 16 kbit one-page card with the HID section on, filled with one-byte fields: every
// free byte from block 19 to 255 holds its own host field (1,896 items and fields).
#include "BenchLayouts.h"
#include "SaveOpenRunner.h"

namespace kestrin::bench {
namespace {

const BenchLayout& layout() {
    static const BenchLayout l = makeOnePageByteLayout();
    return l;
}

void onePageFieldsSave(benchmark::State& state) { runSaveBenchmark(state, layout()); }
void onePageFieldsOpen(benchmark::State& state) { runOpenBenchmark(state, layout()); }

BENCHMARK(onePageFieldsSave)->Name("OnePageFields1896/Save")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(onePageFieldsOpen)->Name("OnePageFields1896/Open")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kestrin::bench
