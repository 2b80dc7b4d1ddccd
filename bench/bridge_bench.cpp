// The road of a LISP call into a module and back: one call with a string argument and a real
// result, guard and lock included; and a query's result of 200,000 records of 6 fields as a LISP
// list.

#include <benchmark/benchmark.h>
#include <fmt/xchar.h>

#include <vector>

#include "bridge/call_guard.h"
#include "bridge/function_table.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "host/seam/host.h"
#include "platform/lisp/external_functions.h"
#include "platform/rx/modules.h"

namespace {

using namespace sg;

int lengthOfText() {
    resbuf* const list = acedGetArgs();
    const resbuf* at = list;
    std::wstring text;
    const bool ok = nextString(at, text);
    acutRelRb(list);
    if (!ok) return kLispWrongType;
    acedRetReal(static_cast<double>(text.size()));
    return kLispOk;
}

COleSafeArray& records() {
    static COleSafeArray array = [] {
        std::vector<COleVariant> elements;
        for (int record = 0; record < 200'000; ++record) {
            elements.push_back(COleVariant::fromString(kNewRecordMarker));
            for (int field = 0; field < 6; ++field) {
                elements.push_back(COleVariant::fromString(fmt::format(L"sField{}", field)));
                if (field % 3 == 0) {
                    elements.push_back(COleVariant::fromInt32(record));
                } else if (field % 3 == 1) {
                    elements.push_back(COleVariant::fromDouble(record * 0.5));
                } else {
                    elements.push_back(COleVariant::fromString(fmt::format(L"value {}", record)));
                }
            }
        }
        COleSafeArray made;
        made.CreateFromVariants(std::move(elements));
        return made;
    }();
    return array;
}

int allRecords() {
    returnRecordList(records());
    return kLispOk;
}

template <LispImplementation Implementation>
int handler() {
    return callGuard(Implementation);
}

constexpr FunctionRow kRows[] = {{L"bench-length", handler<lengthOfText>},
                                 {L"bench-records", handler<allRecords>}};

AcRx::AppRetCode entryPoint(AcRx::AppMsgCode message, void*) {
    if (message == AcRx::kLoadDwgMsg) registerFunctions(kRows, std::size(kRows), 0);
    return AcRx::kRetOK;
}

Host& host() {
    static Host theHost([] {
        HostOptions options;
        options.staticModules.emplace_back(L"bench.arx", entryPoint);
        options.modules.push_back(L"bench.arx");
        return options;
    }());
    return theHost;
}

void runProgram(benchmark::State& state, const wchar_t* program) {
    lisp::Interpreter& in = host().interpreter();
    in.enterNamespace(&host().documents().current()->variables());
    for (auto _ : state) {
        const auto outcome = in.runTopLevel([&] { return in.loadText(program, L"bench"); });
        if (outcome.failed) state.SkipWithError("the program failed");
    }
}

// A loop of 1,000,000 calls, and the same loop around nothing, to be subtracted.
void nativeCalls(benchmark::State& state) {
    runProgram(state, L"(repeat 1000000 (bench-length \"Supply air\"))");
}
void emptyLoop(benchmark::State& state) {
    runProgram(state, L"(repeat 1000000 nil)");
}
BENCHMARK(nativeCalls)->Unit(benchmark::kMillisecond)->Name("million-native-calls");
BENCHMARK(emptyLoop)->Unit(benchmark::kMillisecond)->Name("million-turns-of-nothing");

void recordList(benchmark::State& state) {
    records();
    runProgram(state, L"(bench-records)");
}
BENCHMARK(recordList)->Unit(benchmark::kMillisecond)->Name("returnRecordList-200k-x-6");

// A million live cells while a program makes garbage: the collector's longest pause.
void collectorPauses(benchmark::State& state) {
    lisp::Interpreter& in = host().interpreter();
    in.enterNamespace(&host().documents().current()->variables());
    in.runTopLevel([&] {
        return in.loadText(L"(setq live nil) (repeat 1000000 (setq live (cons 1 live)))", L"");
    });
    in.heap().collectFully();
    in.heap().resetLongestPause();
    const size_t before = in.heap().collections();
    for (auto _ : state) {
        in.runTopLevel(
            [&] { return in.loadText(L"(repeat 10000000 (setq garbage (list 1 2)))", L""); });
    }
    state.counters["collections"] = static_cast<double>(in.heap().collections() - before);
    state.counters["longest_pause_ms"] = in.heap().longestPause() * 1000;
    in.runTopLevel([&] { return in.loadText(L"(setq live nil garbage nil)", L""); });
}
BENCHMARK(collectorPauses)->Unit(benchmark::kMillisecond)->Iterations(1)->Name("collector");

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    host().start();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
