#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "host/jet/catalog/query.h"
#include "host/sql/statements.h"
#include "host/sql/stored/query_form.h"

// Makes the rows of one statement; for query_form.cpp alone.
namespace sg::sql::detail {

class FormWriter {
  public:
    explicit FormWriter(std::wstring_view text) : text_(text) {}

    QueryForm write(const Statement& statement);

  private:
    // What a row says besides its attribute.
    struct Cells {
        std::optional<std::wstring> expression{};
        std::optional<std::wstring> name1{};
        std::optional<std::wstring> name2{};
        std::optional<int> flag{};
    };

    void add(uint8_t attribute, Cells cells);
    void begin(Cells cells);  // the row of the kind
    void target(const TableName& table, const std::optional<ExternalDatabase>& database);
    bool isWhole() const { return form_.kind == jet::QueryKind::DataDefinition; }
    // As it stands in the text; between the parts of a name a point.
    std::wstring spelled(const Range& range) const;
    std::wstring spelled(const ColumnName& name) const;

    void parameters(const std::vector<ParameterDeclaration>& parameters);

    void from(const From& from);
    // These answer the names of the tables that they are made of.
    std::vector<std::wstring> source(const Source& source);
    std::vector<std::wstring> join(const Join& join);
    std::wstring derived(const Query& query, std::optional<std::wstring> alias);
    std::wstring condition(const Expression& term) const;

    void select(const Select& select, const std::vector<ColumnName>& targets);
    void selection(const Select& select);
    void items(const std::vector<SelectItem>& items, const std::vector<ColumnName>& targets,
               int flag = 0);
    void clauses(const Select& select, int groupFlag = 0);
    void where(const ExpressionPtr& where);
    void orderBy(const std::vector<OrderItem>& items);

    void query(const Select& select);
    void query(const TableQuery& table);
    void query(const Union& all);
    void query(const Crosstab& cross);

    void node(const QueryPtr& query);
    void node(const Insert& insert);
    void node(const Update& update);
    void node(const Delete& erase);
    // Execute and definitions.
    template <class Whole>
    void node(const Whole&) {
        begin({.expression = std::wstring(trimmed(text_))});
    }

    std::wstring_view text_;
    QueryForm form_;
    int options_ = 0;
    std::optional<std::wstring> count_;  // of TOP
    int joins_ = 0;                      // rows
    int unnamed_ = 0;                    // queries in place of tables
};

}  // namespace sg::sql::detail
