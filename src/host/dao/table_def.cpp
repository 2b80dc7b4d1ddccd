#include "platform/dao/table_def.h"

#include "base/text.h"
#include "host/dao/database_session.h"
#include "host/dao/describe.h"
#include "host/dao/errors.h"
#include "host/dao/table_fields.h"
#include "host/dao/table_links.h"
#include "host/jet/schema/schema.h"

using sg::equalIgnoringCase;
using sg::dao::DatabaseSession;
using sg::dao::guarded;
using sg::dao::throwDao;

namespace dao = sg::dao;
namespace jet = sg::jet;

namespace {

constexpr int alreadyAppended = 3367;
constexpr int fieldTooLong = 3382;
constexpr int32_t mostCharacters = 255;

// --- from what programs say to what the engine makes ---

jet::ColumnDesign columnOf(const CDaoFieldInfo& info) {
    jet::ColumnDesign column;
    column.name = info.m_strName;
    column.type = dao::columnType(info.m_nType);
    const bool hasSize =
        column.type == jet::ColumnType::Text || column.type == jet::ColumnType::Binary;
    if (hasSize) {
        if (info.m_lSize < 0 || info.m_lSize > mostCharacters) {
            throw jet::Error(fieldTooLong, {column.name});
        }
        column.size = static_cast<uint16_t>(info.m_lSize);
    }
    column.autoNumber = (info.m_lAttributes & dbAutoIncrField) != 0;
    column.fixedLength = hasSize && (info.m_lAttributes & dbFixedField) != 0;
    column.hyperlink = (info.m_lAttributes & dbHyperlinkField) != 0;
    column.required = info.m_bRequired;
    column.allowZeroLength = info.m_bAllowZeroLength;
    column.defaultValue = info.m_strDefaultValue;
    column.validationRule = info.m_strValidationRule;
    column.validationText = info.m_strValidationText;
    return column;
}

jet::IndexDesign indexOf(const CDaoIndexInfo& info) {
    jet::IndexDesign index;
    index.name = info.m_strName;
    for (const CDaoIndexFieldInfo& field : info.m_pFieldInfos)
        index.columns.push_back({field.m_strName, !field.m_bDescending});
    index.primary = info.m_bPrimary;
    index.unique = info.m_bUnique;
    index.ignoreNulls = info.m_bIgnoreNulls;
    index.required = info.m_bRequired;
    return index;
}

// --- the fields and indexes of a table that is not in the database yet ---

template <class Item>
int positionIn(const std::vector<Item>& items, const std::wstring& name) {
    for (size_t i = 0; i < items.size(); ++i) {
        if (equalIgnoringCase(items[i].name, name)) return static_cast<int>(i);
    }
    throw jet::Error(jet::ItemNotFound);
}

template <class Item>
const Item& itemAt(const std::vector<Item>& items, int index) {
    if (index < 0 || static_cast<size_t>(index) >= items.size()) {
        throw jet::Error(jet::ItemNotFound);
    }
    return items[static_cast<size_t>(index)];
}

void describeNew(const std::vector<jet::ColumnDesign>& columns, int index, uint32_t level,
                 CDaoFieldInfo& info) {
    const jet::ColumnDesign& column = itemAt(columns, index);
    CDaoFieldInfo whole;
    whole.m_strName = column.name;
    whole.m_nType = dao::fieldType(column.type);
    whole.m_lSize = column.size;
    whole.m_lAttributes = (column.autoNumber ? dbAutoIncrField : 0) |
                          (column.fixedLength ? dbFixedField : 0) |
                          (column.hyperlink ? dbHyperlinkField : 0);
    whole.m_nOrdinalPosition = static_cast<int16_t>(index);
    whole.m_bRequired = column.required;
    whole.m_bAllowZeroLength = column.allowZeroLength;
    whole.m_strValidationRule = column.validationRule;
    whole.m_strValidationText = column.validationText;
    whole.m_strDefaultValue = column.defaultValue;
    dao::tellLevel(whole, level, info);
}

void describeNew(const jet::IndexDesign& index, uint32_t level, CDaoIndexInfo& info) {
    info = {};
    info.m_strName = index.name;
    for (const jet::IndexColumnDesign& column : index.columns)
        info.m_pFieldInfos.push_back({column.column, !column.ascending});
    info.m_nFields = static_cast<int16_t>(index.columns.size());
    if (level < AFX_DAO_SECONDARY_INFO) return;
    info.m_bPrimary = index.primary;
    info.m_bUnique = index.unique || index.primary;
    info.m_bIgnoreNulls = index.ignoreNulls;
    info.m_bRequired = index.required || index.primary;
}

}  // namespace

