#include "host/sql/to_text.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "host/sql/printer.h"
#include "host/sql/words.h"

namespace sg::sql {
namespace detail {
namespace {

std::wstring quoted(std::wstring_view text) {
    std::wstring made = L"\"";
    for (const wchar_t c : text) {
        made.append(c == L'"' ? 2 : 1, c);
    }
    return made + L'"';
}

// A whole number below zero can only come from digits of base 16 or 8.
template <class Unsigned, class Number>
std::wstring wholeText(Number number) {
    if (number >= 0) {
        return std::to_wstring(number);
    }
    char digits[16];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), static_cast<Unsigned>(number), 16);
    return L"&H" + upperCased(std::wstring(std::begin(digits), end.ptr));
}

// The shortest that reads as the same number, and not as a whole one.
std::wstring doubleText(double number) {
    constexpr double mostInDigits = 1e15;
    char digits[32];
    const bool isWhole = number < mostInDigits && number == std::floor(number);
    const auto end = isWhole ? std::to_chars(std::begin(digits), std::end(digits), number,
                                             std::chars_format::fixed)
                             : std::to_chars(std::begin(digits), std::end(digits), number);
    std::wstring text(std::begin(digits), end.ptr);
    if (text.find_first_of(L".e") == std::wstring::npos &&
        number <= std::numeric_limits<int32_t>::max()) {
        text += L".0";
    }
    return upperCased(text);
}

struct LiteralText {
    std::wstring operator()(bool truth) const { return truth ? L"True" : L"False"; }
    std::wstring operator()(int16_t number) const { return wholeText<uint16_t>(number); }
    std::wstring operator()(int32_t number) const { return wholeText<uint32_t>(number); }
    std::wstring operator()(double number) const { return doubleText(number); }
    std::wstring operator()(jet::Date date) const { return L"#" + jet::toText(date) + L"#"; }
    std::wstring operator()(const std::wstring& text) const { return quoted(text); }
    // No other value has a literal.
    template <class Other>
    std::wstring operator()(const Other&) const {
        return L"Null";
    }
};

// How tightly the expression's own operator binds.
struct LevelOf {
    int operator()(const Unary& node) const {
        return node.op == UnaryOperator::Not ? NotLevel : SignLevel;
    }
    int operator()(const Binary& node) const { return infixOf(node.op).level; }
    int operator()(const Like&) const { return ComparisonLevel; }
    int operator()(const Between&) const { return ComparisonLevel; }
    int operator()(const In&) const { return ComparisonLevel; }
    int operator()(const IsNull&) const { return ComparisonLevel; }
    int operator()(const Quantified&) const { return ComparisonLevel; }
    template <class Other>
    int operator()(const Other&) const {
        return OperandLevel;
    }
};

const wchar_t* notText(bool negated) {
    return negated ? L" Not" : L"";
}

}  // namespace

// ---- Names

void Printer::name(const Name& name) {
    add(quotedName(name.text));
}

void Printer::path(const std::vector<Name>& qualifiers) {
    for (const Name& qualifier : qualifiers) {
        name(qualifier);
        add(L".");
    }
}

void Printer::column(const ColumnName& column) {
    path(column.qualifiers);
    name(column.name);
}

void Printer::names(const std::vector<Name>& names) {
    add(L" (");
    list(names, [this](const Name& one) { name(one); });
    add(L")");
}

void Printer::table(const TableName& table) {
    if (table.database) {
        name(*table.database);
        add(L".");
    }
    name(table.name);
}

void Printer::alias(const std::optional<Name>& alias) {
    if (alias) {
        add(L" AS ");
        name(*alias);
    }
}

void Printer::database(const std::optional<ExternalDatabase>& database) {
    if (!database) {
        return;
    }
    add(L" IN " + quoted(database->path));
    if (!database->connect.empty()) {
        const bool hasBracket = database->connect.find_first_of(L"[]") != std::wstring::npos;
        add(hasBracket ? L" " + quoted(database->connect) : L" [" + database->connect + L"]");
    }
}

