#include "host/jet/engine_workload.h"

#include <stdexcept>

#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/compact/compact.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema_files.h"

namespace sg::jet::test {
namespace {

constexpr size_t mostRows = 120;

const std::wstring floors = L"Floors";
const std::wstring rooms = L"Rooms";

Relation floorRooms() {
    return {L"FloorRooms",
            floors,
            rooms,
            relationFlags::cascadeUpdates | relationFlags::cascadeDeletes,
            {{L"Number", L"Floor"}}};
}

TableDesign floorsDesign() {
    return tableOf(floors,
                   {longColumn(L"Id", true), longColumn(L"Number"), textColumn(L"Name", 40)},
                   {primaryOver({L"Number"}), indexOver(L"ById", {L"Id"}, true),
                    indexOver(L"ByName", {L"Name"})});
}

TableDesign roomsDesign() {
    TableDesign design = tableOf(
        rooms,
        {longColumn(L"Id", true), longColumn(L"Floor"), textColumn(L"Code", 20),
         textColumn(L"Name", 255), columnOfType(L"Area", ColumnType::Double),
         columnOfType(L"Heated", ColumnType::Boolean), columnOfType(L"Built", ColumnType::Date),
         columnOfType(L"Price", ColumnType::Currency), columnOfType(L"Note", ColumnType::Memo),
         columnOfType(L"Plan", ColumnType::Ole)},
        {primaryOver({L"Id"}), indexOver(L"ById", {L"Id"}, true),
         indexOver(L"ByCode", {L"Code"}, true), indexOver(L"ByName", {L"Name", L"Floor"}),
         indexOver(L"ByArea", {L"Area", L"Heated", L"Built"}), indexOver(L"ByNote", {L"Note"})});
    design.indexes[2].ignoreNulls = true;
    design.indexes[4].columns[0].ascending = false;
    design.columns[1].required = true;
    return design;
}

RowId rowWith(const Database& database, const std::wstring& table, int32_t id) {
    const Table from = database.table(table);
    const TableDefinition& definition = from.definition();
    const LogicalIndex* index = definition.indexByName(L"ById");
    if (index == nullptr) throw std::logic_error("no index over the counter");
    const RealIndex& real = definition.realOf(*index);
    KeyBytes key;
    KeyEncoder(database.store().format(), definition, real).encode({{Value(id)}}, key);
    IndexCursor cursor(database.store(), real.rootPage);
    if (!cursor.seek({key.data(), key.size()})) throw std::logic_error("the row is not found");
    return cursor.row();
}

// In the recordset's order.
void setValues(TableRecordset& rows, const TableDefinition& definition,
               const std::vector<Value>& row, const std::vector<bool>& changed) {
    for (size_t i = 0; i < row.size(); ++i) {
        if (changed[i]) rows.setValue(rows.columnByName(definition.columns[i].name), row[i]);
    }
}

}  // namespace

void Session::open() {
    database.reset();
    database.reset(new Database(Database::open(path, mode, options)));
}

void makeEngineFile(const Session& session) {
    Database database = Database::create(session.path, {}, session.options);
    createTable(database, floorsDesign());
    createTable(database, roomsDesign());
    createRelation(database, floorRooms());
    database.beginTransaction();
    for (int32_t i = 1; i <= 8; ++i) {
        std::vector<Value> floor{Value(), i * 10, L"Level " + std::to_wstring(i)};
        database.writer(floors).insert(floor);
    }
    for (int32_t i = 1; i <= 40; ++i) {
        std::vector<Value> room(10);
        room[1] = i % 8 * 10 + 10;
        room[3] = L"Room " + std::to_wstring(i * 37 % 41) + std::wstring(size_t(i) * 3, L'x');
        room[4] = i % 3 * 7.5;
        room[5] = false;
        room[8] = std::wstring(size_t(i % 10 == 0 ? 5000 : i), L'n');
        database.writer(rooms).insert(room);
    }
    database.commitTransaction();
}

// --- values ---

std::wstring EngineWorkload::randomText(size_t length) {
    static const std::wstring letters = L"abcdefgABCDEFG  0123-'.äÖéß";
    std::wstring text;
    const bool isPlain = oneIn(2);
    for (size_t i = 0; i < length; ++i)
        text += letters[below(isPlain ? 14 : letters.size())];
    return text;
}

Value EngineWorkload::randomValue(const ColumnState& column) {
    if (column.name == L"Floor") {
        // Now and then one that is not there.
        if (isRelated() && oneIn(12)) return int32_t(7);
        const auto& all = state_.tables.at(floors);
        const auto id = randomId(floors);
        return id ? all.rows.at(*id)[all.columnByName(L"Number")] : Value(int32_t(10));
    }
    if (column.name == L"Number") return int32_t(10 + 10 * below(40));
    if (column.type != ColumnType::Boolean && oneIn(6)) return Value();
    if (column.name == L"Code") {
        return (oneIn(2) ? L"K" : L"k") + std::to_wstring(100 + below(400));
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return oneIn(2);
        case ColumnType::Long:
            return int32_t(random_());
        case ColumnType::Double:
            return double(int32_t(below(400)) - 200) / 4;
        case ColumnType::Date:
            return Date{double(below(60000)) / 4};
        case ColumnType::Currency:
            return Currency{int64_t(random_()) * 1000};
        case ColumnType::Ole:
            return Bytes(1 + below(oneIn(5) ? 9000 : 300), uint8_t(random_()));
        case ColumnType::Memo:
            return randomText(oneIn(6) ? 2000 + below(8000) : oneIn(3) ? below(1900) : below(60));
        default:
            return randomText(column.name == L"Name" && oneIn(4) ? below(41) : below(20));
    }
}

EngineWorkload::Row EngineWorkload::randomRow(const std::wstring& table) {
    Row row;
    for (const ColumnState& column : state_.tables.at(table).columns)
        row.push_back(column.name == L"Id" ? Value() : randomValue(column));
    return row;
}

std::optional<int32_t> EngineWorkload::randomId(const std::wstring& table) {
    const auto& rows = state_.tables.at(table).rows;
    if (rows.empty()) return std::nullopt;
    return std::next(rows.begin(), static_cast<ptrdiff_t>(below(rows.size())))->first;
}

const std::wstring& EngineWorkload::randomTable() {
    // Floors have to stay as they are while nothing keeps rooms and floors together.
    if (oneIn(2)) return rooms;
    const size_t first = isRelated() ? 0 : 1;
    const auto& tables = state_.tables;
    std::vector<const std::wstring*> names;
    for (const auto& [name, table] : tables) {
        if (first == 0 || name != floors) names.push_back(&name);
    }
    return *names[below(names.size())];
}

// --- what is refused ---

void EngineWorkload::refused(int code, Step step) {
    this->step([code, step](Session& session) {
        try {
            step(session);
        } catch (const Error& error) {
            if (error.code() == code) return;
            throw;
        }
        throw std::logic_error("error " + std::to_string(code) + " did not come");
    });
}

bool EngineWorkload::isTaken(const std::wstring& table, const std::wstring& column,
                             const Value& value, std::optional<int32_t> own) const {
    const TableState& state = state_.tables.at(table);
    const size_t at = state.columnByName(column);
    for (const auto& [id, row] : state.rows) {
        if (id == own || isNull(row[at]) || isNull(value)) continue;
        const auto* text = std::get_if<std::wstring>(&value);
        if (text != nullptr ? equalIgnoringCase(*text, std::get<std::wstring>(row[at]))
                            : value == row[at]) {
            return true;
        }
    }
    return false;
}

bool EngineWorkload::isRefused(const std::wstring& table, const Row& row,
                               std::optional<int32_t> own, int& code) const {
    const TableState& state = state_.tables.at(table);
    code = 0;
    if (table == floors && isTaken(floors, L"Number", row[state.columnByName(L"Number")], own)) {
        code = DuplicateKey;
    } else if (table == rooms) {
        const Value& floor = row[state.columnByName(L"Floor")];
        if (isRelated() && !isTaken(floors, L"Number", floor)) {
            code = RelatedRecordRequired;
        }
        if (isTaken(rooms, L"Code", row[state.columnByName(L"Code")], own)) {
            // Which of two reasons is told is not the test's business.
            code = code == 0 ? DuplicateKey : -1;
        }
    }
    return code != 0;
}

// --- rows ---

void EngineWorkload::changeRow() {
    const std::wstring table = randomTable();
    const size_t count = state_.tables.at(table).rows.size();
    const size_t choice = below(count > mostRows ? 8 : 6);
    if (count == 0 || choice < 2) {
        insert(table);
    } else if (choice < 4) {
        update(table);
    } else {
        erase(table);
    }
}

void EngineWorkload::insert(const std::wstring& table) {
    TableState& state = state_.tables.at(table);
    Row row = randomRow(table);
    int code = 0;
    const bool isRefusal = isRefused(table, row, {}, code);
    if (code < 0) return;
    // A counter is given now and then.
    const bool isGiven = oneIn(10);
    const int32_t id = state.lastNumber + (isGiven ? 1 + int32_t(below(4)) : 1);
    const size_t place = state.columnByName(L"Id");
    if (isGiven) row[place] = id;
    const bool withRecordset = !isGiven && oneIn(2);
    const Step work = [table, row, id, place, withRecordset](Session& session) {
        Database& database = *session.database;
        Row copy = row;
        if (!withRecordset) {
            database.writer(table).insert(copy);
            if (copy[place] != Value(id)) throw std::logic_error("another counter was made");
            return;
        }
        TableRecordset rows(database, table);
        const TableDefinition definition = rows.table().definition();
        std::vector<bool> set(row.size(), true);
        set[place] = false;
        rows.addNew();
        setValues(rows, definition, row, set);
        rows.update();
    };
    planned_ += "insert ";
    if (isRefusal) return refused(code, work);
    step(work);
    row[place] = id;
    state.lastNumber = id;
    state.rows[id] = std::move(row);
}

void EngineWorkload::update(const std::wstring& table) {
    TableState& state = state_.tables.at(table);
    const std::optional<int32_t> id = randomId(table);
    if (!id) return;
    Row row = state.rows.at(*id);
    std::vector<bool> changed(row.size(), false);
    for (size_t i = 0; i < row.size(); ++i) {
        const ColumnState& column = state.columns[i];
        const bool isFree = column.name != L"Id" && (column.name != L"Number" || oneIn(3));
        if (!isFree || !oneIn(3)) continue;
        changed[i] = true;
        row[i] = randomValue(column);
    }
    int code = 0;
    const bool isRefusal = isRefused(table, row, id, code);
    if (code < 0) return;
    const Step work = [table, row, changed, id = *id, withRecordset = oneIn(2)](Session& session) {
        Database& database = *session.database;
        if (!withRecordset) {
            Row copy = row;
            database.writer(table).update(rowWith(database, table, id), copy, changed);
            return;
        }
        TableRecordset rows(database, table);
        const TableDefinition definition = rows.table().definition();
        rows.setIndex(L"ById");
        if (!rows.seek(SeekOperator::Equal, {{Value(id)}}))
            throw std::logic_error("the row is not found");
        rows.edit();
        setValues(rows, definition, row, changed);
        rows.update();
    };
    planned_ += "update ";
    if (isRefusal) return refused(code, work);
    step(work);
    if (table == floors) {
        const size_t number = state.columnByName(L"Number");
        follow(state.rows.at(*id)[number], row[number]);
    }
    state.rows[*id] = std::move(row);
}

// The rooms of a floor that gets another number.
void EngineWorkload::follow(const Value& before, const Value& after) {
    TableState& state = state_.tables.at(rooms);
    const size_t floor = state.columnByName(L"Floor");
    for (auto& [id, row] : state.rows) {
        if (row[floor] == before) row[floor] = after;
    }
}

void EngineWorkload::eraseRoomsOn(const Value& number) {
    TableState& state = state_.tables.at(rooms);
    const size_t floor = state.columnByName(L"Floor");
    std::erase_if(state.rows, [&](const auto& row) { return row.second[floor] == number; });
}

void EngineWorkload::erase(const std::wstring& table) {
    TableState& state = state_.tables.at(table);
    // The rooms go with their floor, so that few floors may.
    if (table == floors && (state.rows.size() < 6 || !oneIn(6))) return;
    const std::optional<int32_t> id = randomId(table);
    if (!id) return;
    planned_ += "erase ";
    step([table, id = *id, withRecordset = oneIn(2)](Session& session) {
        Database& database = *session.database;
        if (!withRecordset) return database.writer(table).erase(rowWith(database, table, id));
        TableRecordset rows(database, table);
        rows.setIndex(L"ById");
        if (!rows.seek(SeekOperator::Equal, {{Value(id)}}))
            throw std::logic_error("the row is not found");
        rows.erase();
    });
    if (table == floors) eraseRoomsOn(state.rows.at(*id)[state.columnByName(L"Number")]);
    state.rows.erase(*id);
}

// --- operations ---

void EngineWorkload::plan() {
    steps_.clear();
    planned_.clear();
    while (steps_.empty()) {
        const size_t choice = below(100);
        if (choice < 60) {
            changeRow();
        } else if (choice < 78) {
            transaction();
        } else if (choice < 82) {
            state_.tables.at(rooms).rows.size() < mostRows / 2 ? manyRows() : fewRows();
        } else if (choice < 92) {
            changeDesign();
        } else {
            wholeFile();
        }
    }
}

void EngineWorkload::perform(Session& session) const {
    for (const Step& step : steps_)
        step(session);
}

void EngineWorkload::transaction() {
    planned_ += "begin ";
    const DatabaseState before = state_;
    step([](Session& session) { session.database->beginTransaction(); });
    const size_t count = 1 + below(8);
    for (size_t i = 0; i < count; ++i) {
        if (oneIn(6)) {
            // A transaction within it, often in vain.
            const DatabaseState inner = state_;
            const bool isKept = oneIn(2);
            step([](Session& session) { session.database->beginTransaction(); });
            changeRow();
            if (oneIn(3)) changeDesign();
            step([isKept](Session& session) {
                isKept ? session.database->commitTransaction()
                       : session.database->rollbackTransaction();
            });
            if (!isKept) state_ = inner;
        } else if (oneIn(12)) {
            changeDesign();
        } else {
            changeRow();
        }
    }
    const bool isKept = !oneIn(5);
    planned_ += isKept ? "commit " : "rollback ";
    step([isKept](Session& session) {
        isKept ? session.database->commitTransaction() : session.database->rollbackTransaction();
    });
    if (!isKept) state_ = before;
}

// Enough rows for pages of indexes to be parted.
void EngineWorkload::manyRows() {
    step([](Session& session) { session.database->beginTransaction(); });
    for (size_t count = 20 + below(60); count > 0; --count)
        insert(rooms);
    step([](Session& session) { session.database->commitTransaction(); });
}

void EngineWorkload::fewRows() {
    step([](Session& session) { session.database->beginTransaction(); });
    for (size_t count = below(state_.tables.at(rooms).rows.size()); count > 0; --count)
        erase(rooms);
    step([](Session& session) { session.database->commitTransaction(); });
}

// --- the design ---

void EngineWorkload::changeDesign() {
    switch (below(5)) {
        case 0:
            return toggleIndex();
        case 1:
            return toggleRelation();
        case 2:
            return toggleTable();
        default:
            for (const auto& [name, table] : state_.tables) {
                if (name != floors && name != rooms) return changeColumns(std::wstring(name));
            }
    }
}

void EngineWorkload::toggleIndex() {
    planned_ += "index ";
    TableState& state = state_.tables.at(rooms);
    const bool isThere = state.indexes.contains(L"More");
    step([isThere](Session& session) {
        if (isThere) return dropIndex(*session.database, rooms, L"More");
        createIndex(*session.database, rooms, indexOver(L"More", {L"Built", L"Name"}));
    });
    isThere ? void(state.indexes.erase(L"More")) : void(state.indexes.insert(L"More"));
}

void EngineWorkload::toggleRelation() {
    planned_ += "relation ";
    const bool isThere = isRelated();
    step([isThere](Session& session) {
        isThere ? dropRelation(*session.database, L"FloorRooms")
                : createRelation(*session.database, floorRooms());
    });
    isThere ? void(state_.relations.clear()) : void(state_.relations.insert(L"FloorRooms"));
}

void EngineWorkload::toggleTable() {
    const std::wstring name = L"More" + std::to_wstring(below(3));
    planned_ += "table ";
    if (state_.tables.contains(name)) {
        step([name](Session& session) { dropTable(*session.database, name); });
        state_.tables.erase(name);
        return;
    }
    const TableDesign design = tableOf(name, {longColumn(L"Id", true), textColumn(L"Name", 40)},
                                       {indexOver(L"ById", {L"Id"}, true)});
    step([design](Session& session) { createTable(*session.database, design); });
    TableState& state = state_.tables[name];
    state.columns = {{L"Id", ColumnType::Long}, {L"Name", ColumnType::Text}};
    state.indexes = {L"ById"};
}

void EngineWorkload::changeColumns(const std::wstring& table) {
    planned_ += "column ";
    TableState& state = state_.tables.at(table);
    if (state.columns.size() > 2 && oneIn(3)) {
        const size_t at = 2 + below(state.columns.size() - 2);
        const std::wstring name = state.columns[at].name;
        step([table, name](Session& session) { dropColumn(*session.database, table, name); });
        state.columns.erase(state.columns.begin() + ptrdiff_t(at));
        for (auto& [id, row] : state.rows)
            row.erase(row.begin() + ptrdiff_t(at));
        return;
    }
    // The engine gives no number twice, and a table has 255.
    static constexpr ColumnType types[] = {ColumnType::Long, ColumnType::Text, ColumnType::Memo,
                                           ColumnType::Currency};
    const ColumnType type = types[below(4)];
    const std::wstring name = L"Column" + std::to_wstring(below(1000));
    for (const ColumnState& column : state.columns) {
        if (column.name == name) return;
    }
    if (state.columns.size() > 12) return;
    step([table, name, type](Session& session) {
        addColumn(*session.database, table, columnOfType(name, type));
    });
    state.columns.push_back({name, type});
    for (auto& [id, row] : state.rows)
        row.emplace_back();
}

void EngineWorkload::wholeFile() {
    if (oneIn(2)) {
        planned_ += "checkpoint ";
        return step([](Session& session) { session.database->storage()->checkpoint(); });
    }
    if (staysOpen_) return;
    const bool compacts = oneIn(3);
    planned_ += compacts ? "compact " : "reopen ";
    step([compacts](Session& session) {
        session.close();
        CompactOptions options;
        options.storage = session.options;
        if (compacts) compactInPlace(session.path, {}, options);
        session.open();
    });
}

}  // namespace sg::jet::test
