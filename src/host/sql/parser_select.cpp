// Queries of the parser: SELECT, UNION, TABLE, TRANSFORM.

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/sql/made.h"
#include "host/sql/syntax_parser.h"

namespace sg::sql::detail {

// At a query of some kind, perhaps in parentheses.
bool SyntaxParser::atQuery() const {
    return at(L"SELECT") || at(L"TABLE") || at(L"TRANSFORM") || atSymbol(L"(");
}

template <class Read>
QueryPtr SyntaxParser::measured(Read read) {
    const int outer = std::exchange(highest_, 0);
    QueryPtr made = read();
    made->height = counted(highest_ + 1);
    highest_ = std::max(highest_, outer);
    return made;
}

// Terms and what unites them, and the order of the whole.
QueryPtr SyntaxParser::query() {
    const Nesting nesting(*this);
    return measured([this] {
        ++queries_;
        bool enclosed = false;
        QueryPtr made = measured([&] { return queryTerm(enclosed); });
        if (at(L"UNION")) {
            made = unite(std::move(made), enclosed);
        } else if (enclosed && made->orderBy.empty()) {
            made->orderBy = orderBy();
        }
        --queries_;
        return made;
    });
}

// A query between UNIONs. `enclosed` tells whether it stands in parentheses.
QueryPtr SyntaxParser::queryTerm(bool& enclosed) {
    const size_t begin = start();
    enclosed = atSymbol(L"(");
    if (enclosed) {
        open(SelectSyntax);
        if (!atQuery()) {
            fail(SelectSyntax);
        }
        QueryPtr made = query();
        close(clause_);
        made->range = since(begin);
        return made;
    }
    if (at(L"SELECT")) {
        return selectQuery();
    }
    if (at(L"TRANSFORM") && queries_ == 1) {
        return crosstab();
    }
    expect(L"TABLE", UnionSyntax);
    clause_ = SelectSyntax;
    auto made = std::make_unique<Query>();
    made->body = TableQuery{tableName(SelectSyntax)};
    made->orderBy = orderBy();
    made->range = since(begin);
    return made;
}

// A union whose first term, in parentheses of its own, was taken for something else.
QueryPtr SyntaxParser::unionBehind(QueryPtr first) {
    const Nesting nesting(*this);
    return measured([&] {
        highest_ = first->height;
        ++queries_;
        ++openParentheses_;
        QueryPtr made = unite(std::move(first), true);
        --openParentheses_;
        --queries_;
        return made;
    });
}

QueryPtr SyntaxParser::unite(QueryPtr first, bool enclosed) {
    const size_t begin = first->range.offset;
    Union all;
    all.terms.push_back({std::move(first), false});
    while (take(L"UNION")) {
        const bool isAll = take(L"ALL");
        if (!atQuery() || at(L"TRANSFORM")) {
            fail(UnionSyntax);
        }
        all.terms.push_back({measured([&] { return queryTerm(enclosed); }), isAll});
    }
    for (const Union::Term& term : all.terms) {
        const auto* select = std::get_if<Select>(&term.query->body);
        if (select != nullptr ? select->into.has_value()
                              : std::holds_alternative<Crosstab>(term.query->body)) {
            fail(UnionSyntax);
        }
    }
    auto made = std::make_unique<Query>();
    made->body = std::move(all);
    orderUnion(*made, enclosed);
    made->range = since(begin);
    return made;
}

// What orders the last term orders the union, unless parentheses keep it in.
void SyntaxParser::orderUnion(Query& united, bool enclosed) {
    if (enclosed) {
        united.orderBy = orderBy();
        return;
    }
    Query& last = *std::get<Union>(united.body).terms.back().query;
    if (!last.orderBy.empty()) {
        united.orderBy = std::exchange(last.orderBy, {});
        last.range.length = static_cast<uint32_t>(beforeOrder_ - last.range.offset);
    }
}

QueryPtr SyntaxParser::selectQuery() {
    const size_t begin = start();
    auto made = std::make_unique<Query>();
    made->body = select();
    made->orderBy = orderBy();
    made->range = since(begin);
    return made;
}

// TRANSFORM value SELECT ... PIVOT expression [IN (headings)]
QueryPtr SyntaxParser::crosstab() {
    const size_t begin = start();
    auto made = std::make_unique<Query>();
    Crosstab node;
    clause_ = TransformSyntax;
    expect(L"TRANSFORM", TransformSyntax);
    node.value = expression(TransformSyntax);
    node.alias = alias(TransformSyntax);
    node.select = select();
    if (node.select.having) {
        throw jet::Error(HavingInCrosstab);
    }
    if (node.select.into) {
        fail(TransformSyntax);
    }
    made->orderBy = orderBy();
    clause_ = TransformSyntax;
    expect(L"PIVOT", TransformSyntax);
    node.pivot = expression(TransformSyntax);
    // The list of headings reads as the operator In, unless that stands in parentheses.
    if (auto* list = std::get_if<In>(&node.pivot->node);
        list != nullptr && !list->negated && !list->query &&
        list->value->range.offset == node.pivot->range.offset) {
        node.headings = std::move(list->list);
        node.pivot = ExpressionPtr(std::move(list->value));
    }
    made->body = std::move(node);
    made->range = since(begin);
    return made;
}

Select SyntaxParser::select() {
    Select made;
    clause_ = SelectSyntax;
    expect(L"SELECT", SelectSyntax);
    selectOptions(made);
    do {
        made.items.push_back(selectItem(SelectSyntax));
    } while (takeSymbol(L","));
    if (at(L"INTO")) {
        if (queries_ > 1) {
            fail(SelectSyntax);
        }
        advance();
        made.into = IntoTable{tableName(SelectSyntax), {}};
        made.into->database = externalDatabase(SelectSyntax);
    }
    selectClauses(made);
    return made;
}

void SyntaxParser::selectOptions(Select& select) {
    if (take(L"DISTINCT")) {
        select.distinctness = Distinctness::Distinct;
    } else if (take(L"DISTINCTROW")) {
        select.distinctness = Distinctness::DistinctRow;
    } else {
        take(L"ALL");
    }
    if (at(L"TOP") && peek().kind == TokenKind::Literal) {
        select.top = top();
    }
}

Top SyntaxParser::top() {
    advance();
    Top made;
    if (const auto* few = std::get_if<int16_t>(&token_.value)) {
        made.count = *few;
    } else if (const auto* many = std::get_if<int32_t>(&token_.value)) {
        made.count = *many;
    }
    if (made.count <= 0) {
        fail(InvalidTop);
    }
    advance();
    made.percent = take(L"PERCENT");
    if (made.percent && made.count > 100) {
        throw jet::Error(InvalidTop);
    }
    return made;
}

// "*", "t.*" or an expression, which may have an alias.
SelectItem SyntaxParser::selectItem(SyntaxError otherwise) {
    const size_t begin = start();
    SelectItem made;
    if (atSymbol(L"*")) {
        made.expression = star(begin, {});
    } else {
        itemStart_ = begin;
        made.expression = expression(otherwise);
        if (!std::holds_alternative<Star>(made.expression->node)) {
            made.alias = alias(otherwise);
        }
    }
    made.range = since(begin);
    return made;
}

// From FROM to HAVING.
void SyntaxParser::selectClauses(Select& select) {
    if (at(L"FROM")) {
        advance();
        select.from = from(FromSyntax);
    }
    select.where = where();
    if (take(L"GROUP")) {
        clause_ = GroupBySyntax;
        expect(L"BY", GroupBySyntax);
        select.groupBy = expressions(GroupBySyntax);
    }
    if (take(L"HAVING")) {
        clause_ = HavingSyntax;
        select.having = expression(HavingSyntax);
    }
}

ExpressionPtr SyntaxParser::where() {
    if (!take(L"WHERE")) {
        return nullptr;
    }
    clause_ = WhereSyntax;
    return expression(WhereSyntax);
}

std::vector<OrderItem> SyntaxParser::orderBy() {
    std::vector<OrderItem> all;
    const size_t before = lastEnd_;
    if (!take(L"ORDER")) {
        return all;
    }
    clause_ = OrderBySyntax;
    expect(L"BY", OrderBySyntax);
    do {
        const size_t begin = start();
        OrderItem item;
        item.expression = expression(OrderBySyntax);
        item.descending = take(L"DESC");
        if (!item.descending) {
            take(L"ASC");
        }
        item.range = since(begin);
        all.push_back(std::move(item));
    } while (takeSymbol(L","));
    beforeOrder_ = before;
    return all;
}

}  // namespace sg::sql::detail
