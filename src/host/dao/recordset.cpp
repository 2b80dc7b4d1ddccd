#include "platform/dao/recordset.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "host/dao/database_session.h"
#include "host/dao/describe.h"
#include "host/dao/errors.h"
#include "host/dao/open_query.h"
#include "host/dao/sql_source.h"
#include "host/dao/table_fields.h"
#include "host/dao/variants.h"
#include "host/jet/recordset/recordset.h"
#include "platform/dao/query_def.h"
#include "platform/variant/safe_array.h"

using sg::dao::DatabaseSession;
using sg::dao::guarded;
using sg::dao::throwDao;

namespace dao = sg::dao;
namespace jet = sg::jet;

namespace {

COleVariant bookmarkVariant(jet::Bytes bytes) {
    COleSafeArray array;
    array.CreateFromBytes(std::move(bytes));
    return COleVariant::adopt(array);
}

jet::SeekOperator seekOperator(const wchar_t* comparison) {
    struct Named {
        std::wstring_view text;
        jet::SeekOperator comparison;
    };
    static constexpr Named operators[] = {
        {L"=", jet::SeekOperator::Equal},   {L">=", jet::SeekOperator::GreaterOrEqual},
        {L">", jet::SeekOperator::Greater}, {L"<=", jet::SeekOperator::LessOrEqual},
        {L"<", jet::SeekOperator::Less},
    };
    const std::wstring_view text = comparison != nullptr ? comparison : L"";
    for (const Named& named : operators) {
        if (named.text == text) return named.comparison;
    }
    throw jet::Error(jet::InvalidArgument);
}

bool isLinked(const jet::Database& database, const std::wstring& name) {
    return database.object(name, jet::ObjectType::LinkedTable) != nullptr ||
           database.object(name, jet::ObjectType::LinkedOdbcTable) != nullptr;
}

void requireType(int32_t type) {
    if (type != AFX_DAO_USE_DEFAULT_TYPE && type != dbOpenTable && type != dbOpenDynaset &&
        type != dbOpenSnapshot) {
        throw jet::Error(jet::InvalidArgument);
    }
}

}  // namespace

struct CDaoRecordset::State {
    explicit State(DatabaseSession& opened) : session(opened) {}

    DatabaseSession& session;
    int32_t type = 0;
    std::wstring name;
    bool readOnly = false;
    std::unique_ptr<jet::Recordset> rows;
    jet::TableRecordset* table = nullptr;  // rows, where they are the table's own
    std::unique_ptr<dao::FieldList> fields;

    jet::Value value;              // scratch
    std::vector<jet::Value> keys;  // scratch

    void open();
    void openTable();
    void openDynaset();
    void openSnapshot();
    void openQuery(const sg::sql::Statement& statement, const sg::sql::Parameters& parameters);
    void use(jet::Database& home, const std::wstring& there);

    // For what only dbOpenTable has.
    jet::TableRecordset& requireTable() const {
        if (type != dbOpenTable) throw jet::Error(jet::OperationNotSupported);
        return *table;
    }
    // For writing.
    jet::TableRecordset& requireRecords() const {
        if (table != nullptr) return *table;
        throw jet::Error(type == dbOpenDynaset ? jet::ReadOnlyDatabase
                                               : jet::OperationNotSupported);
    }

    // Those of a table as its design is now, of a snapshot as they were when it was read.
    dao::FieldList& currentFields() {
        if (table != nullptr) fields->follow(table->table());
        return *fields;
    }

    COleVariant valueAt(size_t position) {
        rows->value(position, value);
        return dao::toVariant(value);
    }

    bool seek(const wchar_t* comparison) {
        return requireTable().seek(seekOperator(comparison), keys);
    }
};

void CDaoRecordset::State::open() {
    const jet::Database& database = session.database();
    const bool isTable = database.object(name, jet::ObjectType::Table) != nullptr;
    const bool isLink = isLinked(database, name);
    if (type == AFX_DAO_USE_DEFAULT_TYPE) type = isTable ? dbOpenTable : dbOpenDynaset;
    if (type == dbOpenTable) {
        openTable();
    } else if (!isTable && !isLink) {
        openQuery(dao::statementOf(database, name), {});
    } else if (type == dbOpenDynaset) {
        openDynaset();
    } else {
        openSnapshot();
    }
}

void CDaoRecordset::State::openTable() {
    jet::Database& database = session.database();
    if (database.object(name, jet::ObjectType::Table) == nullptr) {
        if (isLinked(database, name)) throw jet::Error(jet::InvalidOperation);
        throw jet::Error(jet::ObjectNotFound, {name});
    }
    use(database, name);
}

void CDaoRecordset::State::openDynaset() {
    std::wstring there = name;
    jet::Database& home = session.database().home(there);
    use(home, there);
}

void CDaoRecordset::State::use(jet::Database& home, const std::wstring& there) {
    auto opening = std::make_unique<jet::TableRecordset>(home, there, readOnly);
    table = opening.get();
    rows = std::move(opening);
    readOnly = table->isReadOnly();
    fields = std::make_unique<dao::TableFields>(home, table->table(), !readOnly);
}

