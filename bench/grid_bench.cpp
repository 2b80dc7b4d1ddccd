// The grid control: setting up, painting, sorting, copying, folding. Painting goes into an image,
// as on a platform without a display.

#include <benchmark/benchmark.h>
#include <fmt/xchar.h>

#include <QApplication>
#include <QClipboard>
#include <QImage>

#include <malloc.h>

#include <cstdlib>

#include "grid/cell.h"
#include "grid/grid_ctrl.h"
#include "grid/tree_column.h"

namespace {

using namespace sg::grid;

constexpr int rowCount = 100'000;
constexpr int columnCount = 10;
constexpr int treeRows = 20'000;

void setUp(CGridCtrl& grid) {
    grid.SetColumnCount(columnCount);
    grid.SetRowCount(rowCount + 1);
    grid.SetFixedRowCount(1);
    for (int row = 0; row <= rowCount; ++row) {
        // Rows come in no order.
        const unsigned mixed = static_cast<unsigned>(row) * 2654435761u;
        for (int column = 0; column < columnCount; ++column)
            grid.SetItemText(row, column, fmt::format(L"{:08x}.{}", mixed, column));
    }
}

CGridCtrl& filled() {
    static CGridCtrl* const grid = [] {
        auto* const made = new CGridCtrl;
        setUp(*made);
        made->resize(1920, 1080);
        made->show();
        QApplication::processEvents();
        return made;
    }();
    return *grid;
}

void setUpRows(benchmark::State& state) {
    for (auto _ : state) {
        CGridCtrl grid;
        setUp(grid);
        benchmark::DoNotOptimize(grid.GetCell(rowCount, 0));
        state.PauseTiming();
        grid.DeleteAllItems();
        state.ResumeTiming();
    }
}
BENCHMARK(setUpRows)->Unit(benchmark::kMillisecond);

void bytesOfPlainCell(benchmark::State& state) {
    double bytes = 0;
    for (auto _ : state) {
        CGridCtrl grid;
        const size_t before = mallinfo2().uordblks;
        grid.SetColumnCount(columnCount);
        grid.SetRowCount(rowCount);
        bytes = double(mallinfo2().uordblks - before) / rowCount / columnCount;
    }
    state.counters["bytes"] = bytes;
}
BENCHMARK(bytesOfPlainCell)->Unit(benchmark::kMillisecond);

void paintScreen(benchmark::State& state) {
    CGridCtrl& grid = filled();
    grid.EnsureVisible(static_cast<int>(state.range(0)), 0);
    QImage image(grid.size(), QImage::Format_RGB32);
    for (auto _ : state)
        grid.render(&image);
}
BENCHMARK(paintScreen)->Arg(1)->Arg(rowCount / 2)->Arg(rowCount)->Unit(benchmark::kMillisecond);

void sortRows(benchmark::State& state) {
    CGridCtrl& grid = filled();
    int column = 0;
    for (auto _ : state) {
        if (!grid.SortItems(CGridCtrl::CompareTexts, column, column % 2 == 0)) {
            state.SkipWithError("not sorted");
        }
        column = (column + 1) % columnCount;
    }
}
BENCHMARK(sortRows)->Unit(benchmark::kMillisecond);

void selectAllAndCopy(benchmark::State& state) {
    CGridCtrl& grid = filled();
    for (auto _ : state) {
        grid.SetSelectedRange({});
        grid.OnEditSelectAll();
        grid.OnEditCopy();
    }
    state.counters["characters"] = double(QApplication::clipboard()->text().size());
}
BENCHMARK(selectAllAndCopy)->Unit(benchmark::kMillisecond);

// Each row of the top level has 19 below it, in two levels.
void foldTree(benchmark::State& state) {
    CGridCtrl grid;
    grid.SetColumnCount(2);
    grid.SetRowCount(1);
    std::vector<uint8_t> levels(treeRows);
    for (size_t i = 0; i < levels.size(); ++i)
        levels[i] = i == 0 ? 1 : i % 20 == 1 ? 2 : 3;
    CTreeColumn& tree = grid.GetTreeColumn();
    if (!tree.TreeSetup(grid, 0, treeRows + 1, 1, levels, true, false, nullptr)) {
        state.SkipWithError("no tree");
    }
    grid.resize(1920, 1080);
    QImage image(grid.size(), QImage::Format_RGB32);
    for (auto _ : state) {
        tree.Collapse(1);
        grid.render(&image);
        tree.ShowLevel(128);
        grid.render(&image);
    }
}
BENCHMARK(foldTree)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int count, char** words) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QApplication application(count, words);
    benchmark::Initialize(&count, words);
    benchmark::RunSpecifiedBenchmarks();
    // The application goes first otherwise.
    std::quick_exit(0);
}
