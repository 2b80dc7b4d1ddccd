// Statements of the printer.

#include "host/sql/printer.h"
#include "host/sql/words.h"

namespace sg::sql::detail {

void Printer::print(const Statement& statement) {
    if (!statement.parameters.empty()) {
        add(L"PARAMETERS ");
        parameters(statement.parameters);
        add(L"; ");
    }
    body(statement);
}

void Printer::body(const Statement& statement) {
    std::visit([this](const auto& one) { node(one); }, statement.body);
    add(statement.ownerAccess ? L" WITH OWNERACCESS OPTION" : L"");
}

void Printer::parameters(const std::vector<ParameterDeclaration>& parameters) {
    list(parameters, [this](const ParameterDeclaration& one) {
        column(one.name);
        add(L" ");
        type(one.type);
    });
}

void Printer::type(const DataType& type) {
    add(nameOf(type));
    const auto number = [](int32_t n) { return std::to_wstring(n); };
    if (type.length) {
        add(L"(" + number(*type.length) + L")");
    } else if (type.precision) {
        add(L"(" + number(*type.precision) + (type.scale ? L", " + number(*type.scale) : L"") +
            L")");
    } else if (type.autoNumber && (type.seed != 1 || type.increment != 1)) {
        add(L"(" + number(type.seed) + L", " + number(type.increment) + L")");
    }
}

// ---- Actions

void Printer::node(const QueryPtr& node) {
    print(*node);
}

void Printer::node(const Insert& node) {
    add(L"INSERT INTO ");
    table(node.table);
    if (!node.columns.empty()) {
        add(L" (");
        list(node.columns, [this](const ColumnName& one) { column(one); });
        add(L")");
    }
    database(node.database);
    if (node.query) {
        add(L" ");
        print(*node.query);
        return;
    }
    add(L" VALUES (");
    expressions(node.values);
    add(L")");
}

void Printer::node(const Update& node) {
    add(L"UPDATE ");
    from(node.from);
    add(L" SET ");
    list(node.assignments, [this](const Assignment& one) {
        column(one.column);
        add(L" = ");
        print(*one.value);
    });
    where(node.where);
}

void Printer::node(const Delete& node) {
    add(L"DELETE ");
    add(node.distinctRow ? L"DISTINCTROW " : L"");
    items(node.items);
    add(node.items.empty() ? L"FROM " : L" FROM ");
    from(node.from);
    where(node.where);
}

void Printer::node(const Execute& node) {
    add(L"EXECUTE ");
    name(node.procedure);
    add(node.arguments.empty() ? L"" : L" ");
    expressions(node.arguments);
}

// ---- Definitions

void Printer::node(const CreateTable& node) {
    add(L"CREATE TABLE ");
    table(node.table);
    add(L" (");
    list(node.columns, [this](const ColumnDefinition& one) { definition(one); });
    add(node.columns.empty() || node.constraints.empty() ? L"" : L", ");
    list(node.constraints, [this](const Constraint& one) { constraint(one); });
    add(L")");
}

void Printer::definition(const ColumnDefinition& column) {
    name(column.name);
    add(L" ");
    type(column.type);
    add(column.compression ? L" WITH COMPRESSION" : L"");
    add(column.notNull ? L" NOT NULL" : L"");
    if (column.defaultValue) {
        add(L" DEFAULT ");
        part(*column.defaultValue, ConcatenateLevel);
    }
    for (const Constraint& one : column.constraints) {
        add(L" ");
        constraint(one);
    }
}

void Printer::constraint(const Constraint& constraint) {
    if (constraint.name) {
        add(L"CONSTRAINT ");
        name(*constraint.name);
        add(L" ");
    }
    const bool ofTable = !constraint.columns.empty();
    switch (constraint.kind) {
        case ConstraintKind::PrimaryKey:
            add(L"PRIMARY KEY");
            break;
        case ConstraintKind::Unique:
            add(L"UNIQUE");
            break;
        case ConstraintKind::NotNull:
            add(L"NOT NULL");
            break;
        case ConstraintKind::ForeignKey:
            add(ofTable ? L"FOREIGN KEY" : L"");
            break;
    }
    add(constraint.noIndex ? L" NO INDEX" : L"");
    if (ofTable) {
        names(constraint.columns);
    }
    if (constraint.references) {
        add(ofTable ? L" " : L"");
        references(*constraint.references);
    }
}

void Printer::references(const References& references) {
    static constexpr const wchar_t* words[] = {L"", L"CASCADE", L"SET NULL"};
    add(L"REFERENCES ");
    table(references.table);
    if (!references.columns.empty()) {
        names(references.columns);
    }
    if (references.onUpdate != ReferenceAction::None) {
        add(L" ON UPDATE ");
        add(words[static_cast<size_t>(references.onUpdate)]);
    }
    if (references.onDelete != ReferenceAction::None) {
        add(L" ON DELETE ");
        add(words[static_cast<size_t>(references.onDelete)]);
    }
}

void Printer::node(const AlterTable& alter) {
    add(L"ALTER TABLE ");
    table(alter.table);
    std::visit([this](const auto& one) { node(one); }, alter.action);
}

void Printer::node(const AddColumns& node) {
    add(L" ADD COLUMN ");
    list(node.columns, [this](const ColumnDefinition& one) { definition(one); });
}

void Printer::node(const AddConstraint& node) {
    add(L" ADD ");
    constraint(node.constraint);
}

void Printer::node(const AlterColumn& node) {
    add(L" ALTER COLUMN ");
    definition(node.column);
}

void Printer::node(const AlterDefault& node) {
    add(L" ALTER COLUMN ");
    name(node.column);
    add(node.value ? L" SET DEFAULT " : L" DROP DEFAULT");
    if (node.value) {
        print(*node.value);
    }
}

void Printer::node(const DropColumns& node) {
    add(L" DROP COLUMN ");
    list(node.columns, [this](const Name& one) { name(one); });
}

void Printer::node(const DropConstraint& node) {
    add(L" DROP CONSTRAINT ");
    name(node.constraint);
}

void Printer::node(const CreateIndex& node) {
    add(node.unique ? L"CREATE UNIQUE INDEX " : L"CREATE INDEX ");
    name(node.index);
    add(L" ON ");
    table(node.table);
    add(L" (");
    list(node.columns, [this](const IndexColumn& one) {
        name(one.name);
        add(one.descending ? L" DESC" : L"");
    });
    add(L")");
    add(node.primary        ? L" WITH PRIMARY"
        : node.disallowNull ? L" WITH DISALLOW NULL"
        : node.ignoreNull   ? L" WITH IGNORE NULL"
                            : L"");
}

void Printer::node(const Drop& node) {
    static constexpr const wchar_t* words[] = {L"TABLE ", L"INDEX ", L"VIEW ", L"PROCEDURE "};
    add(L"DROP ");
    add(words[static_cast<size_t>(node.kind)]);
    table(node.name);
    if (node.table) {
        add(L" ON ");
        table(*node.table);
    }
}

void Printer::node(const CreateView& node) {
    add(L"CREATE VIEW ");
    name(node.view);
    if (!node.columns.empty()) {
        names(node.columns);
    }
    add(L" AS ");
    print(*node.query);
}

void Printer::node(const CreateProcedure& node) {
    add(L"CREATE PROCEDURE ");
    name(node.procedure);
    if (!node.statement->parameters.empty()) {
        add(L" (");
        parameters(node.statement->parameters);
        add(L")");
    }
    add(L" AS ");
    body(*node.statement);
}

}  // namespace sg::sql::detail
