// The benchmarks' main: Google Benchmark's console output, followed by a table of our open
// and our build of the layout file as multiples of inih's bare parse and of a plain line copy,
// from the medians of this run (or the single runs, without repetitions), in CPU time, which
// other work on the machine disturbs less than wall time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (median || (run.run_type == Run::RT_Iteration && !medians_.count(run.run_name.str())))
                times_[run.run_name.str()] = run.GetAdjustedCPUTime();
            if (median) medians_[run.run_name.str()] = true;
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        bool header = false;
        for (const char* layout : {"OnePageFields1896", "OnePageBits15168", "EightPageFields1560"}) {
            const std::string l = layout;
            const double open = time(l + "/OpenBytes"), inih = time(l + "/InihParse");
            const double render = time(l + "/RenderLayoutFile"), copy = time(l + "/LineCopy");
            if (!(open > 0 && inih > 0) && !(render > 0 && copy > 0)) continue;
            if (!header) std::printf("\n%-22s %14s %20s\n", "layout", "open / inih", "render / line copy");
            header = true;
            std::printf("%-22s %14.2f %20.2f\n", layout, inih > 0 ? open / inih : 0.0, copy > 0 ? render / copy : 0.0);
        }
    }

private:
    double time(const std::string& name) const {
        const auto it = times_.find(name);
        return it == times_.end() ? 0.0 : it->second;
    }
    std::map<std::string, double> times_;
    std::map<std::string, bool> medians_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
