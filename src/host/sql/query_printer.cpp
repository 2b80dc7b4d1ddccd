// Queries of the printer.

#include "host/sql/printer.h"

namespace sg::sql::detail {

// ---- Sources

void Printer::print(const Source& source) {
    std::visit([this](const auto& one) { node(one); }, source.node);
}

// As one side of a join.
void Printer::joined(const Source& source) {
    const bool isJoin = std::holds_alternative<Join>(source.node);
    add(isJoin ? L"(" : L"");
    print(source);
    add(isJoin ? L")" : L"");
}

void Printer::node(const TableReference& node) {
    table(node.table);
    alias(node.alias);
}

void Printer::node(const DerivedTable& node) {
    enclosed(*node.query);
    alias(node.alias);
}

void Printer::node(const Join& node) {
    static constexpr const wchar_t* words[] = {L" INNER JOIN ", L" LEFT JOIN ", L" RIGHT JOIN "};
    joined(*node.left);
    add(words[static_cast<size_t>(node.kind)]);
    joined(*node.right);
    add(L" ON ");
    print(*node.condition);
}

void Printer::from(const From& from) {
    list(from.sources, [this](const SourcePtr& one) { print(*one); });
    database(from.database);
}

// ---- Queries

void Printer::print(const Query& query) {
    if (const auto* crosstab = std::get_if<Crosstab>(&query.body)) {
        add(L"TRANSFORM ");
        print(*crosstab->value);
        alias(crosstab->alias);
        add(L" ");
        node(crosstab->select);
        orderBy(query.orderBy);
        pivot(*crosstab);
        return;
    }
    if (const auto* select = std::get_if<Select>(&query.body)) {
        node(*select);
    } else if (const auto* whole = std::get_if<TableQuery>(&query.body)) {
        node(*whole);
    } else {
        node(std::get<Union>(query.body));
    }
    orderBy(query.orderBy);
}

void Printer::pivot(const Crosstab& node) {
    add(L" PIVOT ");
    // What reads as a list of headings stands in parentheses.
    const bool isList = std::holds_alternative<In>(node.pivot->node);
    part(*node.pivot, isList ? OperandLevel : node.headings.empty() ? ImpLevel : ComparisonLevel);
    if (!node.headings.empty()) {
        add(L" IN (");
        expressions(node.headings);
        add(L")");
    }
}

void Printer::node(const TableQuery& node) {
    add(L"TABLE ");
    table(node.table);
}

void Printer::node(const Union& node) {
    bool first = true;
    for (const Union::Term& term : node.terms) {
        add(first ? L"" : term.all ? L" UNION ALL " : L" UNION ");
        first = false;
        if (std::holds_alternative<Union>(term.query->body) || !term.query->orderBy.empty()) {
            enclosed(*term.query);
        } else {
            print(*term.query);
        }
    }
}

void Printer::node(const Select& node) {
    static constexpr const wchar_t* words[] = {L"", L"DISTINCT ", L"DISTINCTROW "};
    add(L"SELECT ");
    add(words[static_cast<size_t>(node.distinctness)]);
    if (node.top) {
        add(L"TOP " + std::to_wstring(node.top->count) + (node.top->percent ? L" PERCENT " : L" "));
    }
    items(node.items);
    if (node.into) {
        add(L" INTO ");
        table(node.into->table);
        database(node.into->database);
    }
    if (node.from) {
        add(L" FROM ");
        from(*node.from);
    }
    where(node.where);
    if (!node.groupBy.empty()) {
        add(L" GROUP BY ");
        expressions(node.groupBy);
    }
    if (node.having) {
        add(L" HAVING ");
        print(*node.having);
    }
}

void Printer::items(const std::vector<SelectItem>& items) {
    list(items, [this](const SelectItem& item) {
        print(*item.expression);
        alias(item.alias);
    });
}

void Printer::where(const ExpressionPtr& where) {
    if (where) {
        add(L" WHERE ");
        print(*where);
    }
}

void Printer::orderBy(const std::vector<OrderItem>& items) {
    if (items.empty()) {
        return;
    }
    add(L" ORDER BY ");
    list(items, [this](const OrderItem& item) {
        print(*item.expression);
        add(item.descending ? L" DESC" : L"");
    });
}

}  // namespace sg::sql::detail