void CDaoRecordset::State::openQuery(const sg::sql::Statement& statement,
                                     const sg::sql::Parameters& parameters) {
    readOnly = true;
    rows = session.sql().select(statement, parameters);
    fields = std::make_unique<dao::ResultFields>(session.database(), rows->columns());
}

void CDaoRecordset::State::openSnapshot() {
    std::wstring there = name;
    const jet::Database& home = session.database().home(there);
    const jet::Database::ReadScope scope(home);
    readOnly = true;
    rows = std::make_unique<jet::SnapshotRecordset>(home, there);
    fields = std::make_unique<dao::TableFields>(home, home.table(there), false);
}

CDaoRecordset::CDaoRecordset(CDaoDatabase* database)
    : m_pDatabase(database), session_(database != nullptr ? database->session() : nullptr) {}

CDaoRecordset::~CDaoRecordset() {
    Close();
}

CDaoRecordset::State& CDaoRecordset::opened() const {
    if (state_ == nullptr) throwDao(jet::ObjectClosed);
    return *state_;
}

void CDaoRecordset::Open(int32_t type, const std::wstring& source, int32_t options) {
    Close();
    if (session_ == nullptr || !session_->isOpen()) throwDao(jet::ObjectClosed);
    guarded([&] {
        requireType(type);
        auto state = std::make_unique<State>(*session_);
        state->type = type;
        state->name = source;
        state->readOnly = (options & dbReadOnly) != 0;
        state->open();
        session_->add(this);
        state_ = std::move(state);
    });
}

void CDaoRecordset::Open(CDaoQueryDef* query, int32_t type, int32_t) {
    Close();
    if (session_ == nullptr || !session_->isOpen()) throwDao(jet::ObjectClosed);
    if (query == nullptr) throwDao(jet::InvalidArgument);
    dao::OpenQuery& opened = query->opened();
    guarded([&] {
        requireType(type);
        if (type == dbOpenTable) throw jet::Error(jet::InvalidOperation);
        auto state = std::make_unique<State>(*session_);
        state->type = type == AFX_DAO_USE_DEFAULT_TYPE ? dbOpenDynaset : type;
        state->name = opened.name().empty() ? opened.text() : opened.name();
        state->openQuery(opened.statement(), opened.given());
        session_->add(this);
        state_ = std::move(state);
    });
}

void CDaoRecordset::Close() {
    if (state_ == nullptr) return;
    session_->remove(this);
    state_.reset();
}

bool CDaoRecordset::IsOpen() const {
    return state_ != nullptr;
}

std::wstring CDaoRecordset::GetName() const {
    return state_ != nullptr ? state_->name : std::wstring();
}

int16_t CDaoRecordset::GetType() const {
    return static_cast<int16_t>(opened().type);
}

bool CDaoRecordset::CanUpdate() const {
    return state_ != nullptr && state_->table != nullptr && !state_->readOnly;
}

void CDaoRecordset::SetLockingMode(bool) {
    opened();
}

bool CDaoRecordset::GetLockingMode() const {
    opened();
    return true;
}

// --- moving ---

bool CDaoRecordset::IsBOF() const {
    State& state = opened();
    return guarded([&] { return state.rows->isBof(); });
}

bool CDaoRecordset::IsEOF() const {
    State& state = opened();
    return guarded([&] { return state.rows->isEof(); });
}

bool CDaoRecordset::IsDeleted() const {
    State& state = opened();
    return guarded([&] {
        try {
            state.rows->bookmark();
            return false;
        } catch (const jet::Error& error) {
            if (error.code() != jet::RecordDeleted) throw;
            return true;
        }
    });
}

void CDaoRecordset::MoveFirst() {
    State& state = opened();
    guarded([&] { state.rows->moveFirst(); });
}

void CDaoRecordset::MoveLast() {
    State& state = opened();
    guarded([&] { state.rows->moveLast(); });
}

void CDaoRecordset::MoveNext() {
    Move(1);
}

void CDaoRecordset::MovePrev() {
    Move(-1);
}

void CDaoRecordset::Move(int32_t rows) {
    State& state = opened();
    guarded([&] { state.rows->move(rows); });
}

int32_t CDaoRecordset::GetRecordCount() const {
    State& state = opened();
    return guarded([&] { return static_cast<int32_t>(state.rows->recordCount()); });
}

// --- indexes ---

bool CDaoRecordset::Seek(const wchar_t* comparison, const COleVariant* key1,
                         const COleVariant* key2, const COleVariant* key3) {
    State& state = opened();
    return guarded([&] {
        state.keys.clear();
        for (const COleVariant* key : {key1, key2, key3}) {
            if (key == nullptr) break;
            state.keys.push_back(dao::fromVariant(*key));
        }
        return state.seek(comparison);
    });
}

