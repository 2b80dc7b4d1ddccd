#include <algorithm>
#include <utility>

#include "host/jet/recordset/record_columns.h"
#include "host/jet/recordset/table_recordset_state.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

constexpr size_t bookmarkSize = 8;  // a packed row id, and the table's definition page

bool isSameIndex(const KeyEncoder& a, const KeyEncoder& b) {
    return a.places() == b.places() &&
           std::equal(a.columns().begin(), a.columns().end(), b.columns().begin(),
                      b.columns().end(), [](const KeyColumn& x, const KeyColumn& y) {
                          return x.type == y.type && x.ascending == y.ascending;
                      });
}

bool isSameColumn(const Column& a, const Column& b) {
    return a.name == b.name && a.number == b.number && a.type == b.type && a.length == b.length &&
           a.flags == b.flags;
}

}  // namespace

// --- one state, one design ---

TableRecordset::State::State(Database& database, std::wstring_view table, bool readOnly)
    : database(&database), name(table), readOnly(readOnly) {
    const Database::ReadScope scope(opened());
    designStamp = database.designStamp();
    useTable(database.table(name));
    synchronize();
    try {
        goToEnd(true);
    } catch (const Error& error) {
        // The rest of the table is there.
        if (error.code() != Damaged) throw;
    }
}

const Database& TableRecordset::State::opened() const {
    if (!database->isOpen()) throw Error(ObjectClosed, {name});
    return *database;
}

void TableRecordset::State::synchronize() {
    const Storage* storage = database->storage();
    if (storage == nullptr) return;
    // The pages of an open transaction change without a commit: there each call looks again.
    const bool isWriting = storage->transaction() != nullptr;
    const uint64_t now = isWriting ? unknown : storage->sequence();
    if (now == seen && !isWriting) return;
    seen = unknown;
    if (const uint64_t stamp = database->designStamp(); stamp != designStamp) {
        followDesign();
        designStamp = stamp;
    }
    const PageStore& pages = table->store();
    if (isLocated && (leaf.page() >= pages.pageCount() ||
                      pages.read(leaf.page()).bytes().data() != leaf.bytes().data())) {
        keepKey();
    }
    if (!isLocated) leaf = PageRef();
    const bool isThere = rows->refresh();
    isLoaded = isLoaded && isThere;
    seen = now;
}

void TableRecordset::State::useTable(Table now) {
    places = placesInOrder(now.definition());
    columns = recordColumns(now.definition(), places, now.store().format());
    table = std::move(now);
    rows.emplace(*table);
    isLoaded = false;
}

void TableRecordset::State::useFileOrder() {
    indexName.clear();
    encoder.reset();
    tree.reset();
    isLocated = false;
    leaf = PageRef();
}

void TableRecordset::State::useIndex(std::wstring_view wanted) {
    if (wanted.empty()) return useFileOrder();
    const TableDefinition& definition = table->definition();
    const LogicalIndex* index = definition.indexByName(wanted);
    if (index == nullptr) {
        throw Error(NotAnIndex, {std::wstring(wanted)}, {.file = database->name(), .table = name});
    }
    const RealIndex& real = definition.realOf(*index);
    KeyEncoder keys(table->store().format(), definition, real);
    keys.requireUsable();
    indexName = index->name;
    encoder = std::move(keys);
    tree.emplace(table->store(), real.rootPage);
    isLocated = false;
    leaf = PageRef();
}

// Somebody has changed the design. Of this table nothing need have changed, but its definition is
// read again; its index may be gone, and the table too.
void TableRecordset::State::followDesign() {
    keepKey();
    Table now = database->table(name);
    const TableDefinition& was = table->definition();
    const TableDefinition& is = now.definition();
    if (was.page != is.page) {
        place = Place::Nowhere;
        lastModified.reset();
    }
    if (was.page != is.page || !std::equal(was.columns.begin(), was.columns.end(),
                                           is.columns.begin(), is.columns.end(), isSameColumn)) {
        dropEdit();
    }
    useTable(std::move(now));
    if (!encoder) return;
    const KeyEncoder before = *encoder;
    if (is.indexByName(indexName) == nullptr) {
        useFileOrder();
        return;
    }
    useIndex(std::wstring(indexName));
    if (place != Place::Row || isSameIndex(before, *encoder)) return;
    if (load()) {
        makeKey();
    } else {
        place = Place::Nowhere;
    }
}

