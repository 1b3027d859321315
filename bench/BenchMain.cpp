// The benchmarks' main: Google Benchmark's console output, followed by a table of our open
// and our build of the layout file as multiples of inih's bare parse and of a plain line copy,
// from the medians of this run (or the single runs, without repetitions), in CPU time, which
// other work on the machine disturbs less than wall time.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            const std::string name = run.run_name.str();
            if (median || (run.run_type == Run::RT_Iteration && !medians_.count(name))) {
                if (!times_.count(name)) order_.push_back(name);
                times_[name] = run.GetAdjustedCPUTime();
            }
            if (median) medians_[run.run_name.str()] = true;
        }
    }

    // One row per layout with an open or a render: names "LAYOUT/KIND[/ARGS]", in the order run.
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::vector<std::pair<std::string, std::string>> rows;
        for (const std::string& name : order_) {
            const size_t slash = name.find('/');
            if (slash == std::string::npos) continue;
            const size_t end = name.find('/', slash + 1);
            const std::string kind = name.substr(slash + 1, end == std::string::npos ? end : end - slash - 1);
            if (kind != "OpenBytes" && kind != "RenderLayoutFile") continue;
            std::pair<std::string, std::string> row{name.substr(0, slash), end == std::string::npos ? "" : name.substr(end)};
            if (std::find(rows.begin(), rows.end(), row) == rows.end()) rows.push_back(std::move(row));
        }
        if (rows.empty()) return;
        std::printf("\n%-34s %14s %20s\n", "layout", "open / inih", "render / line copy");
        for (const auto& [layout, args] : rows) {
            const auto t = [&](const char* kind) { return time(layout + "/" + kind + args); };
            const double open = t("OpenBytes"), inih = t("InihParse"), render = t("RenderLayoutFile"), copy = t("LineCopy");
            std::printf("%-34s %14s %20s\n", (layout + args).c_str(), ratio(open, inih).c_str(), ratio(render, copy).c_str());
        }
    }

private:
    static std::string ratio(double ours, double reference) {
        if (!(ours > 0 && reference > 0)) return "-";
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", ours / reference);
        return text;
    }
    double time(const std::string& name) const {
        const auto it = times_.find(name);
        return it == times_.end() ? 0.0 : it->second;
    }
    std::map<std::string, double> times_;
    std::map<std::string, bool> medians_;
    std::vector<std::string> order_;  // names in the order first reported
};

}  // namespace

// glibc gives memory freed at the top of its heap back to the system, and maps big blocks
// afresh each time, so a benchmark that builds and frees a layout's records in every iteration
// pays the page faults of that memory every time, and how many depends on which benchmark ran
// before (on this virtual machine a fault costs microseconds). Keeping freed memory measures our
// code the same in any order; KESTRIN_BENCH_MALLOC=default measures with glibc's own settings.
static void keepFreedMemory() {
#if defined(__GLIBC__)
    const char* setting = std::getenv("KESTRIN_BENCH_MALLOC");
    if (setting && std::strcmp(setting, "default") == 0) return;
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 256 * 1024 * 1024);
#endif
}

int main(int argc, char** argv) {
    keepFreedMemory();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