bool CDaoRecordset::Seek(const wchar_t* comparison, const COleVariant* keys, uint16_t count) {
    State& state = opened();
    return guarded([&] {
        state.keys.clear();
        for (uint16_t i = 0; i < count; ++i)
            state.keys.push_back(dao::fromVariant(keys[i]));
        return state.seek(comparison);
    });
}

std::wstring CDaoRecordset::GetCurrentIndex() const {
    State& state = opened();
    return guarded([&] { return state.requireTable().index(); });
}

void CDaoRecordset::SetCurrentIndex(const std::wstring& index) {
    State& state = opened();
    guarded([&] { state.requireTable().setIndex(index); });
}

int16_t CDaoRecordset::GetIndexCount() {
    State& state = opened();
    return guarded([&] {
        const jet::Table& table = state.requireTable().table();
        return static_cast<int16_t>(dao::indexesInOrder(table.definition()).size());
    });
}

void CDaoRecordset::GetIndexInfo(int index, CDaoIndexInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        const jet::Table& table = state.requireTable().table();
        dao::describeIndex(table, dao::indexAt(table.definition(), index), level, info);
    });
}

void CDaoRecordset::GetIndexInfo(const std::wstring& name, CDaoIndexInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        const jet::Table& table = state.requireTable().table();
        dao::describeIndex(table, dao::indexNamed(table.definition(), name), level, info);
    });
}

// --- fields ---

int16_t CDaoRecordset::GetFieldCount() {
    State& state = opened();
    return guarded([&] { return static_cast<int16_t>(state.currentFields().count()); });
}

void CDaoRecordset::GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] { state.currentFields().describe(index, level, info); });
}

void CDaoRecordset::GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        dao::FieldList& fields = state.currentFields();
        fields.describe(static_cast<int>(fields.positionOf(name)), level, info);
    });
}

COleVariant CDaoRecordset::GetFieldValue(const std::wstring& name) {
    State& state = opened();
    return guarded([&] { return state.valueAt(state.currentFields().positionOf(name)); });
}

COleVariant CDaoRecordset::GetFieldValue(int index) {
    State& state = opened();
    // A negative index becomes one that is beyond all fields.
    return guarded([&] { return state.valueAt(static_cast<size_t>(index)); });
}

void CDaoRecordset::sgGetRecord(std::vector<COleVariant>& items) {
    State& state = opened();
    guarded([&] {
        const std::vector<COleVariant>& names = state.currentFields().names();
        items.clear();
        items.reserve(2 * names.size());
        for (size_t position = 0; position < names.size(); ++position) {
            items.push_back(COleVariant::sharing(names[position]));
            items.push_back(state.valueAt(position));
        }
    });
}

void CDaoRecordset::SetFieldValue(const std::wstring& name, const COleVariant& value) {
    State& state = opened();
    guarded([&] {
        jet::TableRecordset& table = state.requireRecords();
        table.setValue(state.currentFields().positionOf(name), dao::fromVariant(value));
    });
}

void CDaoRecordset::SetFieldValue(int index, const COleVariant& value) {
    State& state = opened();
    guarded([&] {
        state.requireRecords().setValue(static_cast<size_t>(index), dao::fromVariant(value));
    });
}

// --- writing ---

void CDaoRecordset::AddNew() {
    State& state = opened();
    guarded([&] { state.requireRecords().addNew(); });
}

void CDaoRecordset::Edit() {
    State& state = opened();
    guarded([&] { state.requireRecords().edit(); });
}

void CDaoRecordset::Update() {
    State& state = opened();
    guarded([&] { state.requireRecords().update(); });
}

void CDaoRecordset::CancelUpdate() {
    State& state = opened();
    guarded([&] { state.requireRecords().cancelUpdate(); });
}

void CDaoRecordset::Delete() {
    State& state = opened();
    guarded([&] { state.requireRecords().erase(); });
}

int16_t CDaoRecordset::GetEditMode() const {
    State& state = opened();
    if (state.table == nullptr) return dbEditNone;
    switch (state.table->editMode()) {
        case jet::EditMode::Edit:
            return dbEditInProgress;
        case jet::EditMode::AddNew:
            return dbEditAdd;
        case jet::EditMode::None:
            break;
    }
    return dbEditNone;
}

// --- bookmarks ---

COleVariant CDaoRecordset::GetBookmark() {
    State& state = opened();
    return guarded([&] { return bookmarkVariant(state.rows->bookmark()); });
}

void CDaoRecordset::SetBookmark(const COleVariant& bookmark) {
    State& state = opened();
    guarded([&] {
        if (bookmark.vt != (VT_ARRAY | VT_UI1) || bookmark.parray == nullptr) {
            throw jet::Error(jet::InvalidBookmark);
        }
        state.rows->setBookmark(bookmark.parray->bytes);
    });
}

COleVariant CDaoRecordset::GetLastModifiedBookmark() {
    State& state = opened();
    return guarded([&] { return bookmarkVariant(state.requireRecords().lastModified()); });
}