// ---- Expressions

void Printer::print(const Expression& expression) {
    std::visit([this](const auto& one) { node(one); }, expression.node);
}

void Printer::part(const Expression& expression, int least) {
    const int level = std::visit(LevelOf(), expression.node);
    const bool encloses =
        level < (parentheses_ == Parentheses::All ? static_cast<int>(OperandLevel) : least);
    add(encloses ? L"(" : L"");
    print(expression);
    add(encloses ? L")" : L"");
}

void Printer::expressions(const std::vector<ExpressionPtr>& all) {
    list(all, [this](const ExpressionPtr& one) { print(*one); });
}

void Printer::enclosed(const Query& query) {
    add(L"(");
    print(query);
    add(L")");
}

void Printer::node(const Literal& node) {
    add(std::visit(LiteralText(), node.value));
}

void Printer::node(const ColumnName& node) {
    column(node);
}

void Printer::node(const Star& node) {
    path(node.qualifiers);
    add(L"*");
}

void Printer::node(const PositionalParameter&) {
    add(L"?");
}

void Printer::node(const Unary& node) {
    const bool isNot = node.op == UnaryOperator::Not;
    add(isNot ? L"Not " : L"-");
    part(*node.operand, isNot ? NotLevel : SignLevel);
}

void Printer::node(const Binary& node) {
    const Infix& op = infixOf(node.op);
    part(*node.left, op.level);
    add(L" ");
    add(op.text);
    add(L" ");
    part(*node.right, op.level + 1);
}

void Printer::node(const Like& node) {
    part(*node.value, ComparisonLevel);
    add(notText(node.negated));
    add(node.ansi ? L" ALike " : L" Like ");
    part(*node.pattern, ConcatenateLevel);
}

void Printer::node(const Between& node) {
    part(*node.value, ComparisonLevel);
    add(notText(node.negated));
    add(L" Between ");
    part(*node.low, ConcatenateLevel);
    add(L" And ");
    part(*node.high, ConcatenateLevel);
}

void Printer::node(const In& node) {
    part(*node.value, ComparisonLevel);
    add(notText(node.negated));
    add(L" In ");
    if (node.query) {
        enclosed(*node.query);
        return;
    }
    add(L"(");
    expressions(node.list);
    add(L")");
}

void Printer::node(const IsNull& node) {
    part(*node.value, ComparisonLevel);
    add(node.negated ? L" Is Not Null" : L" Is Null");
}

void Printer::node(const Call& node) {
    add(node.function.text);
    add(L"(");
    expressions(node.arguments);
    add(L")");
}

void Printer::node(const Aggregate& node) {
    add(nameOf(node.function));
    add(L"(");
    if (node.argument) {
        print(*node.argument);
    } else {
        add(L"*");
    }
    add(L")");
}

void Printer::node(const Subquery& node) {
    enclosed(*node.query);
}

void Printer::node(const Exists& node) {
    add(L"Exists ");
    enclosed(*node.query);
}

void Printer::node(const Quantified& node) {
    part(*node.value, ComparisonLevel);
    add(L" ");
    add(infixOf(node.op).text);
    add(node.quantifier == Quantifier::Any ? L" Any " : L" All ");
    enclosed(*node.query);
}

}  // namespace detail

std::wstring toText(const Expression& expression, Parentheses parentheses) {
    detail::Printer printer(parentheses);
    printer.print(expression);
    return printer.take();
}

std::wstring toText(const Query& query, Parentheses parentheses) {
    detail::Printer printer(parentheses);
    printer.print(query);
    return printer.take();
}

std::wstring toText(const Statement& statement, Parentheses parentheses) {
    detail::Printer printer(parentheses);
    printer.print(statement);
    return printer.take();
}

}  // namespace sg::sql
