// Painting the densest memory map: the whole 256-block page of a 16 kbit one-page card with
// a one-byte item on every free byte, as the item editor shows it in one grid.
#ifdef KESTRIN_BENCH_WIDGETS
#include <benchmark/benchmark.h>

#include <QTableWidget>
#include <memory>

#include "BenchApplication.h"
#include "BenchLayouts.h"
#include "preview/PagePainter.h"

namespace kestrin::bench {
namespace {

// The last byte of the page must show the last item in its colour.
void checkLastCell(benchmark::State& state, const QTableWidget& grid, const BenchLayout& layout) {
    const ItemRecord& last = layout.records[layout.records.size() - 1];
    const QTableWidgetItem* cell = grid.item(grid.rowCount() - 1, 8);
    if (grid.rowCount() != 257 || !cell || cell->text() != QString::fromStdString(last.name) ||
        cell->background().color() != memoryMapColor(last.color))
        state.SkipWithError("the last byte cell does not show the last item");
    state.counters["items"] = layout.records.size();
}

// Repainting a grid that already shows the page: what a view switch back and forth costs.
void paintWholePageAgain(benchmark::State& state) {
    ensureApplication();
    static const BenchLayout layout = makeOnePageByteLayout();
    const CPage& page = *layout.card.page(0);
    std::unique_ptr<QTableWidget> grid(createPageGrid(nullptr, "grdBench"));
    paintPage(*grid, page, layout.records, true);
    for (auto _ : state) paintPage(*grid, page, layout.records, true);
    checkLastCell(state, *grid, layout);
}

// Every cell changes each time: the grid alternates with an empty page of the same size.
void paintWholePageChanged(benchmark::State& state) {
    ensureApplication();
    static const BenchLayout layout = makeOnePageByteLayout();
    const RecordArray none;
    const CPage& page = *layout.card.page(0);
    std::unique_ptr<QTableWidget> grid(createPageGrid(nullptr, "grdBench"));
    for (auto _ : state) {
        state.PauseTiming();
        paintPage(*grid, page, none, true);
        state.ResumeTiming();
        paintPage(*grid, page, layout.records, true);
    }
    checkLastCell(state, *grid, layout);
}

// A new grid each time: the cells are made as well as filled.
void paintWholePageFresh(benchmark::State& state) {
    ensureApplication();
    static const BenchLayout layout = makeOnePageByteLayout();
    const CPage& page = *layout.card.page(0);
    std::unique_ptr<QTableWidget> grid;
    for (auto _ : state) {
        state.PauseTiming();
        grid.reset(createPageGrid(nullptr, "grdBench"));
        state.ResumeTiming();
        paintPage(*grid, page, layout.records, true);
    }
    checkLastCell(state, *grid, layout);
}

BENCHMARK(paintWholePageAgain)->Name("OnePageFields1896/PaintWholePage/Again")->Unit(benchmark::kMillisecond);
BENCHMARK(paintWholePageChanged)->Name("OnePageFields1896/PaintWholePage/Changed")->Unit(benchmark::kMillisecond);
BENCHMARK(paintWholePageFresh)->Name("OnePageFields1896/PaintWholePage/FreshGrid")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin::bench
#endif
