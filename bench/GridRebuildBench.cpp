// Rebuilding the item grid and the database-update grid after a change, on the largest
// layouts a one-page card holds: 1,896 one-byte items (target under 16 ms) and 15,168
// one-bit items (target under 50 ms). A table view shows the item grid, so what the view
// does with the reset (header sections, layout, the visible rows' paint) is measured too.
#ifdef KESTRIN_BENCH_WIDGETS
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QHeaderView>
#include <QTableView>

#include "BenchApplication.h"
#include "BenchLayouts.h"
#include "control/DbUpdateGridModel.h"
#include "control/ItemGridModel.h"

namespace kestrin::bench {
namespace {

void rebuildGrids(benchmark::State& state, const BenchLayout& layout) {
    ensureApplication();
    const Translator translator;
    ItemGridModel items;
    DbUpdateGridModel updates;
    QTableView view;
    view.setModel(&items);
    view.verticalHeader()->hide();
    for (int c = 0; c < items.columnCount(); ++c) view.setColumnWidth(c, items.columnWidthPixels(c, view.logicalDpiX()));
    view.resize(1000, 600);
    view.show();
    QApplication::processEvents();

    for (auto _ : state) {
        items.rebuild(layout.records, translator);
        updates.rebuild(layout.records, translator);
        // The view lays itself out and paints on the next pass of the event loop.
        QApplication::processEvents();
    }

    const int expected = layout.records.size();
    if (items.rowCount() != expected || items.itemCount() != expected || view.model()->rowCount() != expected ||
        updates.rowCount() != 1 || updates.itemCount() != 0)
        state.SkipWithError("the grids do not hold one row per item");
    else if (items.data(items.index(expected - 1, ItemGridModel::ColName)).toString().toStdString() !=
             layout.records[expected - 1].name)
        state.SkipWithError("the last row does not show the last item");
    state.counters["rows"] = expected;
}

void rebuildByteGrid(benchmark::State& state) {
    static const BenchLayout layout = makeOnePageByteLayout();
    rebuildGrids(state, layout);
}

void rebuildBitGrid(benchmark::State& state) {
    static const BenchLayout layout = makeOnePageBitLayout();
    rebuildGrids(state, layout);
}

BENCHMARK(rebuildByteGrid)->Name("OnePageFields1896/GridRebuild")->Unit(benchmark::kMillisecond);
BENCHMARK(rebuildBitGrid)->Name("OnePageBits15168/GridRebuild")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrin::bench
#endif
