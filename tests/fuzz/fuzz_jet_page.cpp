// A page of a sound file replaced by any bytes: reading, checking, writing, changing the design and
// repairing end, and in nothing worse than an engine error; what a repair makes is sound.
//
// The first byte tells the page, the second what is done with the file and what the rest is: the
// page's bytes from its start on, or patches of two bytes of place and one that stands there. The
// low 12 bits of a place are the offset, the others lead to one of the next pages. Before either,
// another page may take this one's place, which the third byte tells then.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "base/encoding.h"
#include "host/jet/check/check.h"
#include "host/jet/compact/compact.h"
#include "jet_read_everything.h"
#include "jet_small_file.h"

namespace sg::jet::test {
namespace {

constexpr uint8_t writesRows = 1;
constexpr uint8_t changesDesign = 2;
constexpr uint8_t repairs = 4;
constexpr uint8_t patches = 8;
constexpr uint8_t copies = 16;

constexpr const wchar_t* fileName = L"damaged.mdb";
constexpr size_t pageSize = 4096;

std::vector<uint8_t> damagedFile(uint8_t page, uint8_t work, std::span<const uint8_t> input) {
    std::vector<uint8_t> bytes = smallFile();
    const size_t count = bytes.size() / pageSize;
    const auto at = [&](size_t number) { return bytes.data() + number % count * pageSize; };
    if ((work & copies) != 0 && !input.empty()) {
        if (input[0] % count != page % count) std::copy_n(at(input[0]), pageSize, at(page));
        input = input.subspan(1);
    }
    if ((work & patches) == 0) {
        std::copy_n(input.begin(), std::min(input.size(), pageSize), at(page));
        return bytes;
    }
    for (; input.size() >= 3; input = input.subspan(3)) {
        const size_t place = input[0] | input[1] << 8;
        at(page + place / pageSize)[place % pageSize] = input[2];
    }
    return bytes;
}

template <class F>
void attempt(F&& f) {
    try {
        f();
    } catch (const Error&) {
    }
}

Database open(FileLayer& files, const wchar_t* name) {
    return Database::open(name, OpenMode::Exclusive, memoryOptions(files));
}

std::vector<RowId> rowsOf(const Database& db, const wchar_t* table) {
    std::vector<RowId> rows;
    attempt([&] {
        for (RowCursor cursor(db.table(table)); rows.size() < 200 && cursor.next();)
            rows.push_back(cursor.id());
    });
    return rows;
}

void readAndCheck(std::span<const uint8_t> bytes) {
    readEverything(bytes, 20000);
    checkDatabase(Database(std::make_unique<MemoryPageStore>(bytes, fileName)), 100);
}

void changeRooms(Database& db) {
    for (int32_t i = 0; i < 6; ++i) {
        attempt([&] {
            std::vector<Value> row{Value(),
                                   i % 7 + 1,
                                   std::wstring(size_t(90 + i), L'q'),
                                   i * 2.0,
                                   true,
                                   Value(),
                                   std::wstring(size_t(i) * 1500, L'm'),
                                   Value(Bytes(size_t(i) * 900, 7))};
            db.writer(L"Rooms").insert(row);
        });
    }
    const std::vector<RowId> rows = rowsOf(db, L"Rooms");
    for (size_t i = 0; i < rows.size(); i += 5) {
        attempt([&] {
            std::vector<Value> row(8);
            row[2] = std::wstring(i % 2 == 0 ? 250 : 1, L'z');
            row[3] = 1000.0 + double(i);
            db.writer(L"Rooms").update(rows[i], row,
                                       {false, false, true, true, false, false, true, true});
        });
        if (i + 2 < rows.size()) attempt([&] { db.writer(L"Rooms").erase(rows[i + 2]); });
    }
}

void changeFloors(Database& db) {
    attempt([&] {
        std::vector<Value> row{int32_t(50), Value()};
        db.writer(L"Floors").insert(row);
    });
    const std::vector<RowId> rows = rowsOf(db, L"Floors");
    for (size_t i = 0; i < rows.size(); ++i) {
        attempt([&] {
            std::vector<Value> row{int32_t(100 + i), Value()};
            db.writer(L"Floors").update(rows[i], row, {true, false});
        });
        if (i % 3 == 1) attempt([&] { db.writer(L"Floors").erase(rows[i]); });
    }
}

// Once with every operation for itself, once in a transaction.
void writeRows(FileLayer& files) {
    Database db = open(files, fileName);
    changeRooms(db);
    attempt([&] {
        db.beginTransaction();
        changeFloors(db);
        changeRooms(db);
        db.commitTransaction();
    });
}

void changeDesign(FileLayer& files) {
    Database db = open(files, fileName);
    attempt([&] { addColumn(db, L"Rooms", smallColumn(L"More", ColumnType::Guid)); });
    attempt([&] { addColumn(db, L"Floors", smallColumn(L"Id", ColumnType::Long, true)); });
    attempt([&] { createIndex(db, L"Rooms", smallIndex(L"Third", {{L"Note"}, {L"Floor"}})); });
    attempt([&] { dropIndex(db, L"Rooms", L"ByName"); });
    attempt([&] { dropColumn(db, L"Rooms", L"Name"); });
    attempt([&] { renameColumn(db, L"Floors", L"Number", L"Level"); });
    attempt([&] { renameTable(db, L"Floors", L"Storeys"); });
    attempt([&] {
        TableDesign design;
        design.name = L"Doors";
        design.columns = {smallColumn(L"Id", ColumnType::Long, true)};
        design.indexes = {smallIndex(L"PrimaryKey", {{L"Id"}})};
        createTable(db, design);
    });
    attempt([&] {
        setProperty(db, L"Rooms", L"Area", {L"Format", ColumnType::Text, false, L"0"});
    });
    attempt([&] { renameQuery(db, L"All", L"Every"); });
    attempt([&] { dropQuery(db, L"Every"); });
    attempt([&] { relink(db, L"Far", L";DATABASE=near.mdb"); });
    attempt([&] { dropRelation(db, L"FloorRooms"); });
    attempt([&] { dropTable(db, L"Rooms"); });
    attempt([&] { dropTable(db, L"Storeys"); });
    attempt([&] { dropTable(db, L"Far"); });
}

void repair(FileLayer& files) {
    CompactOptions options;
    options.repair = true;
    options.storage = memoryOptions(files);
    compactDatabase(fileName, L"made.mdb", options);
    for (const CheckFinding& finding : checkDatabase(open(files, L"made.mdb"))) {
        std::fprintf(stderr, "a repair made: %s: %s\n", toUtf8(finding.table).c_str(),
                     toUtf8(finding.what).c_str());
        std::abort();
    }
}

void run(uint8_t page, uint8_t work, std::span<const uint8_t> input) {
    const std::vector<uint8_t> bytes = damagedFile(page, work, input);
    attempt([&] { readAndCheck(bytes); });
    if ((work & writesRows) != 0) {
        RecordingFiles files({{fileName, bytes}});
        attempt([&] { writeRows(files); });
    }
    if ((work & changesDesign) != 0) {
        RecordingFiles files({{fileName, bytes}});
        attempt([&] { changeDesign(files); });
    }
    if ((work & repairs) != 0) {
        RecordingFiles files({{fileName, bytes}});
        attempt([&] { repair(files); });
    }
}

}  // namespace
}  // namespace sg::jet::test

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size >= 2) sg::jet::test::run(data[0], data[1], {data + 2, size - 2});
    return 0;
}
