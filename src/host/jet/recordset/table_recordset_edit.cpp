#include <utility>

#include "host/jet/database/table_writer.h"
#include "host/jet/recordset/table_recordset_state.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {

void TableRecordset::State::requireWritable() const {
    if (readOnly || opened().isReadOnly()) {
        throw Error(ReadOnlyDatabase, {}, {.file = database->name(), .table = name});
    }
}

void TableRecordset::State::requireEdit() const {
    opened();
    if (mode == EditMode::None) {
        throw Error(UpdateWithoutEdit, {}, {.file = database->name(), .table = name});
    }
}

void TableRecordset::State::begin(EditMode newMode) {
    mode = newMode;
    if (newMode == EditMode::Edit) values.assign(places.size(), Value());
    changed.assign(places.size(), false);
}

void TableRecordset::State::dropEdit() {
    mode = EditMode::None;
    if (locked && database->isOpen()) database->storage()->unlockRecord(*locked);
    locked.reset();
}

// A writer changes pages that nobody holds without copying them.
void TableRecordset::State::releasePages() {
    rows->release();
    isLoaded = isPassing = false;
}

// What the writer filled in, so that another try gets new ones.
void TableRecordset::State::forgetMadeNumbers() {
    const std::vector<Column>& all = table->definition().columns;
    for (size_t at = 0; at < all.size(); ++at) {
        if (all[at].isAutoNumber() && !changed[at]) values[at] = Value();
    }
}

void TableRecordset::addNew() {
    State& s = *state_;
    s.dropEdit();
    s.requireWritable();
    const State::Call call(s);
    s.database->writerAt(s.table->definition().page).rules().defaults(s.values);
    s.begin(EditMode::AddNew);
}

void TableRecordset::edit() {
    State& s = *state_;
    s.dropEdit();
    s.requireWritable();
    {
        const State::Call call(s);
        s.requireRow();
    }
    s.database->storage()->lockRecord(s.row);
    s.locked = s.row;
    try {
        // Only what is read under the lock is what nobody else changes.
        const State::Call call(s);
        s.requireRow();
    } catch (...) {
        s.dropEdit();
        throw;
    }
    s.begin(EditMode::Edit);
}

void TableRecordset::setValue(size_t column, Value value) {
    State& s = *state_;
    s.requireEdit();
    const size_t at = s.checked(column);
    const Column& definition = s.table->definition().columns[at];
    const bool isCounter = (definition.flags & columns::autoNumberFlag) != 0;
    if (isCounter || definition.isCalculated() || definition.type == ColumnType::Complex) {
        throw Error(OperationNotSupported, {},
                    {.file = s.database->name(),
                     .table = s.name,
                     .detail = (isCounter ? L"the numbers of column " : L"the values of column ") +
                               definition.name + L" are made by the engine"});
    }
    try {
        convertTo(definition, value);
    } catch (const Error& error) {
        throw Error(
            error.code(), {definition.name},
            {.file = s.database->name(), .table = s.name, .detail = L"column " + definition.name});
    }
    s.values[at] = std::move(value);
    s.changed[at] = true;
}

void TableRecordset::update() {
    State& s = *state_;
    s.requireEdit();
    {
        const State::Call call(s);  // which may drop an edit that the design has no place for
    }
    s.requireEdit();
    TableWriter& writer = s.database->writerAt(s.table->definition().page);
    s.releasePages();
    if (s.mode == EditMode::AddNew) {
        try {
            s.lastModified = writer.insert(s.values);
        } catch (...) {
            s.forgetMadeNumbers();
            throw;
        }
    } else {
        writer.update(s.row, s.values, s.changed, true);
        s.lastModified = s.row;
    }
    s.dropEdit();
}

void TableRecordset::cancelUpdate() {
    state_->requireEdit();
    state_->dropEdit();
}

EditMode TableRecordset::editMode() const {
    return state_->mode;
}

void TableRecordset::erase() {
    State& s = *state_;
    s.dropEdit();
    s.requireWritable();
    {
        const State::Call call(s);
        s.requireRow();
    }
    TableWriter& writer = s.database->writerAt(s.table->definition().page);
    s.releasePages();
    writer.erase(s.row);
}

Bytes TableRecordset::lastModified() const {
    const State& s = *state_;
    s.opened();
    if (!s.lastModified) {
        throw Error(NoCurrentRecord, {}, {.file = s.database->name(), .table = s.name});
    }
    return s.bookmarkOf(*s.lastModified);
}

}  // namespace sg::jet
