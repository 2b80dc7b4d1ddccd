#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>

#include <memory>
#include <string>

#include "host/dwg/files.h"
#include "host/dxf/files.h"
#include "host/seam/host.h"

// Drawings of simple entities as files: reading them and writing them again. `plain` are lines and
// circles with no more than they need, as a release 12 file of 28 MB for 300,000 has them; `full`
// and `binary` are what we write of the same drawing in release 2018. The first argument counts
// thousands of entities; that of DWG files is followed by their release.

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

std::string plainContent(benchmark::State& state) {
    std::string text = "  0\nSECTION\n  2\nENTITIES\n";
    const auto to = std::back_inserter(text);
    for (int i = 0; i < state.range(0) * 1000; ++i) {
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

void readDxf(AcDbDatabase& database, const std::string& content) {
    sg::dxf::read(database, content, L"bench.dxf");
}
void readDwg(AcDbDatabase& database, const std::string& content) {
    sg::dwg::read(database, content, L"bench.dwg");
}

std::string dxfOf(const AcDbDatabase& database, bool isBinary) {
    std::string content;
    sg::dxf::write(database, {sg::dxf::releaseNamed("2018"), isBinary},
                   [&](std::string_view bytes) {
                       content += bytes;
                       return true;
                   });
    return content;
}
std::string dwgOf(const AcDbDatabase& database, benchmark::State& state) {
    const sg::dxf::Release& release = *sg::dxf::releaseNamed(std::to_string(state.range(1)));
    const auto made = sg::dwg::write(database, release);
    return {made.bytes.begin(), made.bytes.end()};
}

std::unique_ptr<AcDbDatabase> drawing(benchmark::State& state) {
    host();
    auto database = std::make_unique<AcDbDatabase>(false, true);
    readDxf(*database, plainContent(state));
    return database;
}

size_t heldBytes() {
    const auto memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
}

template <class Read>
void load(benchmark::State& state, const std::string& content, const Read& read) {
    host();
    malloc_trim(0);
    const size_t before = heldBytes();
    for (auto _ : state) {
        auto database = std::make_unique<AcDbDatabase>(false, true);
        read(*database, content);
        state.PauseTiming();
        state.counters["held_MB"] = static_cast<double>(heldBytes() - before) / 1e6;
        database.reset();
        state.ResumeTiming();
    }
    state.counters["file_MB"] = static_cast<double>(content.size()) / 1e6;
}

// `write` answers how many bytes the file has.
template <class Write>
void save(benchmark::State& state, const Write& write) {
    const auto database = drawing(state);
    size_t bytes = 0;
    for (auto _ : state)
        bytes = write(*database);
    state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

void loadDxfPlain(benchmark::State& state) {
    load(state, plainContent(state), readDxf);
}
void loadDxfFull(benchmark::State& state) {
    load(state, dxfOf(*drawing(state), false), readDxf);
}
void loadDxfBinary(benchmark::State& state) {
    load(state, dxfOf(*drawing(state), true), readDxf);
}
void saveDxf(benchmark::State& state) {
    save(state, [](const AcDbDatabase& database) {
        size_t bytes = 0;
        sg::dxf::write(database, {}, [&](std::string_view piece) {
            bytes += piece.size();
            return true;
        });
        return bytes;
    });
}
void loadDwg(benchmark::State& state) {
    load(state, dwgOf(*drawing(state), state), readDwg);
}
void saveDwg(benchmark::State& state) {
    save(state, [&](const AcDbDatabase& database) { return dwgOf(database, state).size(); });
}

void small(benchmark::internal::Benchmark* each) {
    each->Unit(benchmark::kMillisecond)->Iterations(3)->Arg(300);
}
void large(benchmark::internal::Benchmark* each) {
    each->Unit(benchmark::kMillisecond)->Iterations(1)->Arg(3000);
}
void releases(benchmark::internal::Benchmark* each) {
    each->Unit(benchmark::kMillisecond)->Iterations(3)->Args({300, 2000})->Args({300, 2018});
}
BENCHMARK(loadDxfPlain)->Apply(small);
BENCHMARK(loadDxfFull)->Apply(small);
BENCHMARK(loadDxfBinary)->Apply(small);
BENCHMARK(saveDxf)->Apply(small);
BENCHMARK(loadDxfPlain)->Apply(large);
BENCHMARK(saveDxf)->Apply(large);
BENCHMARK(loadDwg)->Apply(releases);
BENCHMARK(saveDwg)->Apply(releases);

}  // namespace

BENCHMARK_MAIN();
