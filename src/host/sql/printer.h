#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/sql/statements.h"
#include "host/sql/to_text.h"

// Writes trees out, for to_text.h: expressions and queries here, statements in
// statement_printer.cpp.
namespace sg::sql::detail {

using jet::detail::Infix;
using jet::detail::infixOf;
using enum jet::detail::Precedence;

class Printer {
  public:
    explicit Printer(Parentheses parentheses) : parentheses_(parentheses) {}

    void print(const Expression& expression);
    void print(const Query& query);
    void print(const Statement& statement);
    std::wstring take() { return std::move(out_); }

  private:
    void add(std::wstring_view text) { out_ += text; }
    template <class All, class One>
    void list(const All& all, One one);  // with ", " between them
    void expressions(const std::vector<ExpressionPtr>& all);

    void name(const Name& name);
    void path(const std::vector<Name>& qualifiers);  // with a point behind each
    void column(const ColumnName& column);
    void names(const std::vector<Name>& names);  // in parentheses
    void table(const TableName& table);
    void alias(const std::optional<Name>& alias);
    void database(const std::optional<ExternalDatabase>& database);

    // As part of an operation, where it must bind at least as tightly as `least`.
    void part(const Expression& expression, int least);
    void enclosed(const Query& query);

    void node(const Literal& node);
    void node(const ColumnName& node);
    void node(const Star& node);
    void node(const PositionalParameter& node);
    void node(const Unary& node);
    void node(const Binary& node);
    void node(const Like& node);
    void node(const Between& node);
    void node(const In& node);
    void node(const IsNull& node);
    void node(const Call& node);
    void node(const Aggregate& node);
    void node(const Subquery& node);
    void node(const Exists& node);
    void node(const Quantified& node);

    void print(const Source& source);
    void joined(const Source& source);
    void node(const TableReference& node);
    void node(const DerivedTable& node);
    void node(const Join& node);
    void from(const From& from);

    void node(const Select& node);
    void node(const TableQuery& node);
    void node(const Union& node);
    void items(const std::vector<SelectItem>& items);
    void where(const ExpressionPtr& where);
    void orderBy(const std::vector<OrderItem>& items);
    void pivot(const Crosstab& node);

    void node(const QueryPtr& node);
    void node(const Insert& node);
    void node(const Update& node);
    void node(const Delete& node);
    void node(const Execute& node);
    void node(const CreateTable& node);
    void node(const AlterTable& node);
    void node(const CreateIndex& node);
    void node(const Drop& node);
    void node(const CreateView& node);
    void node(const CreateProcedure& node);

    void node(const AddColumns& node);
    void node(const AddConstraint& node);
    void node(const AlterColumn& node);
    void node(const AlterDefault& node);
    void node(const DropColumns& node);
    void node(const DropConstraint& node);

    void body(const Statement& statement);  // without its parameters
    void parameters(const std::vector<ParameterDeclaration>& parameters);
    void type(const DataType& type);
    void definition(const ColumnDefinition& column);
    void constraint(const Constraint& constraint);
    void references(const References& references);

    Parentheses parentheses_;
    std::wstring out_;
};

template <class All, class One>
void Printer::list(const All& all, One one) {
    bool first = true;
    for (const auto& item : all) {
        add(first ? L"" : L", ");
        one(item);
        first = false;
    }
}

}  // namespace sg::sql::detail
