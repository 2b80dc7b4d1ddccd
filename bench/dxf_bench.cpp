#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/resource.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "host/dxf/files.h"
#include "host/seam/host.h"

// Drawings of simple entities as files: reading them and writing them again. `plain` are lines and
// circles with no more than they need, as a release 12 file of 28 MB for 300,000 has them; `full`
// is what we write of the same drawing in release 2018. The argument counts thousands of entities.

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

std::string plainContent(int thousands) {
    std::string text = "  0\nSECTION\n  2\nENTITIES\n";
    const auto to = std::back_inserter(text);
    for (int i = 0; i < thousands * 1000; ++i) {
        const double x = i * 1.2503 + 0.3271;
        if (i % 3 == 0) {
            fmt::format_to(to,
                           "  0\nCIRCLE\n  8\nLayer{}\n 62\n     3\n 10\n{}\n 20\n{:.4f}\n 30\n"
                           "0.0\n 40\n{:.4f}\n",
                           i % 20, x, x / 3, x / 100 + 1);
        } else {
            fmt::format_to(to,
                           "  0\nLINE\n  8\nLayer{}\n 10\n{}\n 20\n{:.4f}\n 30\n0.0\n 11\n{:.4f}\n"
                           " 21\n{:.4f}\n 31\n0.0\n",
                           i % 20, x, x / 3, x + 1, x / 7);
        }
    }
    return text + "  0\nENDSEC\n  0\nEOF\n";
}

std::unique_ptr<AcDbDatabase> loaded(const std::string& content) {
    auto database = std::make_unique<AcDbDatabase>(false, true);
    sg::dxf::read(*database, content, L"bench.dxf");
    return database;
}

std::string written(const AcDbDatabase& database, bool isBinary = false) {
    std::string content;
    sg::dxf::write(database, {sg::dxf::releaseNamed("2018"), isBinary}, [&](std::string_view bytes) {
        content += bytes;
        return true;
    });
    return content;
}

void load(benchmark::State& state, const std::string& content) {
    malloc_trim(0);
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    for (auto _ : state) {
        auto database = loaded(content);
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

void loadPlain(benchmark::State& state) {
    host();
    load(state, plainContent(static_cast<int>(state.range(0))));
}

void loadFull(benchmark::State& state) {
    host();
    load(state, written(*loaded(plainContent(static_cast<int>(state.range(0))))));
}

void loadBinary(benchmark::State& state) {
    host();
    load(state, written(*loaded(plainContent(static_cast<int>(state.range(0)))), true));
}

void save(benchmark::State& state) {
    host();
    const auto database = loaded(plainContent(static_cast<int>(state.range(0))));
    size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        sg::dxf::write(*database, {}, [&](std::string_view piece) {
            bytes += piece.size();
            return true;
        });
    }
    state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

BENCHMARK(loadPlain)->Unit(benchmark::kMillisecond)->Arg(300)->Iterations(3);
BENCHMARK(loadFull)->Unit(benchmark::kMillisecond)->Arg(300)->Iterations(3);
BENCHMARK(loadBinary)->Unit(benchmark::kMillisecond)->Arg(300)->Iterations(3);
BENCHMARK(save)->Unit(benchmark::kMillisecond)->Arg(300)->Iterations(3);
BENCHMARK(loadPlain)->Unit(benchmark::kMillisecond)->Arg(3000)->Iterations(1);
BENCHMARK(save)->Unit(benchmark::kMillisecond)->Arg(3000)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
