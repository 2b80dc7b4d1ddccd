#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>

#include "host/editor/documents.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/lisp/interpreter.h"
#include "host/rx/module_loader.h"
#include "host/seam/host.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/line.h"
#include "platform/rx/messages.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);

// Selections in a drawing of 300,000 entities: lines in rows of 600, one in ten of them a reference
// of the block "DOOR" or "WINDOW".
namespace {

constexpr int kEntities = 300'000;
constexpr int kRow = 600;

class Drawing {
  public:
    Drawing() : host_(options()) {
        host_.start();
        fill(*host_.documents().current()->database());
    }

    sg::DrawingSelection& selection() { return host_.documents().current()->selection(); }
    AcDbDatabase& database() { return *host_.documents().current()->database(); }
    bool run(const wchar_t* program) {
        sg::lisp::Interpreter& in = host_.interpreter();
        in.enterNamespace(&host_.documents().current()->variables());
        return !in.runProtected([&] { return in.loadText(program, L"bench"); }).failed;
    }

  private:
    static sg::HostOptions options() {
        sg::HostOptions options;
        options.staticModules = {{L"SwiftGate2017.arx", acrxEntryPoint}};
        options.modules = {L"SwiftGate2017.arx"};
        options.standardOutput = options.standardError = [](std::string_view) { return true; };
        return options;
    }

    static AcDbObjectId makeBlock(AcDbDatabase& database, const wchar_t* name) {
        AcDbBlockTable* table = nullptr;
        database.getBlockTable(table, AcDb::kForWrite);
        auto* const block = new AcDbBlockTableRecord;
        block->setName(name);
        AcDbObjectId id;
        table->add(id, block);
        auto* const line = new AcDbLine({0, 0, 0}, {0.5, 0.5, 0});
        block->appendAcDbEntity(line);
        line->close();
        block->close();
        table->close();
        return id;
    }

    static void fill(AcDbDatabase& database) {
        const AcDbObjectId blocks[] = {makeBlock(database, L"DOOR"),
                                       makeBlock(database, L"WINDOW")};
        AcDbBlockTableRecord* space = nullptr;
        acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite);
        for (int i = 0; i < kEntities; ++i) {
            const AcGePoint3d at(i % kRow, i / kRow, 0);
            std::unique_ptr<AcDbEntity> entity;
            if (i % 10 == 0) {
                entity = std::make_unique<AcDbBlockReference>(at, blocks[i / 10 % 2]);
            } else {
                entity = std::make_unique<AcDbLine>(at, at + AcGeVector3d(0.5, 0.5, 0));
            }
            space->appendAcDbEntity(entity.get());
            entity.release()->close();
        }
        space->close();
    }

    sg::Host host_;
};

Drawing& drawing() {
    static Drawing made;
    return made;
}

// About a thousand entities are within.
void window(benchmark::State& state) {
    const AcGePoint3d corners[] = {{100.1, 100.1, 0}, {131.9, 131.9, 0}};
    size_t found = 0;
    for (auto _ : state)
        found = drawing().selection().inRegion(sg::RegionMethod::crossing, corners).size();
    state.counters["found"] = static_cast<double>(found);
}
BENCHMARK(window)->Unit(benchmark::kMillisecond);

// The first windows after the drawing was made, or after much has changed: `untold` of them without
// their time.
void windowWithoutIndex(benchmark::State& state, int untold) {
    const AcGePoint3d corners[] = {{100.1, 100.1, 0}, {131.9, 131.9, 0}};
    for (auto _ : state) {
        state.PauseTiming();
        auto fresh = std::make_unique<sg::DrawingSelection>(drawing().database());
        for (int i = 0; i < untold; ++i)
            fresh->inRegion(sg::RegionMethod::crossing, corners);
        state.ResumeTiming();
        benchmark::DoNotOptimize(fresh->inRegion(sg::RegionMethod::crossing, corners).size());
        state.PauseTiming();
        fresh.reset();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(windowWithoutIndex, first, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(windowWithoutIndex, second, 1)->Unit(benchmark::kMillisecond);

// One entity in a hundred has changed since the last window.
void windowAfterChanges(benchmark::State& state) {
    const AcGePoint3d corners[] = {{100.1, 100.1, 0}, {131.9, 131.9, 0}};
    sg::DrawingSelection& selection = drawing().selection();
    selection.inRegion(sg::RegionMethod::crossing, corners);
    for (auto _ : state) {
        state.PauseTiming();
        drawing().run(L"(repeat 3000 (entmake '((0 . \"POINT\") (10 -5.0 -5.0 0.0))))");
        state.ResumeTiming();
        benchmark::DoNotOptimize(selection.inRegion(sg::RegionMethod::crossing, corners).size());
    }
}
BENCHMARK(windowAfterChanges)->Unit(benchmark::kMillisecond)->Iterations(5);

void program(benchmark::State& state, const wchar_t* text) {
    for (auto _ : state) {
        if (!drawing().run(text)) state.SkipWithError("the program failed");
    }
}
BENCHMARK_CAPTURE(program, ssgetX_all, L"(ssgetX-all)")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(program, ssgetX_block, L"(ssgetX-block \"door\")")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(program, ssget_X, L"(ssget \"_X\")")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(program, ssget_X_filtered, L"(ssget \"_X\" '((0 . \"INSERT\") (2 . \"DOOR\")))")
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