size_t TableRecordset::State::checked(size_t number) const {
    if (number >= places.size()) {
        throw Error(ItemNotFound, {}, {.file = database->name(), .table = name});
    }
    return places[number];
}

const Column& TableRecordset::State::column(size_t number) const {
    return table->definition().columns[checked(number)];
}

// --- moving ---

// To the first or the last row; to that end when there is none.
bool TableRecordset::State::goToEnd(bool first) {
    isLoaded = isLocated = false;
    const Place end = first ? Place::Before : Place::Behind;
    const bool goesOn = isPassing && place == end;
    place = end;
    if (tree) {
        if (first ? tree->first() : tree->last()) standOnEntry();
    } else {
        isPassing = true;
        const bool found = goesOn  ? (first ? rows->next() : rows->previous())
                           : first ? rows->first()
                                   : rows->last();
        isPassing = false;
        if (found) standOnRow();
    }
    return place == Place::Row;
}

void TableRecordset::State::standOnRow() {
    place = Place::Row;
    row = rows->id();
    isLoaded = true;
}

void TableRecordset::State::standOnEntry() {
    place = Place::Row;
    row = tree->row();
    isLoaded = false;
    isLocated = true;
    if (!leaf || leaf.page() != tree->page()) leaf = table->store().read(tree->page());
}

// On a row that exists, wherever it is in the order.
void TableRecordset::State::standAt(RowId id) {
    place = Place::Row;
    row = id;
    isLocated = false;
    key.clear();
    if (load() && tree) makeKey();
}

void TableRecordset::State::step(bool forward) {
    const bool found = tree ? stepInIndex(forward) : stepInFile(forward);
    if (!found) {
        place = forward ? Place::Behind : Place::Before;
        isLoaded = isLocated = false;
    }
}

bool TableRecordset::State::stepInFile(bool forward) {
    const bool goesOn = std::exchange(isLoaded, false) || isPassing;
    isPassing = true;
    const bool found = goesOn    ? (forward ? rows->next() : rows->previous())
                       : forward ? rows->seekAfter(row)
                                 : rows->seekBefore(row);
    isPassing = false;
    if (found) standOnRow();
    return found;
}

bool TableRecordset::State::stepInIndex(bool forward) {
    const bool isThere = locate();
    isLocated = false;
    place = Place::Nowhere;  // until a damaged tree has let the step pass
    bool found;
    if (isThere) {
        found = forward ? tree->next() : tree->previous();
    } else {
        target = key;
        for (int shift = 24; shift >= 0; shift -= 8) {
            target.push_back(static_cast<uint8_t>(row.packed() >> shift));
        }
        found = forward ? tree->lowerBound(ByteView(target)) : tree->lastBefore(ByteView(target));
    }
    if (found) standOnEntry();
    return found;
}

bool TableRecordset::State::locate() {
    if (isLocated) return true;
    // Another key stands for the row when somebody has changed it.
    if (!tree->find(ByteView(key), row)) {
        if (!load()) return false;
        makeKey();
        if (!tree->find(ByteView(key), row)) return false;
    }
    isLocated = true;
    leaf = table->store().read(tree->page());
    return true;
}

void TableRecordset::State::makeKey() {
    const std::vector<size_t>& from = encoder->places();
    keyValues.resize(from.size());
    for (size_t i = 0; i < from.size(); ++i)
        rows->value(from[i], keyValues[i]);
    encoder->encode(keyValues, key);
}

void TableRecordset::State::keepKey() {
    if (!isLocated) return;
    const ByteView kept = tree->key();
    key.assign(kept.begin(), kept.end());
    isLocated = false;
}

