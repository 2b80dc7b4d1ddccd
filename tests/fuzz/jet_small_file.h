#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/recording_files.h"
#include "host/jet/schema/schema.h"

// A sound file of a few dozen pages with every kind of page that a file of its size can have.
namespace sg::jet::test {

inline StorageOptions memoryOptions(FileLayer& files) {
    StorageOptions options;
    options.checkpointDelay = std::chrono::milliseconds(0);
    options.name = {L"somebody", L"somewhere"};
    options.files = &files;
    return options;
}

inline ColumnDesign smallColumn(const wchar_t* name, ColumnType type, bool counter = false) {
    ColumnDesign column;
    column.name = name;
    column.type = type;
    column.autoNumber = counter;
    return column;
}

inline IndexDesign smallIndex(const wchar_t* name, std::vector<IndexColumnDesign> columns) {
    IndexDesign index;
    index.name = name;
    index.columns = std::move(columns);
    return index;
}

inline void designSmallFile(Database& db) {
    TableDesign floors;
    floors.name = L"Floors";
    floors.columns = {smallColumn(L"Number", ColumnType::Long),
                      smallColumn(L"Name", ColumnType::Text)};
    floors.indexes = {smallIndex(L"PrimaryKey", {{L"Number"}})};
    floors.indexes[0].primary = true;
    createTable(db, floors);

    TableDesign rooms;
    rooms.name = L"Rooms";
    rooms.columns = {
        smallColumn(L"Id", ColumnType::Long, true),  smallColumn(L"Floor", ColumnType::Long),
        smallColumn(L"Name", ColumnType::Text),      smallColumn(L"Area", ColumnType::Double),
        smallColumn(L"Heated", ColumnType::Boolean), smallColumn(L"Price", ColumnType::Numeric),
        smallColumn(L"Note", ColumnType::Memo),      smallColumn(L"Plan", ColumnType::Ole)};
    rooms.columns[1].required = true;
    rooms.columns[3].validationRule = L">= 0";
    rooms.indexes = {smallIndex(L"PrimaryKey", {{L"Id"}}), smallIndex(L"ByName", {{L"Name"}}),
                     smallIndex(L"ByArea", {{L"Area", false}, {L"Heated"}}),
                     smallIndex(L"ByPrice", {{L"Price"}})};
    rooms.indexes[0].primary = true;
    rooms.indexes[3].unique = true;
    rooms.indexes[3].ignoreNulls = true;
    createTable(db, rooms);
    createRelation(db, {L"FloorRooms",
                        L"Floors",
                        L"Rooms",
                        relationFlags::cascadeUpdates | relationFlags::cascadeDeletes,
                        {{L"Number", L"Floor"}}});
    linkTable(db, L"Far", L";DATABASE=far.mdb", L"There");
    putQuery(
        db, L"All", 0,
        {{{}, 0, 1, int16_t(1), {}, {}, {}, {}, {}}, {{}, 0, 5, {}, {}, {}, L"Rooms", {}, {}}});
}

inline void fillSmallFile(Database& db) {
    db.beginTransaction();
    for (int32_t number = 1; number <= 6; ++number) {
        std::vector<Value> floor{number, L"Level " + std::to_wstring(number)};
        db.writer(L"Floors").insert(floor);
    }
    std::vector<RowId> rows;
    for (int32_t i = 0; i < 60; ++i) {
        const size_t note = i % 20 == 0 ? 9000 : i % 7 == 0 ? 500 : 12;
        std::vector<Value> room{
            Value(),
            i % 6 + 1,
            std::wstring(size_t(i % 3 == 0 ? 200 : 8), wchar_t(L'a' + i * 7 % 26)),
            i * 1.5,
            i % 2 == 0,
            i % 5 == 0 ? Value() : Value(Decimal{false, 0, {0, 0, 0, uint32_t(i)}}),
            std::wstring(note, wchar_t(L'A' + i % 26)),
            i % 15 == 0 ? Value(Bytes(3000, uint8_t(i))) : Value()};
        rows.push_back(db.writer(L"Rooms").insert(room));
    }
    // Rows that overflow, rows that have gone.
    for (size_t i = 0; i < rows.size(); i += 6) {
        std::vector<Value> room(8);
        room[2] = std::wstring(255, wchar_t(L'α' + i % 20));
        db.writer(L"Rooms").update(rows[i], room,
                                   {false, false, true, false, false, false, false, false});
        db.writer(L"Rooms").erase(rows[i + 3]);
    }
    db.commitTransaction();
}

inline const std::vector<uint8_t>& smallFile() {
    static const std::vector<uint8_t> bytes = [] {
        RecordingFiles files({});
        {
            Database db = Database::create(L"small.mdb", {}, memoryOptions(files));
            designSmallFile(db);
            fillSmallFile(db);
        }
        return files.content(L"small.mdb");
    }();
    return bytes;
}

}  // namespace sg::jet::test
