#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>

#include "host/seam/host.h"
#include "platform/db/database.h"
#include "platform/ge/point3d.h"

// The drawing database at a million lines: making them, and opening, reading and closing each.

namespace {

// As much as a line holds.
class BenchLine : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(BenchLine)
    AcGePoint3d start, end;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double thickness = 0;
};

}  // namespace

ACRX_CONS_DEFINE_MEMBERS(BenchLine, AcDbEntity, 0)

namespace {

constexpr int kLines = 1'000'000;

sg::HostOptions options() {
    sg::HostOptions made;
    made.registryFile = L"/dev/null";
    made.locale = L"en-US";
    return made;
}

// A host and a drawing for as long as the program runs a benchmark.
struct Drawing {
    sg::Host host{options()};
    std::unique_ptr<AcDbDatabase> database;

    Drawing() {
        BenchLine::rxInit();
        acrxBuildClassHierarchy();
        database = std::make_unique<AcDbDatabase>(true, true);
    }
    ~Drawing() { database.reset(); }

    // One by one, the block opened for each, as LISP programs make them.
    void fill() {
        for (int i = 0; i < kLines; ++i) {
            AcDbBlockTableRecord* space = nullptr;
            acdbOpenObject(space, database->modelSpaceId(), AcDb::kForWrite);
            auto* const line = new BenchLine;
            line->end.x = i;
            space->appendAcDbEntity(line);
            line->close();
            space->close();
        }
    }
};

void makeLines(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto drawing = std::make_unique<Drawing>();
        malloc_trim(0);
        const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.ResumeTiming();
        drawing->fill();
        state.PauseTiming();
        const size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters["bytes/line"] = static_cast<double>(after - before) / kLines;
        drawing.reset();
        state.ResumeTiming();
    }
}

void openLines(benchmark::State& state) {
    Drawing drawing;
    drawing.fill();
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, drawing.database->modelSpaceId());
    for (auto _ : state) {
        double sum = 0;
        for (const AcDbObjectId id : space->entityIds()) {
            BenchLine* line = nullptr;
            if (acdbOpenObject(line, id) != Acad::eOk) std::abort();
            sum += line->end.x;
            line->close();
        }
        benchmark::DoNotOptimize(sum);
    }
    space->close();
}

void changeLines(benchmark::State& state) {
    Drawing drawing;
    drawing.fill();
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, drawing.database->modelSpaceId());
    for (auto _ : state) {
        for (const AcDbObjectId id : space->entityIds()) {
            BenchLine* line = nullptr;
            if (acdbOpenObject(line, id, AcDb::kForWrite) != Acad::eOk) std::abort();
            line->setColorIndex(3);
            line->close();
        }
    }
    space->close();
}

BENCHMARK(makeLines)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(openLines)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(changeLines)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
