#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>

#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "host/seam/host.h"
#include "platform/db/database.h"
#include "platform/db/line.h"

// The drawing database at a million lines: making them, opening, reading, changing and closing
// each, and the same from LISP.

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

    Drawing() { database = std::make_unique<AcDbDatabase>(true, true); }
    ~Drawing() { database.reset(); }

    // One by one, the block opened for each, as modules do it.
    void fill() {
        for (int i = 0; i < kLines; ++i) {
            AcDbBlockTableRecord* space = nullptr;
            acdbOpenObject(space, database->modelSpaceId(), AcDb::kForWrite);
            auto* const line = new AcDbLine({i + 0.0, 0, 0}, {i + 0.0, 1, 0});
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
            AcDbLine* line = nullptr;
            if (acdbOpenObject(line, id) != Acad::eOk) std::abort();
            sum += line->endPoint().x;
            line->close();
        }
        benchmark::DoNotOptimize(sum);
    }
    space->close();
}

// What a LISP program does to make the lines, to walk over them, and to ask each for its layer.
const wchar_t* const kMaking =
    LR"((setq x 0)
    (repeat 1000000
      (entmake (list '(0 . "LINE") (list 10 x 0.0 0.0) (list 11 x 1.0 0.0)))
      (setq x (1+ x))))";
const wchar_t* const kWalking =
    LR"((setq e (entnext))
    (while e (setq e (entnext e))))";
const wchar_t* const kListing =
    LR"((setq e (entnext))
    (while e (assoc 8 (entget e)) (setq e (entnext e))))";

void run(sg::Host& host, const wchar_t* program) {
    sg::lisp::Interpreter& in = host.interpreter();
    in.enterNamespace(&host.documents().current()->variables());
    in.runProtected([&] { return in.loadText(program, L"bench"); });
}

void makeFromLisp(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto host = std::make_unique<sg::Host>(options());
        host->start();
        state.ResumeTiming();
        run(*host, kMaking);
        state.PauseTiming();
        host.reset();
        state.ResumeTiming();
    }
}

void runOnLines(benchmark::State& state, const wchar_t* program) {
    sg::Host host(options());
    host.start();
    run(host, kMaking);
    for (auto _ : state)
        run(host, program);
}

void changeLines(benchmark::State& state) {
    Drawing drawing;
    drawing.fill();
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, drawing.database->modelSpaceId());
    for (auto _ : state) {
        for (const AcDbObjectId id : space->entityIds()) {
            AcDbLine* line = nullptr;
            if (acdbOpenObject(line, id, AcDb::kForWrite) != Acad::eOk) std::abort();
            line->setColorIndex(3);
            line->close();
        }
    }
    space->close();
}

BENCHMARK(makeLines)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(openLines)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(makeFromLisp)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(runOnLines, walk, kWalking)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(runOnLines, list, kListing)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(changeLines)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
