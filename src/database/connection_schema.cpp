// The design of a connection's database: tables, fields, indexes, links and relations.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/connection.h"
#include "database/field_definitions.h"
#include "platform/dao/table_def.h"

namespace sg {
namespace {

// The collection has nothing of this name.
constexpr int32_t kItemNotFound = 3265;

COleSafeArray arrayOf(std::vector<COleVariant> items) {
    COleSafeArray array;
    array.CreateFromVariants(std::move(items));
    return array;
}

// Names and values that alternate.
class Properties {
  public:
    void add(std::wstring_view name, COleVariant value) {
        items_.push_back(COleVariant::fromString(name));
        items_.push_back(std::move(value));
    }
    void add(std::wstring_view name, const std::wstring& text) {
        add(name, COleVariant::fromString(text));
    }
    void add(std::wstring_view name, int32_t number) { add(name, COleVariant::fromInt32(number)); }

    COleSafeArray take() { return arrayOf(std::move(items_)); }

  private:
    std::vector<COleVariant> items_;
};

// What stands for a value of the type in a template record. A currency has none, as its values have
// none in LISP.
COleVariant emptyValue(int16_t type) {
    switch (type) {
        case dbBoolean:
        case dbByte:
        case dbInteger:
        case dbLong:
            return COleVariant::fromInt32(0);
        case dbSingle:
        case dbDouble:
            return COleVariant::fromDouble(0);
        case dbDate:
        case dbText:
        case dbMemo:
            return COleVariant::fromString(L"");
        default:
            return {};
    }
}

// False where the list of definitions is wrong; the fields ahead of that are made.
bool addFields(CDaoTableDef& table, const COleSafeArray& fields) {
    FieldDefinitionReader reader(fields);
    for (FieldDefinition definition; reader.next(definition);) {
        table.CreateField(definition.field);
        if (definition.index) table.CreateIndex(*definition.index);
    }
    return reader.isWellFormed();
}

CDaoIndexInfo indexInfo(CDaoRecordset& table, const std::wstring& index, uint32_t level) {
    CDaoIndexInfo info;
    table.GetIndexInfo(index, info, level);
    return info;
}

// The names of the relations that `wanted` lets through.
template <class Wanted>
std::vector<std::wstring> relationNames(CDaoDatabase& database, const Wanted& wanted) {
    std::vector<std::wstring> names;
    const int count = database.GetRelationCount();
    for (int position = 0; position < count; ++position) {
        CDaoRelationInfo relation;
        database.GetRelationInfo(position, relation, AFX_DAO_PRIMARY_INFO);
        if (wanted(relation)) names.push_back(relation.m_strName);
    }
    return names;
}

// Deleting one moves the others, so all are found first.
template <class Wanted>
void deleteRelations(CDaoDatabase& database, const Wanted& wanted) {
    for (const std::wstring& name : relationNames(database, wanted))
        database.DeleteRelation(name);
}

COleSafeArray propertiesOf(const CDaoRelationInfo& relation) {
    Properties properties;
    properties.add(L"strName", relation.m_strName);
    properties.add(L"strTable", relation.m_strTable);
    properties.add(L"strForeignTable", relation.m_strForeignTable);
    properties.add(L"lAttributes", relation.m_lAttributes);
    for (const CDaoRelationFieldInfo& field : relation.m_pFieldInfos) {
        properties.add(L"field_strName", field.m_strName);
        properties.add(L"field_strForeignName", field.m_strForeignName);
    }
    return properties.take();
}

COleSafeArray propertiesOf(const CDaoFieldInfo& field) {
    Properties properties;
    properties.add(L"strName", field.m_strName);
    properties.add(L"nType", int32_t{field.m_nType});
    properties.add(L"lSize", field.m_lSize);
    properties.add(L"lAttributes", field.m_lAttributes);
    properties.add(L"nOrdinalPosition", int32_t{field.m_nOrdinalPosition});
    properties.add(L"bRequired", int32_t{field.m_bRequired});
    properties.add(L"bAllowZeroLength", int32_t{field.m_bAllowZeroLength});
    properties.add(L"strDefaultValue", field.m_strDefaultValue);
    return properties.take();
}

}  // namespace

// --- tables ---

bool CDBConnection::CreateTable(const std::wstring& name, const COleSafeArray& fields) {
    clearError();
    if (!IsOpen()) return false;
    CDaoTableDef table(&database_);
    const bool added = capture([&] {
        table.Create(name);
        return addFields(table, fields);
    });
    if (!table.IsOpen() || table.GetFieldCount() == 0) return false;
    if (added) {
        return capture([&] {
            table.Append();
            return true;
        });
    }
    // What is reported is why a field could not be made, whatever becomes of the table.
    try {
        table.Append();
    } catch (CDaoException* exception) {
        exception->Delete();
    }
    return false;
}

bool CDBConnection::ModifyTable(const std::wstring& name, const COleSafeArray& fields) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoTableDef table(&database_);
               table.Open(name);
               const bool added = addFields(table, fields);
               table.Close();
               return added;
           });
}

bool CDBConnection::RenameTable(const std::wstring& name, const std::wstring& newName) {
    clearError();
    if (!IsOpen()) return false;
    CloseNamedTable(name);
    return capture([&] {
        CDaoTableDef table(&database_);
        table.Open(name);
        table.SetName(newName);
        table.Close();
        return true;
    });
}

bool CDBConnection::DeleteTable(const std::wstring& name, bool withRelations) {
    clearError();
    if (!IsOpen()) return false;
    CloseNamedTable(name);
    return capture([&] {
        if (withRelations) {
            deleteRelations(database_, [&](const CDaoRelationInfo& relation) {
                return relation.m_strTable == name || relation.m_strForeignTable == name;
            });
        }
        database_.DeleteTableDef(name);
        return true;
    });
}