bool TableRecordset::State::load() {
    if (!isLoaded) {
        isPassing = false;
        isLoaded = rows->seek(row);
    }
    return isLoaded;
}

void TableRecordset::State::requireRow() {
    if (place != Place::Row) {
        throw Error(NoCurrentRecord, {}, {.file = database->name(), .table = name});
    }
    if (!load()) throw Error(RecordDeleted, {}, {.file = database->name(), .table = name});
}

// For a position at an end, which the cursors do not hold.
bool TableRecordset::State::isEmpty() {
    if (isPassing) return false;
    try {
        return !(tree ? tree->first() : rows->first());
    } catch (const Error& error) {
        if (error.code() != Damaged) throw;
        return false;  // something is there
    }
}

// --- bookmarks and keys ---

Bytes TableRecordset::State::bookmarkOf(RowId id) const {
    Bytes bookmark;
    for (const uint32_t part : {id.packed(), table->definition().page}) {
        for (int shift = 0; shift < 32; shift += 8) {
            bookmark.push_back(static_cast<uint8_t>(part >> shift));
        }
    }
    return bookmark;
}

RowId TableRecordset::State::rowOf(const Bytes& bookmark) const {
    const ByteView bytes(bookmark);
    if (bytes.size() == bookmarkSize && bytes.get32(4) == table->definition().page) {
        const RowId id = RowId::fromPacked(bytes.get32(0));
        if (id.page < table->store().pageCount()) return id;
    }
    throw Error(InvalidBookmark, {}, {.file = database->name(), .table = name});
}

// The beginning of the keys of all rows with these values in the leading columns.
void TableRecordset::State::makeTarget(std::span<const Value> keys) {
    const std::vector<size_t>& from = encoder->places();
    if (keys.empty() || keys.size() > from.size()) {
        throw Error(InvalidArgument, {}, {.file = database->name(), .table = name});
    }
    keyValues.resize(keys.size());
    for (size_t i = 0; i < keys.size(); ++i) {
        const Column& column = table->definition().columns[from[i]];
        Value& value = keyValues[i] = keys[i];
        // A text that is too long for the column is only one that no row has.
        if (!column.isText() || isNull(value)) {
            convertTo(column, value);
        } else if (!std::holds_alternative<std::wstring>(value)) {
            value = toInvariantText(value);
        }
    }
    encoder->encode(keyValues, target);
}

// --- the recordset ---

TableRecordset::TableRecordset(Database& database, std::wstring_view table, bool readOnly)
    : state_(std::make_unique<State>(database, table, readOnly)) {}

TableRecordset::~TableRecordset() {
    state_->dropEdit();
}

const std::vector<RecordColumn>& TableRecordset::columns() const {
    table();
    return state_->columns;
}

const Column& TableRecordset::columnDefinition(size_t column) const {
    return state_->column(column);
}

const Table& TableRecordset::table() const {
    State& s = *state_;
    s.opened();
    if (!s.isSynchronized()) const State::Call call(s);
    return *s.table;
}

bool TableRecordset::isReadOnly() const {
    return state_->readOnly || state_->database->isReadOnly();
}

void TableRecordset::setIndex(std::wstring_view name) {
    State& s = *state_;
    s.dropEdit();
    const State::Call call(s);
    s.keepKey();
    s.useIndex(name);
    if (!s.moved) {
        s.goToEnd(true);
    } else if (s.place == State::Place::Row) {
        s.standAt(s.row);
        // A record that is gone has no place in another order.
        if (!s.isLoaded) s.place = State::Place::Nowhere;
    }
}

const std::wstring& TableRecordset::index() const {
    return state_->indexName;
}

bool TableRecordset::isBof() const {
    State& s = *state_;
    s.opened();
    if (s.place == State::Place::Before) return true;
    if (s.place != State::Place::Behind) return false;
    const State::Call call(s);
    return s.isEmpty();
}

