#include "SaveOpenRunner.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "document/LayoutDocument.h"

namespace kestrin::bench {

namespace fs = std::filesystem;

namespace {

constexpr const char* kLayoutFileName = "Layout.IIF";

bool skipUnless(benchmark::State& state, const std::string& problem) {
    if (problem.empty()) return true;
    state.SkipWithError(problem.c_str());
    return false;
}

// A document holding the benchmark's layout, as the control holds it after building it.
struct Document {
    explicit Document(const BenchLayout& layout) {
        doc.fields() = layout.fields;
        doc.setLayout(layout.card, layout.records);
    }
    SilentPrompter prompter;
    LayoutDocument doc{prompter};
};

std::string saveOnce(const fs::path& file, const BenchLayout& layout) {
    Document d(layout);
    return d.doc.saveTo(file) ? std::string{} : "save failed: " + d.doc.lastSave().message;
}

}  // namespace

void reportItems(benchmark::State& state, const BenchLayout& layout) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * layout.records.size());
    state.counters["items"] = static_cast<double>(layout.records.size());
}

void runSaveBenchmark(benchmark::State& state, const BenchLayout& layout) {
    const TempFolder folder;
    const fs::path file = folder.path() / kLayoutFileName;
    if (!skipUnless(state, saveOnce(file, layout))) return;

    Document d(layout);
    for (auto _ : state) {
        if (!d.doc.saveTo(file)) {
            state.SkipWithError(("save failed: " + d.doc.lastSave().message).c_str());
            break;
        }
    }
    if (state.error_occurred()) return;

    if (!skipUnless(state, checkSavedFiles(file, layout, true))) return;
    std::error_code ec;
    state.counters["fileBytes"] = static_cast<double>(fs::file_size(file, ec));
    reportItems(state, layout);
}

void runOpenBenchmark(benchmark::State& state, const BenchLayout& layout) {
    const TempFolder folder;
    const fs::path file = folder.path() / kLayoutFileName;
    if (!skipUnless(state, saveOnce(file, layout))) return;
    if (!skipUnless(state, checkSavedFiles(file, layout, false))) return;

    SilentPrompter prompter;
    LayoutDocument doc(prompter);
    doc.fields() = layout.fields;
    LayoutReadResult result;
    for (auto _ : state) {
        result = doc.open(file);
        if (!result.opened || doc.records().size() != layout.records.size()) {
            state.SkipWithError(("open failed or lost items: " + result.message).c_str());
            break;
        }
        benchmark::DoNotOptimize(doc.records());
    }
    if (state.error_occurred()) return;

    // The last timed open must have produced exactly the saved layout.
    if (!result.warnings.empty()) return (void)skipUnless(state, "open warned: " + result.warnings.front());
    if (!skipUnless(state, compareCards(layout.card, *doc.card()))) return;
    if (!skipUnless(state, compareRecords(layout.records, doc.records()))) return;
    reportItems(state, layout);
}

}  // namespace kestrin::bench