bool CDBConnection::ListTables(COleSafeArray& names) {
    clearError();
    return IsOpen() && capture([&] {
               std::vector<COleVariant> found;
               const int count = database_.GetTableDefCount();
               for (int position = 0; position < count; ++position) {
                   CDaoTableDefInfo table;
                   database_.GetTableDefInfo(position, table, AFX_DAO_PRIMARY_INFO);
                   if (table.m_strName.starts_with(L"MS")) continue;
                   found.push_back(COleVariant::fromString(table.m_strName));
               }
               names = arrayOf(std::move(found));
               return true;
           });
}

bool CDBConnection::LinkTable(const std::wstring& name, const std::wstring& file,
                              const std::wstring& sourceTable) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoTableDef table(&database_);
               table.Create(name, 0, sourceTable, L";DATABASE=" + file);
               table.Append();
               table.RefreshLink();
               table.Close();
               return true;
           });
}

// --- fields ---

bool CDBConnection::GetStructure(COleSafeArray& record) {
    clearError();
    return isTableReady() && capture([&] {
               Properties values;
               const int count = table().GetFieldCount();
               CDaoFieldInfo field;
               for (int position = 0; position < count; ++position) {
                   table().GetFieldInfo(position, field, AFX_DAO_PRIMARY_INFO);
                   values.add(field.m_strName, emptyValue(field.m_nType));
               }
               record = values.take();
               return true;
           });
}

bool CDBConnection::FieldRequired(const std::wstring& name, const std::wstring& field) {
    if (!OpenTable(name, L"") || field.empty() || !isTableReady()) return false;
    return capture([&] {
        CDaoFieldInfo info;
        table().GetFieldInfo(field, info, AFX_DAO_SECONDARY_INFO);
        return info.m_bRequired;
    });
}

bool CDBConnection::FieldAttributes(const std::wstring& field, COleSafeArray& attributes) {
    clearError();
    return isTableReady() && capture([&] {
               CDaoFieldInfo info;
               table().GetFieldInfo(field, info, AFX_DAO_ALL_INFO);
               attributes = propertiesOf(info);
               return true;
           });
}

// --- indexes ---

bool CDBConnection::ListIndexes(COleSafeArray& names) {
    clearError();
    return isTableReady() && capture([&] {
               std::vector<COleVariant> found;
               const int count = table().GetIndexCount();
               CDaoIndexInfo index;
               for (int position = 0; position < count; ++position) {
                   table().GetIndexInfo(position, index, AFX_DAO_PRIMARY_INFO);
                   found.push_back(COleVariant::fromString(index.m_strName));
               }
               names = arrayOf(std::move(found));
               return count > 0;
           });
}

bool CDBConnection::CreateIndex(const std::wstring& name, const std::wstring& field, int16_t unique,
                                int16_t primary) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoIndexInfo index;
               index.m_strName = field;
               index.m_pFieldInfos.push_back({field, false});
               index.m_nFields = 1;
               index.m_bUnique = unique != 0;
               index.m_bPrimary = primary != 0;
               CDaoTableDef table(&database_);
               table.Open(name);
               table.CreateIndex(index);
               table.Close();
               return true;
           });
}

bool CDBConnection::IndexUnique(const std::wstring& index, bool& unique) {
    clearError();
    return isTableReady() && capture([&] {
               unique = indexInfo(table(), index, AFX_DAO_SECONDARY_INFO).m_bUnique;
               return true;
           });
}

bool CDBConnection::IndexFields(const std::wstring& index, COleSafeArray& names) {
    clearError();
    return isTableReady() && capture([&] {
               std::vector<COleVariant> found;
               const CDaoIndexInfo info = indexInfo(table(), index, AFX_DAO_PRIMARY_INFO);
               for (const CDaoIndexFieldInfo& field : info.m_pFieldInfos)
                   found.push_back(COleVariant::fromString(field.m_strName));
               names = arrayOf(std::move(found));
               return true;
           });
}

// --- relations ---

// That there is none is no error.
bool CDBConnection::RelationExists(const std::wstring& name) {
    clearError();
    if (!IsOpen()) return false;
    try {
        CDaoRelationInfo relation;
        database_.GetRelationInfo(name, relation, AFX_DAO_PRIMARY_INFO);
        return true;
    } catch (CDaoException* exception) {
        if (exception->m_pErrorInfo->m_lErrorCode != kItemNotFound) recordError(*exception);
        exception->Delete();
        return false;
    }
}

bool CDBConnection::DeleteRelations(const std::wstring& name, const std::wstring& foreignTable) {
    clearError();
    return IsOpen() && capture([&] {
               deleteRelations(database_, [&](const CDaoRelationInfo& relation) {
                   return relation.m_strTable == name && relation.m_strForeignTable == foreignTable;
               });
               return true;
           });
}

bool CDBConnection::RelationCount(int32_t& count) {
    clearError();
    return IsOpen() && capture([&] {
               count = database_.GetRelationCount();
               return true;
           });
}

bool CDBConnection::RelationInfo(const std::wstring& name, COleSafeArray& properties) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoRelationInfo relation;
               database_.GetRelationInfo(name, relation, AFX_DAO_ALL_INFO);
               properties = propertiesOf(relation);
               return true;
           });
}

bool CDBConnection::RelationInfo(int32_t position, COleSafeArray& properties) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoRelationInfo relation;
               database_.GetRelationInfo(position, relation, AFX_DAO_ALL_INFO);
               properties = propertiesOf(relation);
               return true;
           });
}

}  // namespace sg
