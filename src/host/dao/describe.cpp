#include "host/dao/describe.h"

#include "base/text.h"
#include "host/dao/name_order.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/definition_writer.h"
#include "platform/dao/constants.h"

namespace sg::dao {
namespace {

[[noreturn]] void throwNotFound() {
    throw jet::Error(jet::ItemNotFound);
}

// The end of a relation in the table that is referred to is the engine's own affair.
bool isShown(const jet::LogicalIndex& index) {
    return !index.isForeign() || index.relatedType != jet::LogicalIndex::referredTo;
}

}  // namespace

void describeIndex(const jet::Table& table, size_t index, uint32_t level, CDaoIndexInfo& info) {
    const jet::TableDefinition& definition = table.definition();
    const jet::LogicalIndex& found = definition.indexes[index];
    const jet::RealIndex& real = definition.realOf(found);
    info = {};
    info.m_strName = found.name;
    for (const jet::IndexColumn& column : real.columns) {
        const auto place = definition.columnByNumber(column.column);
        if (place) {
            info.m_pFieldInfos.push_back({definition.columns[*place].name, !column.ascending});
        }
    }
    info.m_nFields = static_cast<int16_t>(info.m_pFieldInfos.size());
    if (level < AFX_DAO_SECONDARY_INFO) return;
    info.m_bPrimary = found.isPrimary();
    info.m_bUnique = real.isUnique();
    info.m_bIgnoreNulls = real.ignoresNulls();
    info.m_bRequired = real.isRequired();
    info.m_bForeign = found.isForeign();
    if (level < AFX_DAO_ALL_INFO) return;
    info.m_lDistinctCount =
        static_cast<int32_t>(jet::readEntryCount(table.store(), definition, found.realIndex));
}

int32_t attributesOf(const jet::CatalogObject& object) {
    int32_t attributes = 0;
    if (object.isSystem()) attributes |= dbSystemObject;
    if (object.isHidden()) attributes |= dbHiddenObject;
    if (object.type == jet::ObjectType::LinkedTable) attributes |= dbAttachedTable;
    if (object.type == jet::ObjectType::LinkedOdbcTable) attributes |= dbAttachedODBC;
    return attributes;
}

std::wstring connectOf(const jet::CatalogObject& object) {
    if (!object.isLinked() || object.database.empty()) return object.connect;
    std::wstring connect = object.connect;
    if (!connect.ends_with(L';')) connect += L';';
    return connect + L"DATABASE=" + object.database;
}

void describeTable(const jet::Database& database, const jet::CatalogObject& object, uint32_t level,
                   CDaoTableDefInfo& info) {
    info = {};
    info.m_strName = object.name;
    info.m_bUpdatable = object.isTable() && !database.isReadOnly();
    info.m_lAttributes = attributesOf(object);
    if (level < AFX_DAO_SECONDARY_INFO) return;
    info.m_dateCreated = object.created.days;
    info.m_dateLastUpdated = object.updated.days;
    info.m_strSrcTableName = object.foreignName;
    info.m_strConnect = connectOf(object);
    if (level < AFX_DAO_ALL_INFO) return;
    const jet::Properties properties = database.properties(object);
    info.m_strValidationRule = properties.text({}, L"ValidationRule");
    info.m_strValidationText = properties.text({}, L"ValidationText");
    info.m_lRecordCount =
        object.isTable() ? static_cast<int32_t>(database.table(object.name).rowCount()) : -1;
}

void describeRelation(const jet::Relation& relation, uint32_t level, CDaoRelationInfo& info) {
    info = {};
    info.m_strName = relation.name;
    info.m_strTable = relation.table;
    info.m_strForeignTable = relation.foreignTable;
    if (level < AFX_DAO_SECONDARY_INFO) return;
    info.m_lAttributes = static_cast<int32_t>(relation.flags);
    if (level < AFX_DAO_ALL_INFO) return;
    for (const jet::RelationColumns& columns : relation.columns) {
        info.m_pFieldInfos.push_back({columns.column, columns.foreignColumn});
    }
    info.m_nFields = static_cast<int16_t>(info.m_pFieldInfos.size());
}

void describeQuery(const jet::CatalogObject& object, const jet::Query& query, uint32_t level,
                   CDaoQueryDefInfo& info) {
    info = {};
    info.m_strName = query.name;
    info.m_nType = static_cast<int16_t>(jet::catalogFlags(query.kind()));
    if (level < AFX_DAO_SECONDARY_INFO) return;
    info.m_dateCreated = object.created.days;
    info.m_dateLastUpdated = object.updated.days;
    info.m_bUpdatable = true;
    const jet::QueryKind kind = query.kind();
    info.m_bReturnsRecords = kind == jet::QueryKind::Select || kind == jet::QueryKind::Crosstab ||
                             kind == jet::QueryKind::Union;
    if (level < AFX_DAO_ALL_INFO) return;
    info.m_strSQL = query.sql();
    info.m_strConnect = query.connect();
}

std::vector<size_t> indexesInOrder(const jet::TableDefinition& definition) {
    std::vector<size_t> places;
    for (size_t i = 0; i < definition.indexes.size(); ++i) {
        if (isShown(definition.indexes[i])) places.push_back(i);
    }
    sortByName(places, [&](size_t i) -> const std::wstring& { return definition.indexes[i].name; });
    return places;
}

size_t indexAt(const jet::TableDefinition& definition, int position) {
    const std::vector<size_t> places = indexesInOrder(definition);
    if (position < 0 || static_cast<size_t>(position) >= places.size()) throwNotFound();
    return places[static_cast<size_t>(position)];
}

size_t indexNamed(const jet::TableDefinition& definition, std::wstring_view name) {
    for (size_t i = 0; i < definition.indexes.size(); ++i) {
        const jet::LogicalIndex& index = definition.indexes[i];
        if (isShown(index) && equalIgnoringCase(index.name, name)) return i;
    }
    throwNotFound();
}

}  // namespace sg::dao
