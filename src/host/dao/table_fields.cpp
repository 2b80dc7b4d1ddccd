#include "host/dao/table_fields.h"

#include <map>
#include <utility>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/record_columns.h"
#include "platform/dao/constants.h"

namespace sg::dao {
namespace {

constexpr int invalidType = 3259;
constexpr int32_t decimalSize = 16;
constexpr int32_t generalOrder = 0x409;

struct TypePair {
    jet::ColumnType column;
    int16_t field;
};

constexpr TypePair typePairs[] = {
    {jet::ColumnType::Boolean, dbBoolean},   {jet::ColumnType::Byte, dbByte},
    {jet::ColumnType::Integer, dbInteger},   {jet::ColumnType::Long, dbLong},
    {jet::ColumnType::Currency, dbCurrency}, {jet::ColumnType::Single, dbSingle},
    {jet::ColumnType::Double, dbDouble},     {jet::ColumnType::Date, dbDate},
    {jet::ColumnType::Binary, dbBinary},     {jet::ColumnType::Text, dbText},
    {jet::ColumnType::Ole, dbLongBinary},    {jet::ColumnType::Memo, dbMemo},
    {jet::ColumnType::Guid, dbGUID},         {jet::ColumnType::Numeric, dbDecimal},
};

int32_t sizeOf(const jet::Column& column, const jet::Format& format) {
    switch (column.type) {
        case jet::ColumnType::Boolean:
            return 1;
        case jet::ColumnType::Text:
            return column.length / (format.wideText ? 2 : 1);
        case jet::ColumnType::Memo:
        case jet::ColumnType::Ole:
            return 0;
        case jet::ColumnType::Numeric:
            return decimalSize;
        default:
            return column.length;
    }
}

int32_t sizeOf(const jet::RecordColumn& column) {
    return column.type == jet::ColumnType::Numeric ? decimalSize
                                                   : static_cast<int32_t>(column.size);
}

int32_t attributesOf(const jet::Column& column, bool canUpdate) {
    int32_t attributes = column.isFixed() ? dbFixedField : dbVariableField;
    if (column.isAutoNumber()) attributes |= dbAutoIncrField;
    if (column.isHyperlink()) attributes |= dbHyperlinkField;
    if (canUpdate && !column.isAutoNumber() && !column.isCalculated()) {
        attributes |= dbUpdatableField;
    }
    return attributes;
}

}  // namespace

int16_t fieldType(jet::ColumnType type) {
    for (const TypePair& pair : typePairs) {
        if (pair.column == type) return pair.field;
    }
    return static_cast<int16_t>(type);
}

jet::ColumnType columnType(int16_t type) {
    for (const TypePair& pair : typePairs) {
        if (pair.field == type) return pair.column;
    }
    throw jet::Error(invalidType);
}

void tellLevel(const CDaoFieldInfo& whole, uint32_t level, CDaoFieldInfo& info) {
    static const CDaoFieldInfo none;
    const CDaoFieldInfo& secondary = level >= AFX_DAO_SECONDARY_INFO ? whole : none;
    const CDaoFieldInfo& all = level >= AFX_DAO_ALL_INFO ? whole : none;
    info.m_strName = whole.m_strName;
    info.m_nType = whole.m_nType;
    info.m_lSize = whole.m_lSize;
    info.m_lAttributes = whole.m_lAttributes;
    info.m_nOrdinalPosition = secondary.m_nOrdinalPosition;
    info.m_bRequired = secondary.m_bRequired;
    info.m_bAllowZeroLength = secondary.m_bAllowZeroLength;
    info.m_lCollatingOrder = secondary.m_lCollatingOrder;
    info.m_strForeignName = secondary.m_strForeignName;
    info.m_strSourceField = secondary.m_strSourceField;
    info.m_strSourceTable = secondary.m_strSourceTable;
    info.m_strValidationRule = all.m_strValidationRule;
    info.m_strValidationText = all.m_strValidationText;
    info.m_strDefaultValue = all.m_strDefaultValue;
}

TableFields::TableFields(const jet::Database& database, jet::Table table, bool canUpdate)
    : database_(&database), canUpdate_(canUpdate), table_(std::move(table)) {
    adopt(table_);
}

void TableFields::adopt(const jet::Table& table) {
    table_ = table;
    fields_.clear();
    names_.clear();
    hasProperties_ = false;
    const jet::TableDefinition& definition = table_.definition();
    for (const size_t place : jet::placesInOrder(definition)) {
        const jet::Column& column = definition.columns[place];
        CDaoFieldInfo& field = fields_.emplace_back();
        field.m_strName = column.name;
        field.m_nType = fieldType(column.type);
        field.m_lSize = sizeOf(column, table_.store().format());
        field.m_lAttributes = attributesOf(column, canUpdate_);
        field.m_nOrdinalPosition = static_cast<int16_t>(column.ordinal);
        field.m_lCollatingOrder = column.isText() ? column.sortOrder.id : 0;
        field.m_strSourceField = column.name;
        field.m_strSourceTable = table_.name();
    }
}

void TableFields::readProperties() {
    const jet::Properties properties = database_->tableProperties(table_.name());
    for (CDaoFieldInfo& field : fields_) {
        addProperties(properties, field);
    }
}

// --- results ---

ResultFields::ResultFields(jet::Database& database, const std::vector<jet::RecordColumn>& columns)
    : database_(&database) {
    for (const jet::RecordColumn& column : columns) {
        CDaoFieldInfo& field = fields_.emplace_back();
        const bool isText =
            column.type == jet::ColumnType::Text || column.type == jet::ColumnType::Memo;
        const bool varies =
            isText || column.type == jet::ColumnType::Binary || column.type == jet::ColumnType::Ole;
        field.m_strName = column.name;
        field.m_nType = fieldType(column.type);
        field.m_lSize = sizeOf(column);
        field.m_lAttributes = varies ? dbVariableField : dbFixedField;
        field.m_nOrdinalPosition = static_cast<int16_t>(fields_.size() - 1);
        field.m_lCollatingOrder = isText ? generalOrder : 0;
        if (!column.sourceTable.empty()) addSource(column, field);
    }
}

void ResultFields::addSource(const jet::RecordColumn& column, CDaoFieldInfo& field) {
    field.m_strSourceTable = column.sourceTable;
    field.m_strSourceField = column.sourceColumn;
    std::wstring there = column.sourceTable;
    const jet::Table table = database_->home(there).table(there);
    const jet::TableDefinition& definition = table.definition();
    if (const auto place = definition.columnByName(column.sourceColumn)) {
        field.m_lAttributes = attributesOf(definition.columns[*place], false);
    }
}

void ResultFields::readProperties() {
    std::map<std::wstring, jet::Properties> properties;  // by table
    for (CDaoFieldInfo& field : fields_) {
        if (field.m_strSourceTable.empty()) continue;
        std::wstring there = field.m_strSourceTable;
        jet::Database& home = database_->home(there);
        auto found = properties.find(field.m_strSourceTable);
        if (found == properties.end()) {
            found = properties.emplace(field.m_strSourceTable, home.tableProperties(there)).first;
        }
        addProperties(found->second, field);
    }
}

// --- both ---

void FieldList::addProperties(const jet::Properties& properties, CDaoFieldInfo& field) {
    const std::wstring& name = field.m_strSourceField;
    field.m_bRequired = properties.flag(name, L"Required");
    field.m_bAllowZeroLength = properties.flag(name, L"AllowZeroLength");
    field.m_strValidationRule = properties.text(name, L"ValidationRule");
    field.m_strValidationText = properties.text(name, L"ValidationText");
    field.m_strDefaultValue = properties.text(name, L"DefaultValue");
}

const std::vector<COleVariant>& FieldList::names() {
    if (names_.empty()) {
        for (const CDaoFieldInfo& field : fields_)
            names_.push_back(COleVariant::fromString(field.m_strName));
    }
    return names_;
}

size_t FieldList::positionOf(std::wstring_view name) const {
    for (size_t i = 0; i < fields_.size(); ++i) {
        if (equalIgnoringCase(fields_[i].m_strName, name)) return i;
    }
    throw jet::Error(jet::ItemNotFound);
}

void FieldList::describe(int position, uint32_t level, CDaoFieldInfo& info) {
    if (position < 0 || static_cast<size_t>(position) >= fields_.size()) {
        throw jet::Error(jet::ItemNotFound);
    }
    if (level >= AFX_DAO_SECONDARY_INFO && !hasProperties_) {
        readProperties();
        hasProperties_ = true;
    }
    tellLevel(fields_[static_cast<size_t>(position)], level, info);
}

}  // namespace sg::dao
