// What reading and writing the same text costs without our rules: inih's bare parse of a
// layout file's bytes (a handler that only counts), and a plain copy of the file's lines.
// Our open from bytes and our build of the file are reported as multiples of these
// (see RatioReporter), so that the figures say how close to the bare work we are.
#include <benchmark/benchmark.h>
#include <ini.h>

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "SaveOpenRunner.h"
#include "BenchLayouts.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"

namespace kestrin::bench {
namespace {

const std::string& layoutBytesOf(const BenchLayout& layout) {
    static std::string bytes;
    bytes = renderLayoutFile(layout.card, layout.records, layout.fields).bytes;
    return bytes;
}

void openFromBytes(benchmark::State& state, const BenchLayout& layout) {
    const std::string bytes = layoutBytesOf(layout);
    SilentPrompter prompter;
    for (auto _ : state) {
        CIClass card;
        RecordArray records;
        const LayoutReadResult result = readLayoutBytes(bytes, card, records, prompter, &layout.fields);
        if (!result.opened || records.size() != layout.records.size()) {
            state.SkipWithError("open from bytes failed or lost items");
            break;
        }
        benchmark::DoNotOptimize(records);
    }
    reportItems(state, layout);
}

int countEntry(void* user, const char*, const char*, const char*) {
    ++*static_cast<int*>(user);
    return 1;
}

void inihParse(benchmark::State& state, const BenchLayout& layout) {
    const std::string bytes = layoutBytesOf(layout);
    int entries = 0;
    for (auto _ : state) {
        entries = 0;
        if (ini_parse_string(bytes.c_str(), countEntry, &entries) != 0) {
            state.SkipWithError("inih refused the layout file");
            break;
        }
        benchmark::DoNotOptimize(entries);
    }
    state.counters["entries"] = entries;
}

void copyLines(benchmark::State& state, const BenchLayout& layout) {
    const std::string bytes = layoutBytesOf(layout);
    for (auto _ : state) {
        std::string out;
        std::string_view rest(bytes);
        while (!rest.empty()) {
            const size_t end = rest.find("\r\n");
            const std::string_view line = rest.substr(0, end);
            out.append(line).append("\r\n");
            rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 2);
        }
        benchmark::DoNotOptimize(out.data());
    }
}

void renderOnly(benchmark::State& state, const BenchLayout& layout) {
    for (auto _ : state) benchmark::DoNotOptimize(renderLayoutFile(layout.card, layout.records, layout.fields));
}

const BenchLayout& layoutA() {
    static const BenchLayout l = makeOnePageByteLayout();
    return l;
}
const BenchLayout& layoutB() {
    static const BenchLayout l = makeOnePageBitLayout();
    return l;
}
const BenchLayout& layoutC() {
    static const BenchLayout l = makeEightPageByteLayout();
    return l;
}

#define KESTRIN_REFERENCE_BENCHMARKS(fn, name)                                                                  \
    BENCHMARK_CAPTURE(fn, a, layoutA())->Name(std::string("OnePageFields1896/") + name)->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(fn, b, layoutB())->Name(std::string("OnePageBits15168/") + name)->Unit(benchmark::kMillisecond);  \
    BENCHMARK_CAPTURE(fn, c, layoutC())->Name(std::string("EightPageFields1560/") + name)->Unit(benchmark::kMillisecond)

KESTRIN_REFERENCE_BENCHMARKS(openFromBytes, "OpenBytes");
KESTRIN_REFERENCE_BENCHMARKS(inihParse, "InihParse");
KESTRIN_REFERENCE_BENCHMARKS(renderOnly, "RenderLayoutFile");
KESTRIN_REFERENCE_BENCHMARKS(copyLines, "LineCopy");

// The same four over the scaling series' layouts, so that the ratios can be followed as the
// item count grows.
[[maybe_unused]] const bool scalingRegistered = [] {
    using Fn = void (*)(benchmark::State&, const BenchLayout&);
    for (int32_t n : {500, 1000, 2000, 4000}) {
        static std::map<int32_t, BenchLayout> layouts;
        const BenchLayout& layout = layouts.emplace(n, makeScaledByteLayout(n)).first->second;
        for (auto [fn, kind] : {std::pair<Fn, const char*>{openFromBytes, "OpenBytes"}, {inihParse, "InihParse"},
                                {renderOnly, "RenderLayoutFile"}, {copyLines, "LineCopy"}})
            benchmark::RegisterBenchmark((std::string("ScalingFields/") + kind + "/items:" + std::to_string(n)).c_str(),
                                         fn, std::cref(layout))
                ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
}  // namespace kestrin::bench