struct CDaoTableDef::State {
    State(DatabaseSession& opened, std::wstring itsName)
        : session(opened), opening(opened.opening()), name(std::move(itsName)) {}

    DatabaseSession& session;
    uint64_t opening;
    bool isNew = false;
    std::wstring name;
    std::wstring connect;
    std::wstring sourceTable;
    int32_t attributes = 0;
    jet::TableDesign design;  // of a new one

    jet::Database& database() const { return session.database(); }

    // What the catalog says of the table.
    void read() {
        const jet::CatalogObject object = session.table(name);
        name = object.name;
        connect = dao::connectOf(object);
        sourceTable = object.foreignName;
        attributes = dao::attributesOf(object);
        isNew = false;
    }

    // The table itself, which for a link is in the other file.
    jet::Table table() const {
        std::wstring there = name;
        const jet::Database& home = database().home(there);
        return home.table(there);
    }
    dao::TableFields fields() const {
        std::wstring there = name;
        const jet::Database& home = database().home(there);
        return {home, home.table(there), false};
    }
};

CDaoTableDef::CDaoTableDef(CDaoDatabase* database)
    : m_pDatabase(database), session_(database != nullptr ? database->session() : nullptr) {}
CDaoTableDef::~CDaoTableDef() = default;

CDaoTableDef::State& CDaoTableDef::opened() const {
    if (!IsOpen()) throwDao(jet::ObjectClosed);
    return *state_;
}

void CDaoTableDef::Create(const std::wstring& name, int32_t attributes,
                          const std::wstring& sourceTable, const std::wstring& connect) {
    Close();
    if (session_ == nullptr || !session_->isOpen()) throwDao(jet::ObjectClosed);
    state_ = std::make_unique<State>(*session_, name);
    state_->isNew = true;
    state_->design.name = name;
    state_->attributes = attributes;
    state_->sourceTable = sourceTable;
    state_->connect = connect;
}

void CDaoTableDef::Append() {
    State& state = opened();
    if (!state.isNew) throwDao(alreadyAppended);
    guarded([&] {
        if (state.connect.empty()) {
            jet::createTable(state.database(), state.design);
        } else {
            dao::requireLinkedTable(state.database(), state.connect, state.sourceTable);
            jet::linkTable(state.database(), state.name, state.connect, state.sourceTable);
        }
        state.read();
    });
}

void CDaoTableDef::Open(const std::wstring& name) {
    Close();
    if (session_ == nullptr || !session_->isOpen()) throwDao(jet::ObjectClosed);
    guarded([&] {
        auto state = std::make_unique<State>(*session_, name);
        state->read();
        state_ = std::move(state);
    });
}

void CDaoTableDef::Close() {
    state_.reset();
}

bool CDaoTableDef::IsOpen() const {
    return state_ != nullptr && state_->opening == session_->opening();
}

std::wstring CDaoTableDef::GetName() const {
    return IsOpen() ? state_->name : std::wstring();
}

void CDaoTableDef::SetName(const std::wstring& name) {
    State& state = opened();
    guarded([&] {
        if (!state.isNew) {
            state.session.requireUnused(state.name);
            jet::renameTable(state.database(), state.name, name);
        }
        state.name = state.design.name = name;
    });
}

int32_t CDaoTableDef::GetAttributes() const {
    return IsOpen() ? state_->attributes : 0;
}

std::wstring CDaoTableDef::GetConnect() const {
    return IsOpen() ? state_->connect : std::wstring();
}

void CDaoTableDef::SetConnect(const std::wstring& connect) {
    opened().connect = connect;
}

std::wstring CDaoTableDef::GetSourceTableName() const {
    return IsOpen() ? state_->sourceTable : std::wstring();
}

void CDaoTableDef::RefreshLink() {
    State& state = opened();
    guarded([&] {
        if (state.isNew || (state.attributes & dbAttachedTable) == 0) {
            throw jet::Error(jet::InvalidOperation);
        }
        dao::requireLinkedTable(state.database(), state.connect, state.sourceTable);
        if (state.connect == dao::connectOf(state.session.table(state.name))) return;
        jet::relink(state.database(), state.name, state.connect);
        state.read();
    });
}

