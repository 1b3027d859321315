#include "SaveOpenRunner.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "persist/LayoutReader.h"
#include "persist/LayoutSaver.h"

namespace kestrin::bench {

namespace fs = std::filesystem;

namespace {

constexpr const char* kLayoutFileName = "Layout.IIF";

bool skipUnless(benchmark::State& state, const std::string& problem) {
    if (problem.empty()) return true;
    state.SkipWithError(problem.c_str());
    return false;
}

std::string saveOnce(const fs::path& file, const BenchLayout& layout) {
    SilentPrompter prompter;
    const Translator translator;
    const SaveOutcome out = saveLayout(file, &layout.card, layout.records, layout.fields, prompter, translator);
    return out.saved ? std::string{} : "save failed: " + out.message;
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

    SilentPrompter prompter;
    const Translator translator;
    for (auto _ : state) {
        const SaveOutcome out = saveLayout(file, &layout.card, layout.records, layout.fields, prompter, translator);
        if (!out.saved) {
            state.SkipWithError(("save failed: " + out.message).c_str());
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
    CIClass card;
    RecordArray records;
    LayoutReadResult result;
    for (auto _ : state) {
        result = readLayout(file, card, records, prompter, &layout.fields);
        if (!result.opened || records.size() != layout.records.size()) {
            state.SkipWithError(("open failed or lost items: " + result.message).c_str());
            break;
        }
        benchmark::DoNotOptimize(records);
    }
    if (state.error_occurred()) return;

    // The last timed open must have produced exactly the saved layout.
    if (!result.warnings.empty()) return (void)skipUnless(state, "open warned: " + result.warnings.front());
    if (!skipUnless(state, compareCards(layout.card, card))) return;
    if (!skipUnless(state, compareRecords(layout.records, records))) return;
    reportItems(state, layout);
}

}  // namespace kestrin::bench
