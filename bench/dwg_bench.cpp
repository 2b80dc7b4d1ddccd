#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>

#include <memory>
#include <string>

#include "host/dwg/files.h"
#include "host/seam/host.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/db/line.h"

// Drawings of simple entities as DWG files: reading them and writing them again, in the two
// releases that are written most. The argument counts thousands of entities, of which each third
// is a circle and the others are lines.

namespace {

sg::Host& host() {
    static sg::Host made([] {
        sg::HostOptions options;
        options.registryFile = L"/dev/null";
        options.locale = L"en-US";
        return options;
    }());
    return made;
}

std::unique_ptr<AcDbDatabase> drawing(int thousands) {
    auto database = std::make_unique<AcDbDatabase>(true, true);
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, database->modelSpaceId(), AcDb::kForWrite);
    for (int i = 0; i < thousands * 1000; ++i) {
        const double x = i * 1.2503 + 0.3271;
        AcDbEntity* entity = nullptr;
        if (i % 3 == 0) {
            entity = new AcDbCircle(AcGePoint3d(x, x / 3, 0), AcGeVector3d(0, 0, 1), x / 100 + 1);
        } else {
            entity = new AcDbLine(AcGePoint3d(x, x / 3, 0), AcGePoint3d(x + 1, x / 7, 0));
        }
        AcDbObjectId id;
        space->appendAcDbEntity(id, entity);
        entity->close();
    }
    space->close();
    return database;
}

const sg::dxf::Release& releaseOf(benchmark::State& state) {
    return *sg::dxf::releaseNamed(std::to_string(state.range(1)));
}

std::string written(const AcDbDatabase& database, const sg::dxf::Release& release) {
    const auto made = sg::dwg::write(database, release);
    return {made.bytes.begin(), made.bytes.end()};
}

void load(benchmark::State& state) {
    host();
    const std::string content =
        written(*drawing(static_cast<int>(state.range(0))), releaseOf(state));
    malloc_trim(0);
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    for (auto _ : state) {
        auto database = std::make_unique<AcDbDatabase>(false, true);
        sg::dwg::read(*database, content, L"bench.dwg");
        state.PauseTiming();
        const size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters["held_MB"] = static_cast<double>(after - before) / 1e6;
        database.reset();
        state.ResumeTiming();
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["file_MB"] = static_cast<double>(content.size()) / 1e6;
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1e3;
}

void save(benchmark::State& state) {
    host();
    const auto database = drawing(static_cast<int>(state.range(0)));
    size_t bytes = 0;
    for (auto _ : state)
        bytes = sg::dwg::write(*database, releaseOf(state)).bytes.size();
    state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

BENCHMARK(load)->Unit(benchmark::kMillisecond)->Args({300, 2000})->Iterations(3);
BENCHMARK(load)->Unit(benchmark::kMillisecond)->Args({300, 2018})->Iterations(3);
BENCHMARK(save)->Unit(benchmark::kMillisecond)->Args({300, 2000})->Iterations(3);
BENCHMARK(save)->Unit(benchmark::kMillisecond)->Args({300, 2018})->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
