// The database engine on a file that it made itself (parts.h), opened shared.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/recordset/recordset.h"
#include "parts.h"

namespace {

using namespace sg::jet;
using namespace sg::bench;

const std::wstring& filled() {
    static const std::wstring path = [] {
        const std::wstring file = folder().file("filled.mdb");
        Database database = Database::create(file);
        createTable(database, partsTable(L"tblPart"));
        fill(database, L"tblPart", rowCount, part);
        return file;
    }();
    return path;
}

void scanAllValues(benchmark::State& state) {
    Database database = Database::open(filled(), OpenMode::Shared);
    TableRecordset rows(database, L"tblPart");
    std::vector<Value> values(6);
    for (auto _ : state) {
        int count = 0;
        for (rows.moveFirst(); !rows.isEof(); rows.move(1), ++count) {
            for (size_t column = 0; column < values.size(); ++column) {
                rows.value(column, values[column]);
            }
            benchmark::DoNotOptimize(values.data());
        }
        if (count != rowCount) state.SkipWithError("rows are missing");
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(scanAllValues)->Unit(benchmark::kMillisecond);

// As a program that has no recordset reads: for export, compaction and queries.
void scanWithCursor(benchmark::State& state) {
    Database database = Database::open(filled(), OpenMode::Shared);
    std::vector<Value> values(6);
    for (auto _ : state) {
        const Database::ReadScope scope(database);
        RowCursor rows = database.table(L"tblPart").scan();
        while (rows.next()) {
            for (size_t column = 0; column < values.size(); ++column) {
                rows.value(column, values[column]);
            }
            benchmark::DoNotOptimize(values.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(scanWithCursor)->Unit(benchmark::kMillisecond);

void seekNumber(benchmark::State& state) {
    Database database = Database::open(filled(), OpenMode::Shared);
    TableRecordset rows(database, L"tblPart");
    rows.setIndex(L"ixPart");
    unsigned next = 0;
    for (auto _ : state) {
        next = next * 1664525u + 1013904223u;
        const Value key = static_cast<int32_t>(next % rowCount);
        if (!rows.seek(SeekOperator::Equal, {&key, 1})) state.SkipWithError("not found");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(seekNumber);

void seekText(benchmark::State& state) {
    Database database = Database::open(filled(), OpenMode::Shared);
    TableRecordset rows(database, L"tblPart");
    rows.setIndex(L"sKey");
    std::vector<Value> keys;
    for (int row = 0; row < rowCount; row += 7) {
        keys.push_back(part(row)[1]);
    }
    size_t next = 0;
    for (auto _ : state) {
        next = (next + 7919) % keys.size();
        if (!rows.seek(SeekOperator::Equal, {&keys[next], 1})) state.SkipWithError("not found");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(seekText);

// The rows are made before the time is taken.
void appendInOneTransaction(benchmark::State& state) {
    std::vector<std::vector<Value>> rows;
    for (int row = 0; row < rowCount; ++row) {
        rows.push_back(part(row));
    }
    const std::wstring path = folder().file("append.mdb");
    Database::create(path).close();
    Database database = Database::open(path, OpenMode::Shared);
    for (auto _ : state) {
        state.PauseTiming();
        if (database.object(L"tblPart", ObjectType::Table) != nullptr) {
            dropTable(database, L"tblPart");
        }
        createTable(database, partsTable(L"tblPart"));
        std::vector<std::vector<Value>> copies = rows;
        state.ResumeTiming();
        database.beginTransaction();
        TableWriter& writer = database.writer(L"tblPart");
        for (std::vector<Value>& row : copies) {
            writer.insert(row);
        }
        database.commitTransaction();
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(appendInOneTransaction)->Unit(benchmark::kMillisecond);

void appendEachByItself(benchmark::State& state) {
    const std::wstring path = folder().file("single.mdb");
    Database made = Database::create(path);
    createTable(made, partsTable(L"tblPart"));
    made.close();
    Database database = Database::open(path, OpenMode::Shared);
    TableRecordset rows(database, L"tblPart");
    int next = 0;
    for (auto _ : state) {
        const std::vector<Value> values = part(next++);
        rows.addNew();
        for (size_t column = 0; column < values.size(); ++column) {
            rows.setValue(column, values[column]);
        }
        rows.update();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(appendEachByItself);

void openBigFile(benchmark::State& state) {
    const std::wstring path = folder().file("big.mdb");
    std::filesystem::copy_file(sg::toUtf8(filled()), sg::toUtf8(path),
                               std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(sg::toUtf8(path), uint64_t(1) << 30);
    for (auto _ : state) {
        const Database database = Database::open(path, OpenMode::Shared);
        benchmark::DoNotOptimize(database.objects().size());
    }
    std::filesystem::remove(sg::toUtf8(path));
}
BENCHMARK(openBigFile)->Unit(benchmark::kMillisecond);

}  // namespace

// The file that the comparison with another program's export reads is made here too: with a path as
// the only argument it is written there and nothing is measured.
int main(int argc, char** argv) {
    if (argc == 2 && argv[1][0] != '-') {
        std::filesystem::copy_file(sg::toUtf8(filled()), argv[1],
                                   std::filesystem::copy_options::overwrite_existing);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
