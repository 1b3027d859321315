#pragma once
// The two measurements every file scenario makes: saving a layout over the previous
// save of itself, and opening the saved layout into a fresh card.
#include <benchmark/benchmark.h>

#include "BenchChecks.h"
#include "BenchLayouts.h"

namespace kestrin::bench {

// Times repeated saves of the layout into one folder. One save before the timing leaves
// the layout and its chip encode file in place, so every timed save is an ordinary
// repeated save: both files staged and flushed, the old layout kept as the backup.
// After the timing the files are read back and compared with the layout.
void runSaveBenchmark(benchmark::State& state, const BenchLayout& layout);

// Saves the layout once, checks it, then times opening it. After the timing the card
// and the items of the last open are compared with the layout.
void runOpenBenchmark(benchmark::State& state, const BenchLayout& layout);

// Counters shared by both: items per iteration, and items per second.
void reportItems(benchmark::State& state, const BenchLayout& layout);

}  // namespace kestrin::bench
