// CREATE, ALTER and DROP.

#include <algorithm>

#include "base/text.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/schema/schema.h"
#include "host/sql/run/actions.h"
#include "host/sql/run/translator.h"
#include "host/sql/to_text.h"

namespace sg::sql {
namespace {

constexpr int noPrimaryKey = 3373;
constexpr int noConstraint = 3371;
constexpr int indexOfThatName = 3375;

jet::Database& databaseOf(const Setting& setting, const TableName& table) {
    return Translator(setting.database, {}, setting.parameters, setting.engine)
        .databaseOf(table, {});
}

jet::ColumnDesign designOf(const ColumnDefinition& column) {
    jet::ColumnDesign design;
    design.name = column.name.text;
    design.type = column.type.type.value_or(ColumnType::Text);
    design.autoNumber = column.type.autoNumber;
    design.firstNumber = column.type.seed;
    design.numberStep = column.type.increment;
    design.fixedLength = column.type.fixed;
    if (column.type.length) {
        if (*column.type.length < 1 || *column.type.length > 255) {
            throw jet::Error(3382, {design.name});
        }
        design.size = static_cast<uint16_t>(*column.type.length);
    }
    if (column.type.precision) {
        design.precision = static_cast<uint8_t>(*column.type.precision);
    }
    if (column.type.scale) {
        design.scale = static_cast<uint8_t>(*column.type.scale);
    }
    design.required = column.notNull;
    for (const Constraint& each : column.constraints) {
        design.required = design.required || each.kind == ConstraintKind::NotNull;
    }
    if (column.defaultValue != nullptr) {
        design.defaultValue = toText(*column.defaultValue);
    }
    return design;
}

std::vector<std::wstring> columnsOf(const Constraint& constraint, const Name* own) {
    std::vector<std::wstring> names;
    for (const Name& name : constraint.columns) {
        names.push_back(name.text);
    }
    if (names.empty() && own != nullptr) {
        names.push_back(own->text);
    }
    return names;
}

// Of a primary key or a unique constraint.
jet::IndexDesign indexOf(const Constraint& constraint, const Name* own) {
    jet::IndexDesign index;
    const std::vector<std::wstring> columns = columnsOf(constraint, own);
    index.primary = constraint.kind == ConstraintKind::PrimaryKey;
    index.unique = true;
    index.required = index.primary;
    index.name = constraint.name ? constraint.name->text
                 : index.primary ? L"PrimaryKey"
                                 : L"Index_" + columns.at(0);
    for (const std::wstring& column : columns) {
        index.columns.push_back({column});
    }
    return index;
}

uint32_t flagsOf(const References& references) {
    uint32_t flags = 0;
    if (references.onUpdate == ReferenceAction::Cascade) {
        flags |= jet::relationFlags::cascadeUpdates;
    }
    if (references.onDelete == ReferenceAction::Cascade) {
        flags |= jet::relationFlags::cascadeDeletes;
    } else if (references.onDelete == ReferenceAction::SetNull) {
        flags |= jet::relationFlags::nullsOnDelete;
    }
    return flags;
}

// For a relation that the statement gives no name.
std::wstring freeName(const jet::Database& database, const jet::Relation& relation) {
    const std::wstring first = relation.table + relation.foreignTable;
    const std::vector<jet::Relation> others = database.relations();
    std::wstring name = first;
    for (int i = 1; std::any_of(
             others.begin(), others.end(),
             [&](const jet::Relation& other) { return equalIgnoringCase(other.name, name); });
         ++i) {
        name = first + std::to_wstring(i);
    }
    return name;
}

jet::Relation relationOf(jet::Database& database, const std::wstring& table,
                         const Constraint& constraint, const Name* own) {
    const References& references = *constraint.references;
    if (references.onUpdate == ReferenceAction::SetNull) {  // which a file can't keep
        throw jet::Error(jet::OperationNotSupported, {}, {.detail = L"ON UPDATE SET NULL"});
    }
    jet::Relation relation;
    relation.table = references.table.name.text;
    relation.foreignTable = table;
    relation.name = constraint.name ? constraint.name->text : freeName(database, relation);
    relation.flags = flagsOf(references);
    std::vector<std::wstring> primary;
    for (const Name& name : references.columns) {
        primary.push_back(name.text);
    }
    if (primary.empty()) {
        const jet::Table other = database.table(relation.table);
        const jet::LogicalIndex* key = other.definition().primaryKey();
        if (key == nullptr) {
            throw jet::Error(noPrimaryKey, {relation.table});
        }
        for (const jet::IndexColumn& column : other.definition().realOf(*key).columns) {
            const auto place = other.definition().columnByNumber(column.column);
            primary.push_back(other.definition().columns[*place].name);
        }
    }
    const std::vector<std::wstring> foreign = columnsOf(constraint, own);
    if (primary.size() != foreign.size()) {
        throw jet::Error(3368);
    }
    for (size_t i = 0; i < primary.size(); ++i) {
        relation.columns.push_back({primary[i], foreign[i]});
    }
    return relation;
}

// Adds a constraint to a table that is there.
void add(jet::Database& database, const std::wstring& table, const Constraint& constraint,
         const Name* own) {
    switch (constraint.kind) {
        case ConstraintKind::NotNull:
            return;
        case ConstraintKind::ForeignKey:
            jet::createRelation(database, relationOf(database, table, constraint, own));
            return;
        default:
            jet::createIndex(database, table, indexOf(constraint, own));
    }
}

void dropConstraint(jet::Database& database, const std::wstring& table, const std::wstring& name) {
    for (const jet::Relation& relation : database.relations()) {
        if (equalIgnoringCase(relation.name, name) &&
            equalIgnoringCase(relation.foreignTable, table)) {
            jet::dropRelation(database, relation.name);
            return;
        }
    }
    if (database.table(table).definition().indexByName(name) == nullptr) {
        throw jet::Error(noConstraint);
    }
    jet::dropIndex(database, table, name);
}

void setDefault(jet::Database& database, const std::wstring& table, const AlterDefault& change) {
    jet::Property property;
    property.name = L"DefaultValue";
    property.type = ColumnType::Memo;
    if (change.value != nullptr) {
        property.value = toText(*change.value);
    }
    jet::setProperty(database, table, change.column.text, property);
}

}  // namespace

void createTable(const Setting& setting, const CreateTable& statement) {
    jet::Database& database = databaseOf(setting, statement.table);
    Transaction transaction(database);
    jet::TableDesign design;
    design.name = statement.table.name.text;
    const auto isForeign = [](const Constraint& each) {
        return each.kind == ConstraintKind::ForeignKey;
    };
    const auto isIndex = [](const Constraint& each) {
        return each.kind == ConstraintKind::PrimaryKey || each.kind == ConstraintKind::Unique;
    };
    for (const ColumnDefinition& column : statement.columns) {
        design.columns.push_back(designOf(column));
        for (const Constraint& each : column.constraints) {
            if (isIndex(each)) {
                design.indexes.push_back(indexOf(each, &column.name));
            }
        }
    }
    for (const Constraint& each : statement.constraints) {
        if (isIndex(each)) {
            design.indexes.push_back(indexOf(each, nullptr));
        }
    }
    jet::createTable(database, design);
    for (const ColumnDefinition& column : statement.columns) {
        for (const Constraint& each : column.constraints) {
            if (isForeign(each)) {
                add(database, design.name, each, &column.name);
            }
        }
    }
    for (const Constraint& each : statement.constraints) {
        if (isForeign(each)) {
            add(database, design.name, each, nullptr);
        }
    }
    transaction.commit();
}

void alterTable(const Setting& setting, const AlterTable& statement) {
    jet::Database& database = databaseOf(setting, statement.table);
    Transaction transaction(database);
    struct Visitor {
        jet::Database& database;
        const std::wstring& table;

        void operator()(const AddColumns& node) {
            for (const ColumnDefinition& column : node.columns) {
                jet::addColumn(database, table, designOf(column));
                for (const Constraint& each : column.constraints) {
                    add(database, table, each, &column.name);
                }
            }
        }
        void operator()(const AddConstraint& node) {
            add(database, table, node.constraint, nullptr);
        }
        void operator()(const AlterColumn& node) {
            jet::alterColumn(database, table, designOf(node.column));
            for (const Constraint& each : node.column.constraints) {
                add(database, table, each, &node.column.name);
            }
        }
        void operator()(const AlterDefault& node) { setDefault(database, table, node); }
        void operator()(const DropColumns& node) {
            for (const Name& column : node.columns) {
                jet::dropColumn(database, table, column.text);
            }
        }
        void operator()(const DropConstraint& node) {
            dropConstraint(database, table, node.constraint.text);
        }
    };
    std::visit(Visitor{database, statement.table.name.text}, statement.action);
    transaction.commit();
}

void createIndex(const Setting& setting, const CreateIndex& statement) {
    jet::IndexDesign index;
    index.name = statement.index.text;
    index.primary = statement.primary;
    index.unique = statement.unique || statement.primary;
    index.required = statement.disallowNull || statement.primary;
    index.ignoreNulls = statement.ignoreNull;
    for (const IndexColumn& column : statement.columns) {
        index.columns.push_back({column.name.text, !column.descending});
    }
    const std::wstring& table = statement.table.name.text;
    try {
        jet::createIndex(databaseOf(setting, statement.table), table, index);
    } catch (const jet::Error& error) {
        if (error.code() == jet::IndexExists) {
            throw jet::Error(indexOfThatName, {table, index.name});
        }
        throw;
    }
}

void drop(const Setting& setting, const Drop& statement) {
    const TableName& named = statement.table ? *statement.table : statement.name;
    jet::Database& database = databaseOf(setting, named);
    const std::wstring& name = statement.name.name.text;
    switch (statement.kind) {
        case ObjectKind::Table:
            if (database.object(name, jet::ObjectType::Query) != nullptr) {
                jet::dropQuery(database, name);
            } else {
                jet::dropTable(database, name);
            }
            return;
        case ObjectKind::Index:
            jet::dropIndex(database, named.name.text, name);
            return;
        default:
            jet::dropQuery(database, name);
    }
}

}  // namespace sg::sql