int32_t CDaoTableDef::GetRecordCount() {
    State& state = opened();
    if (state.isNew) return 0;
    if (!state.connect.empty()) return -1;
    return guarded([&] { return static_cast<int32_t>(state.table().rowCount()); });
}

// --- fields ---

void CDaoTableDef::CreateField(const std::wstring& name, int16_t type, int32_t size,
                               int32_t attributes) {
    CDaoFieldInfo info;
    info.m_strName = name;
    info.m_nType = type;
    info.m_lSize = size;
    info.m_lAttributes = attributes;
    CreateField(info);
}

void CDaoTableDef::CreateField(CDaoFieldInfo& info) {
    State& state = opened();
    guarded([&] {
        jet::ColumnDesign column = columnOf(info);
        if (!state.isNew) {
            jet::addColumn(state.database(), state.name, column);
            return;
        }
        for (const jet::ColumnDesign& other : state.design.columns) {
            if (equalIgnoringCase(other.name, column.name)) {
                throw jet::Error(jet::FieldDefinedTwice, {column.name});
            }
        }
        state.design.columns.push_back(std::move(column));
    });
}

void CDaoTableDef::DeleteField(const std::wstring& name) {
    State& state = opened();
    guarded([&] {
        if (!state.isNew) {
            state.fields().positionOf(name);
            jet::dropColumn(state.database(), state.name, name);
            return;
        }
        auto& columns = state.design.columns;
        columns.erase(columns.begin() + positionIn(columns, name));
    });
}

int16_t CDaoTableDef::GetFieldCount() {
    State& state = opened();
    if (state.isNew) return static_cast<int16_t>(state.design.columns.size());
    return guarded([&] { return static_cast<int16_t>(state.fields().count()); });
}

void CDaoTableDef::GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        if (state.isNew) return describeNew(state.design.columns, index, level, info);
        state.fields().describe(index, level, info);
    });
}

void CDaoTableDef::GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        if (state.isNew) {
            const auto& columns = state.design.columns;
            return describeNew(columns, positionIn(columns, name), level, info);
        }
        dao::TableFields fields = state.fields();
        fields.describe(static_cast<int>(fields.positionOf(name)), level, info);
    });
}

// --- indexes ---

void CDaoTableDef::CreateIndex(CDaoIndexInfo& info) {
    State& state = opened();
    guarded([&] {
        jet::IndexDesign index = indexOf(info);
        if (!state.isNew) {
            jet::createIndex(state.database(), state.name, index);
            return;
        }
        for (const jet::IndexDesign& other : state.design.indexes) {
            if (equalIgnoringCase(other.name, index.name)) {
                throw jet::Error(jet::IndexExists, {index.name});
            }
            if (other.primary && index.primary) throw jet::Error(jet::PrimaryKeyExists);
        }
        state.design.indexes.push_back(std::move(index));
    });
}

void CDaoTableDef::DeleteIndex(const std::wstring& name) {
    State& state = opened();
    guarded([&] {
        if (!state.isNew) {
            dao::indexNamed(state.table().definition(), name);
            jet::dropIndex(state.database(), state.name, name);
            return;
        }
        auto& indexes = state.design.indexes;
        indexes.erase(indexes.begin() + positionIn(indexes, name));
    });
}

int16_t CDaoTableDef::GetIndexCount() {
    State& state = opened();
    if (state.isNew) return static_cast<int16_t>(state.design.indexes.size());
    return guarded([&] {
        return static_cast<int16_t>(dao::indexesInOrder(state.table().definition()).size());
    });
}

void CDaoTableDef::GetIndexInfo(int index, CDaoIndexInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        if (state.isNew) return describeNew(itemAt(state.design.indexes, index), level, info);
        const jet::Table table = state.table();
        dao::describeIndex(table, dao::indexAt(table.definition(), index), level, info);
    });
}

void CDaoTableDef::GetIndexInfo(const std::wstring& name, CDaoIndexInfo& info, uint32_t level) {
    State& state = opened();
    guarded([&] {
        if (state.isNew) {
            const auto& indexes = state.design.indexes;
            return describeNew(itemAt(indexes, positionIn(indexes, name)), level, info);
        }
        const jet::Table table = state.table();
        dao::describeIndex(table, dao::indexNamed(table.definition(), name), level, info);
    });
}
