#include "host/sql/stored/query_form.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/sql/stored/form_writer.h"
#include "host/sql/syntax_errors.h"
#include "host/sql/to_text.h"
#include "host/sql/words.h"

namespace sg::sql {
namespace detail {
namespace {

namespace attr = jet::queryAttributes;
namespace options = jet::queryOptions;
namespace columns = jet::queryColumns;

// What the engine calls a query that stands in place of a table without a name.
constexpr std::wstring_view unnamedQuery = L"%$##@_Alias";

std::optional<std::wstring> textOrNone(const std::wstring& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

std::optional<std::wstring> textOf(const std::optional<Name>& name) {
    return name ? std::optional(name->text) : std::nullopt;
}

// What an action's target says of another file.
ExternalDatabase fileOf(const TableName& table, const std::optional<ExternalDatabase>& database) {
    if (database || !table.database) {
        return database.value_or(ExternalDatabase());
    }
    const std::wstring& text = table.database->text;
    const bool isConnect = text.find(L';') != std::wstring::npos;
    return {isConnect ? std::wstring() : text, isConnect ? text : std::wstring(), {}};
}

// The terms of "a AND b AND c" as they are written.
void split(const Expression& condition, std::vector<const Expression*>& terms) {
    const auto* both = std::get_if<Binary>(&condition.node);
    if (both == nullptr || both->op != BinaryOperator::And) {
        terms.push_back(&condition);
        return;
    }
    split(*both->left, terms);
    terms.push_back(both->right.get());
}

// The one of `tables` that a side of the comparison `term` is a column of, else the first.
const std::wstring& tableOf(const Expression& term, const std::vector<std::wstring>& tables) {
    const auto* comparison = std::get_if<Binary>(&term.node);
    for (const auto side : {&Binary::left, &Binary::right}) {
        const auto* column =
            comparison == nullptr ? nullptr : std::get_if<ColumnName>(&(comparison->*side)->node);
        if (column == nullptr || column->qualifiers.empty()) {
            continue;
        }
        const auto found = std::find_if(tables.begin(), tables.end(), [&](const auto& table) {
            return equalIgnoringCase(table, column->qualifiers.back().text);
        });
        if (found != tables.end()) {
            return *found;
        }
    }
    return tables.front();
}

struct KindOf {
    jet::QueryKind operator()(const QueryPtr& query) const {
        return std::visit(*this, query->body);
    }
    jet::QueryKind operator()(const Select& select) const {
        return select.into ? jet::QueryKind::MakeTable : jet::QueryKind::Select;
    }
    jet::QueryKind operator()(const TableQuery&) const { return jet::QueryKind::Select; }
    jet::QueryKind operator()(const Union&) const { return jet::QueryKind::Union; }
    jet::QueryKind operator()(const Crosstab&) const { return jet::QueryKind::Crosstab; }
    jet::QueryKind operator()(const Insert&) const { return jet::QueryKind::Append; }
    jet::QueryKind operator()(const Update&) const { return jet::QueryKind::Update; }
    jet::QueryKind operator()(const Delete&) const { return jet::QueryKind::Delete; }
    template <class Whole>
    jet::QueryKind operator()(const Whole&) const {
        return jet::QueryKind::DataDefinition;
    }
};

}  // namespace

QueryForm FormWriter::write(const Statement& statement) {
    form_.kind = kindOf(statement);
    add(attr::start, {.flag = 0});
    std::visit([this](const auto& body) { node(body); }, statement.body);
    if (!isWhole()) {
        parameters(statement.parameters);
        options_ |= statement.ownerAccess ? options::ownerAccess : 0;
        add(attr::options, {.name1 = count_, .flag = options_});
    }
    add(attr::end, {});
    jet::sortQueryRows(form_.rows);
    return std::move(form_);
}

void FormWriter::add(uint8_t attribute, Cells cells) {
    jet::QueryRow row;
    row.attribute = attribute;
    row.expression = std::move(cells.expression);
    row.name1 = std::move(cells.name1);
    row.name2 = std::move(cells.name2);
    if (cells.flag) {
        row.flag = static_cast<int16_t>(*cells.flag);
    }
    form_.rows.push_back(std::move(row));
}

std::wstring FormWriter::spelled(const Range& range) const {
    return std::wstring(range.of(text_));
}

std::wstring FormWriter::spelled(const ColumnName& name) const {
    std::wstring all;
    for (const Name& qualifier : name.qualifiers) {
        all += spelled(qualifier.range) + L'.';
    }
    return all + spelled(name.name.range);
}

void FormWriter::begin(Cells cells) {
    cells.flag = static_cast<int>(form_.kind);
    add(attr::kind, std::move(cells));
}

void FormWriter::target(const TableName& table, const std::optional<ExternalDatabase>& database) {
    const ExternalDatabase file = fileOf(table, database);
    begin({.expression = textOrNone(file.connect),
           .name1 = table.name.text,
           .name2 = textOrNone(file.path)});
}

void FormWriter::parameters(const std::vector<ParameterDeclaration>& parameters) {
    for (const ParameterDeclaration& each : parameters) {
        const auto type = each.type.type ? static_cast<int>(*each.type.type) : 0;
        add(attr::parameter, {.name1 = parameterName(each.name), .flag = type});
        form_.rows.back().extra = each.type.length;
    }
}

// ---- Sources

void FormWriter::from(const From& from) {
    for (const SourcePtr& each : from.sources) {
        source(*each);
    }
    if (from.database) {
        // One of the two must be there for the row to say something.
        const bool hasConnect = !from.database->connect.empty();
        add(attr::remote, {.expression = textOrNone(from.database->connect),
                           .name1 = hasConnect ? textOrNone(from.database->path)
                                               : std::optional(from.database->path)});
    }
}

std::vector<std::wstring> FormWriter::source(const Source& source) {
    if (const auto* table = std::get_if<TableReference>(&source.node)) {
        add(attr::table, {.expression = textOf(table->table.database),
                          .name1 = table->table.name.text,
                          .name2 = textOf(table->alias)});
        return {table->alias ? table->alias->text : table->table.name.text};
    }
    if (const auto* query = std::get_if<DerivedTable>(&source.node)) {
        return {derived(*query->query, textOf(query->alias))};
    }
    return join(std::get<Join>(source.node));
}

std::wstring FormWriter::derived(const Query& query, std::optional<std::wstring> alias) {
    if (!alias) {
        alias = unnamedQuery;
        if (unnamed_++ > 0) {
            *alias += std::to_wstring(unnamed_);
        }
    }
    add(attr::table, {.expression = spelled(query.range), .name2 = alias});
    return *alias;
}

// Each term of the condition is a row; that of the last one stands first.
std::vector<std::wstring> FormWriter::join(const Join& join) {
    std::vector<std::wstring> left = source(*join.left);
    std::vector<std::wstring> right = source(*join.right);
    for (const std::wstring& name : right) {
        const auto isSame = [&](const auto& other) { return equalIgnoringCase(name, other); };
        if (std::any_of(left.begin(), left.end(), isSame)) {
            throw jet::Error(jet::ObjectExists, {name});
        }
    }
    std::vector<const Expression*> terms;
    split(*join.condition, terms);
    joins_ += static_cast<int>(terms.size());
    if (joins_ > jet::maxQueryJoins) {
        throw jet::Error(TooComplex);
    }
    for (size_t i = terms.size(); i-- > 0;) {
        add(attr::join, {.expression = condition(*terms[i]),
                         .name1 = tableOf(*terms[i], left),
                         .name2 = tableOf(*terms[i], right),
                         .flag = static_cast<int>(join.kind) + 1});
    }
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// Without parentheses around it, which would grow each time that it is kept.
std::wstring FormWriter::condition(const Expression& term) const {
    const auto* both = std::get_if<Binary>(&term.node);
    if (both == nullptr) {
        return toText(term);
    }
    const uint32_t begin = both->left->range.offset;
    return spelled({begin, both->right->range.end() - begin});
}

// ---- Queries

void FormWriter::select(const Select& select, const std::vector<ColumnName>& targets) {
    selection(select);
    items(select.items, targets);
    clauses(select);
}

// What stands between SELECT and the columns.
void FormWriter::selection(const Select& select) {
    if (select.distinctness != Distinctness::All) {
        options_ |= select.distinctness == Distinctness::Distinct ? options::distinct
                                                                  : options::distinctRow;
    }
    if (select.top) {
        options_ |= options::top | (select.top->percent ? options::percent : 0);
        count_ = std::to_wstring(select.top->count);
    }
}

// A last star is an option, unless it stands for columns that have targets. Targets may be more
// than the items, of which one may be a star.
void FormWriter::items(const std::vector<SelectItem>& items, const std::vector<ColumnName>& targets,
                       int flag) {
    for (size_t i = 0; i < items.size(); ++i) {
        const auto* star = std::get_if<Star>(&items[i].expression->node);
        if (star != nullptr && star->qualifiers.empty() && i + 1 == items.size() &&
            targets.empty()) {
            options_ |= options::star;
            continue;
        }
        add(attr::column, {.expression = spelled(items[i].expression->range),
                           .name1 = textOf(items[i].alias),
                           .flag = flag});
        if (i < targets.size()) {
            form_.rows.back().name2 = spelled(targets[i]);
        }
    }
    for (size_t i = items.size(); i < targets.size(); ++i) {
        add(attr::column, {.name2 = spelled(targets[i]), .flag = flag});
    }
}

void FormWriter::clauses(const Select& select, int groupFlag) {
    if (select.from) {
        from(*select.from);
    }
    where(select.where);
    for (const ExpressionPtr& each : select.groupBy) {
        add(attr::groupBy, {.expression = spelled(each->range), .flag = groupFlag});
    }
    if (select.having) {
        add(attr::having, {.expression = spelled(select.having->range)});
    }
}

void FormWriter::where(const ExpressionPtr& where) {
    if (where) {
        add(attr::where, {.expression = spelled(where->range)});
    }
}

void FormWriter::orderBy(const std::vector<OrderItem>& items) {
    for (const OrderItem& each : items) {
        add(attr::orderBy,
            {.expression = spelled(each.expression->range),
             .name1 = each.descending ? std::optional<std::wstring>(L"D") : std::nullopt});
    }
}

void FormWriter::query(const Select& select) {
    if (select.into) {
        target(select.into->table, select.into->database);
    } else {
        begin({});
    }
    this->select(select, {});
}

void FormWriter::query(const TableQuery& table) {
    begin({});
    options_ |= options::star;
    add(attr::table, {.expression = textOf(table.table.database), .name1 = table.table.name.text});
}

// Two parts: the last term and all before it.
void FormWriter::query(const Union& all) {
    begin({});
    const Union::Term& last = all.terms.back();
    options_ |= options::star | (last.all ? 0 : options::distinct);
    const Range first = all.terms.front().query->range;
    const uint32_t end = all.terms[all.terms.size() - 2].query->range.end();
    add(attr::table,
        {.expression = spelled({first.offset, end - first.offset}), .name2 = L"X7YZ_____1"});
    add(attr::table, {.expression = spelled(last.query->range), .name2 = L"X7YZ_____2"});
}

void FormWriter::query(const Crosstab& cross) {
    begin({});
    selection(cross.select);
    add(attr::column,
        {.expression = spelled(cross.value->range), .name1 = textOf(cross.alias), .flag = 0});
    items(cross.select.items, {}, columns::row);
    std::wstring pivot = spelled(cross.pivot->range);
    clauses(cross.select, columns::row);
    add(attr::groupBy, {.expression = pivot, .flag = columns::pivot});
    if (!cross.headings.empty()) {
        const uint32_t begin = cross.headings.front()->range.offset;
        pivot += L" In (" + spelled({begin, cross.headings.back()->range.end() - begin}) + L")";
    }
    add(attr::column, {.expression = pivot, .flag = columns::pivot});
}

void FormWriter::node(const QueryPtr& query) {
    std::visit([this](const auto& body) { this->query(body); }, query->body);
    orderBy(query->orderBy);
}

// ---- Actions

void FormWriter::node(const Insert& insert) {
    target(insert.table, insert.database);
    for (size_t i = 0; i < insert.values.size(); ++i) {
        add(attr::column, {.expression = spelled(insert.values[i]->range), .flag = columns::value});
        if (i < insert.columns.size()) {
            form_.rows.back().name2 = spelled(insert.columns[i]);
        }
    }
    if (insert.query == nullptr) {
        return;
    }
    if (const auto* plain = std::get_if<Select>(&insert.query->body)) {
        select(*plain, insert.columns);
        orderBy(insert.query->orderBy);
        return;
    }
    // Other queries have no place in the form but that of a table.
    if (insert.columns.empty()) {
        options_ |= options::star;
    } else {
        for (const ColumnName& each : insert.columns) {
            add(attr::column, {.name2 = spelled(each), .flag = 0});
        }
        auto& first = form_.rows[form_.rows.size() - insert.columns.size()];
        first.expression = L"*";
    }
    derived(*insert.query, std::nullopt);
}

void FormWriter::node(const Update& update) {
    begin({});
    from(update.from);
    for (const Assignment& each : update.assignments) {
        add(attr::column,
            {.expression = spelled(each.value->range), .name2 = spelled(each.column), .flag = 0});
    }
    where(update.where);
}

void FormWriter::node(const Delete& erase) {
    begin({});
    options_ |= erase.distinctRow ? options::distinctRow : 0;
    items(erase.items, {});
    from(erase.from);
    where(erase.where);
}

}  // namespace detail

jet::QueryKind kindOf(const Statement& statement) {
    return std::visit(detail::KindOf(), statement.body);
}

QueryForm queryForm(const Statement& statement, std::wstring_view text) {
    return detail::FormWriter(text).write(statement);
}

}  // namespace sg::sql