bool TableRecordset::isEof() const {
    State& s = *state_;
    s.opened();
    if (s.place == State::Place::Behind) return true;
    if (s.place != State::Place::Before) return false;
    const State::Call call(s);
    return s.isEmpty();
}

void TableRecordset::moveFirst() {
    state_->dropEdit();
    const State::Call call(*state_);
    state_->moved = true;
    state_->goToEnd(true);
}

void TableRecordset::moveLast() {
    state_->dropEdit();
    const State::Call call(*state_);
    state_->moved = true;
    state_->goToEnd(false);
}

void TableRecordset::move(int64_t count) {
    State& s = *state_;
    s.dropEdit();
    const State::Call call(s);
    const bool forward = count > 0;
    const bool isAtEnd = s.place == (forward ? State::Place::Behind : State::Place::Before);
    if (count == 0) {
        if (s.place == State::Place::Row || s.place == State::Place::Nowhere) s.requireRow();
        return;
    }
    uint64_t left = forward ? uint64_t(count) : uint64_t(0) - uint64_t(count);
    if (s.place != State::Place::Row) {
        const State::Place from = s.place;
        if (isAtEnd || from == State::Place::Nowhere || !s.goToEnd(forward)) {
            s.place = from;
            s.requireRow();
        }
        --left;
    }
    s.moved = true;
    while (left-- > 0 && s.place == State::Place::Row)
        s.step(forward);
}

void TableRecordset::value(size_t column, Value& into) const {
    State& s = *state_;
    s.opened();
    const size_t at = s.checked(column);
    if (s.mode == EditMode::AddNew || (s.mode == EditMode::Edit && s.changed[at])) {
        into = s.values[at];
        return;
    }
    // A value that stands in the row needs no page but the one that is held.
    if (s.isLoaded && s.isSynchronized() && !s.table->definition().columns[at].isLongValue()) {
        s.rows->value(at, into);
        return;
    }
    const State::Call call(s);
    s.requireRow();
    s.rows->value(s.checked(column), into);
}

uint32_t TableRecordset::recordCount() const {
    State& s = *state_;
    const State::Call call(s);
    const PageStore& pages = s.table->store();
    return pages.read(s.table->definition().page, PageKind::TableDefinition)
        ->get32(pages.format().table.rowCount);
}

Bytes TableRecordset::bookmark() const {
    State& s = *state_;
    const State::Call call(s);
    s.requireRow();
    return s.bookmarkOf(s.row);
}

void TableRecordset::setBookmark(const Bytes& bookmark) {
    State& s = *state_;
    s.dropEdit();
    const State::Call call(s);
    const RowId id = s.rowOf(bookmark);
    s.isLoaded = s.isPassing = false;
    if (!s.rows->seek(id)) {
        throw Error(RecordDeleted, {}, {.file = s.database->name(), .table = s.name});
    }
    s.standAt(id);
    s.moved = true;
}

bool TableRecordset::seek(SeekOperator comparison, std::span<const Value> keys) {
    State& s = *state_;
    s.dropEdit();
    const State::Call call(s);
    if (!s.encoder) throw Error(NoCurrentIndex, {}, {.file = s.database->name(), .table = s.name});
    s.makeTarget(keys);
    const ByteView target(s.target);
    s.moved = true;
    s.isLoaded = s.isLocated = false;
    s.place = State::Place::Nowhere;
    bool found = false;
    switch (comparison) {
        case SeekOperator::Equal:
            found = s.tree->seek(target);
            break;
        case SeekOperator::GreaterOrEqual:
            found = s.tree->lowerBound(target);
            break;
        case SeekOperator::Greater:
            found = s.tree->upperBound(target);
            break;
        case SeekOperator::LessOrEqual:
            found = s.tree->lastUpTo(target);
            break;
        case SeekOperator::Less:
            found = s.tree->lastBefore(target);
            break;
    }
    if (found) s.standOnEntry();
    return found;
}

}  // namespace sg::jet
