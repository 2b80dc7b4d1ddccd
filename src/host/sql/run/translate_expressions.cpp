// Expressions: values, names, operators.

#include <algorithm>

#include "base/text.h"
#include "host/jet/database/database.h"
#include "host/jet/expression/expression_operators.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"
#include "host/sql/run/like.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"
#include "host/sql/syntax_errors.h"
#include "host/sql/to_text.h"
#include "host/sql/words.h"

namespace sg::sql {
namespace {

using jet::detail::Operator;

constexpr size_t maxWritten = 200'000;

bool isTruth(const Type& type) {
    return !type.column || isBoolean(type);
}

Type quotientType(const Type& a, const Type& b) {
    if (!a.column || !b.column) {
        return {};
    }
    const auto any = [&](ColumnType type) { return a.column == type || b.column == type; };
    if (any(ColumnType::Numeric) || any(ColumnType::BigInteger)) {
        return ColumnType::Numeric;
    }
    const auto narrow = [](const Type& type) {
        return type.column == ColumnType::Single ||
               (formOf(type) == Form::Whole && type.column != ColumnType::Long);
    };
    const bool single = any(ColumnType::Single) && narrow(a) && narrow(b);
    return single ? ColumnType::Single : ColumnType::Double;
}

}  // namespace

Translator::Translator(jet::Database& database, const std::vector<ParameterDeclaration>& declared,
                       const Parameters& parameters, Engine& engine)
    : session_(&database), database_(&database), parameters_(parameters), engine_(engine) {
    declare(declared);
}

void Translator::declare(const std::vector<ParameterDeclaration>& parameters) {
    for (const ParameterDeclaration& each : parameters) {
        const std::wstring name = parameterName(each.name);
        declared_.try_emplace(upperCased(name), each.type);
        parameter(name);  // one that is declared must have a value, wanted or not
    }
}

Program Translator::query(const Query& query) {
    whole_ = &query;
    return finish(translate(query, nullptr));
}

Program Translator::finish(Translated translated) {
    if (!missing_.empty() && !describes_) {
        std::wstring names;
        for (const MissingParameter& each : missing_) {
            names += (names.empty() ? L"" : L", ") + each.name;
        }
        throw jet::Error(jet::UnknownName, {std::to_wstring(missing_.size())}, {.detail = names});
    }
    program_.text = std::move(translated.sql);
    program_.columns = std::move(translated.columns);
    return std::move(program_);
}

Program Translator::rows(Scope& scope, const Expression* where, const std::vector<size_t>& targets,
                         const std::vector<const Expression*>& values) {
    Translated made;
    const auto add = [&](const std::string& sql, const Type& type) {
        made.sql += made.columns.empty() ? "SELECT " : ", ";
        made.sql += sql + " AS c" + std::to_string(made.columns.size());
        made.columns.push_back({{}, type});
    };
    for (const size_t target : targets) {
        add(scope.bases[target].id, ColumnType::BigInteger);
    }
    for (const Expression* each : values) {
        const Typed typed = emit(*each, scope);
        add(value(typed), typed.type);
    }
    made.sql += std::string(" FROM ") + scope.from;
    if (where != nullptr) {
        made.sql += std::string(" WHERE ") + condition(*where, scope);
    }
    return finish(std::move(made));
}

Program Translator::values(const std::vector<ExpressionPtr>& values) {
    Scope scope;
    Translated made;
    for (const ExpressionPtr& each : values) {
        const Typed typed = emit(*each, scope);
        made.sql += std::string(made.columns.empty() ? "SELECT " : ", ") + value(typed);
        made.columns.push_back({{}, typed.type});
    }
    return finish(std::move(made));
}

// ---- In SQLite's text

Typed Translator::constant(jet::Value value) {
    Typed made;
    made.type = typeOf(value);
    made.sql = literalOf(value);
    if (made.sql.empty()) {
        program_.bound.push_back(value);
        made.sql = std::string("?") + std::to_string(program_.bound.size());
    }
    made.constant = std::move(value);
    return made;
}

Typed Translator::site(CallSite site, const std::vector<Typed>& arguments, bool isVolatile) {
    Typed made;
    made.sql = std::string(isVolatile ? "jetv(" : "jet(") + std::to_string(program_.calls.size());
    for (const Typed& argument : arguments) {
        made.sql += std::string(", ") + value(argument);
        site.arguments.push_back(argument.type);
    }
    made.sql += ")";
    made.type = site.result;
    program_.calls.push_back(std::move(site));
    return made;
}

Typed Translator::converted(const Typed& typed, const Type& type) {
    const Form from = formOf(typed.type);
    const Form to = formOf(type);
    const bool same = from == to || from == Form::Null || to == Form::Null ||
                      (to == Form::Real && (from == Form::Whole || from == Form::Single)) ||
                      (to == Form::Date && (from == Form::Whole || from == Form::Real));
    if (same && !(isBoolean(type) && !isTruth(typed.type))) {
        return {value(typed), type, false, typed.constant};
    }
    return site({CallSite::Kind::Convert, {}, nullptr, {}, type}, {typed});
}

std::string Translator::condition(const Typed& typed) {
    if (typed.isCondition || formOf(typed.type) != Form::Text) {
        return typed.sql;
    }
    return site({CallSite::Kind::Truth, {}, nullptr, {}, ColumnType::Boolean}, {typed}).sql;
}

std::string Translator::condition(const Expression& expression, Scope& scope) {
    return condition(emit(expression, scope));
}

std::string Translator::value(const Typed& typed) const {
    return typed.isCondition ? std::string("(-") + typed.sql + ")" : typed.sql;
}

std::string Translator::compared(const Typed& typed) const {
    return isText(typed.type) && typed.shape != Shape::Column
               ? std::string("(") + typed.sql + " COLLATE JET)"
               : value(typed);
}

// ---- Nodes

void Translator::count() {
    if (++written_ > maxWritten) {
        throw jet::Error(TooComplex);
    }
}

Typed Translator::emit(const Expression& expression, Scope& scope) {
    count();
    const bool isWhole = scope.whole == nullptr;
    if (isWhole) scope.whole = &expression;
    const bool isKey = scope.isGrouped && !scope.groupTexts.empty() && scope.ungrouped == 0 &&
                       !std::holds_alternative<ColumnName>(expression.node) &&
                       scope.groupTexts.contains(upperCased(toText(expression)));
    scope.ungrouped += isKey;
    Typed made = emitNode(expression, scope);
    scope.ungrouped -= isKey;
    if (isWhole) scope.whole = nullptr;
    return made;
}

Typed Translator::emitNode(const Expression& expression, Scope& scope) {
    const auto negatedIf = [](Typed typed, bool negated) {
        return negated
                   ? Typed{std::string("(NOT ") + typed.sql + ")", ColumnType::Boolean, true, {}}
                   : typed;
    };
    struct Visitor {
        Translator& self;
        const Expression& expression;
        Scope& scope;
        decltype(negatedIf)& negate;

        Typed operator()(const Literal& node) {
            Typed made = self.constant(node.value);
            made.isStrict = true;
            return made;
        }
        Typed operator()(const ColumnName& node) { return self.nameOrParameter(node, scope); }
        Typed operator()(const Star&) {
            throw jet::Error(jet::ExpressionSyntax, {L"Syntax error", toText(expression)});
        }
        Typed operator()(const PositionalParameter& node) {
            return self.positionalParameter(node.index);
        }
        Typed operator()(const Unary& node) { return self.unary(node, scope); }
        Typed operator()(const Binary& node) { return self.binary(node, scope); }
        Typed operator()(const Like& node) { return negate(self.like(node, scope), node.negated); }
        Typed operator()(const Between& node) {
            return negate(self.between(node, scope), node.negated);
        }
        Typed operator()(const In& node) { return negate(self.in(node, scope), node.negated); }
        Typed operator()(const IsNull& node) {
            const Typed typed = self.emit(*node.value, scope);
            return {std::string("(") + typed.sql + (node.negated ? " IS NOT NULL)" : " IS NULL)"),
                    ColumnType::Boolean,
                    true,
                    {}};
        }
        Typed operator()(const Call& node) { return self.call(node, scope); }
        Typed operator()(const Aggregate& node) { return self.aggregate(node, scope); }
        Typed operator()(const Subquery& node) { return self.subquery(*node.query, scope); }
        Typed operator()(const Exists& node) {
            return {std::string("EXISTS (") + self.translate(*node.query, &scope).sql + ")",
                    ColumnType::Boolean,
                    true,
                    {}};
        }
        Typed operator()(const Quantified& node) { return self.quantified(node, scope); }
    };
    return std::visit(Visitor{*this, expression, scope, negatedIf}, expression.node);
}

// A column of this query or of one around it; what this one has hides what those have.
std::optional<Typed> Translator::column(const ColumnName& name, Scope& scope) {
    const ScopeColumn* found = nullptr;
    for (const ScopeSource& source : scope.sources) {
        if (!name.qualifiers.empty() &&
            !equalIgnoringCase(source.name, name.qualifiers.back().text)) {
            continue;
        }
        for (const ScopeColumn& each : source.columns) {
            if (!equalIgnoringCase(each.name, name.name.text)) {
                continue;
            }
            if (found != nullptr) {
                throw jet::Error(3079, {name.name.text});
            }
            found = &each;
        }
    }
    if (found != nullptr) {
        return Typed{found->sql, found->type, false, {}, found->isStrict, Shape::Column};
    }
    // A column of a query may itself be called "table.column".
    if (!name.qualifiers.empty()) {
        const std::wstring whole = name.qualifiers.back().text + L"." + name.name.text;
        for (const ScopeSource& source : scope.sources) {
            for (const ScopeColumn& each : source.columns) {
                if (equalIgnoringCase(each.name, whole)) {
                    return Typed{each.sql, each.type, false, {}, each.isStrict, Shape::Column};
                }
            }
        }
    }
    return scope.outer != nullptr ? column(name, *scope.outer) : std::nullopt;
}

Typed Translator::nameOrParameter(const ColumnName& name, Scope& scope) {
    if (const std::optional<Typed> found = column(name, scope)) {
        const bool own =
            std::any_of(scope.sources.begin(), scope.sources.end(), [&](const ScopeSource& source) {
                return found->sql.compare(0, source.alias.size() + 1, source.alias + ".") == 0;
            });
        if (own && scope.isGrouped && scope.mayAggregate && scope.ungrouped == 0 &&
            !scope.groupColumns.contains(found->sql)) {
            throw jet::Error(3122, {toText(*scope.whole)});
        }
        return *found;
    }
    if (scope.mayAggregate && name.qualifiers.empty()) {
        for (const auto& [alias, meant] : scope.aliases) {
            if (!equalIgnoringCase(alias, name.name.text)) {
                continue;
            }
            if (std::find(aliases_.begin(), aliases_.end(), meant) != aliases_.end()) {
                throw jet::Error(3103, {alias});
            }
            aliases_.push_back(meant);
            Typed made = emit(*meant, scope);
            aliases_.pop_back();
            return made;
        }
    }
    return parameter(parameterName(name));
}

Typed Translator::parameter(const std::wstring& name) {
    const auto declared = declared_.find(upperCased(name));
    for (const Parameter& each : parameters_) {
        if (each.name.empty() || !equalIgnoringCase(each.name, name)) {
            continue;
        }
        if (declared == declared_.end() || !declared->second.type) {
            return constant(each.value);
        }
        const Type type = *declared->second.type;
        Typed made = constant(asType(type, each.value));
        made.type = type;
        return made;
    }
    miss(name);
    Typed made = constant({});
    if (declared != declared_.end() && declared->second.type) {
        made.type = *declared->second.type;
    }
    return made;
}

Typed Translator::positionalParameter(uint32_t index) {
    uint32_t at = 0;
    for (const Parameter& each : parameters_) {
        if (each.name.empty() && at++ == index) {
            return constant(each.value);
        }
    }
    miss(L"?" + std::to_wstring(index + 1));
    return constant({});
}

void Translator::miss(const std::wstring& name) {
    const bool isKnown = std::any_of(
        missing_.begin(), missing_.end(),
        [&](const MissingParameter& each) { return equalIgnoringCase(each.name, name); });
    if (!isKnown) {
        const auto declared = declared_.find(upperCased(name));
        missing_.push_back(
            {name, declared == declared_.end() ? std::nullopt : declared->second.type});
    }
}

// ---- Operators

Typed Translator::unary(const Unary& unary, Scope& scope) {
    const Typed operand = emit(*unary.operand, scope);
    const Form form = formOf(operand.type);
    if (unary.op == UnaryOperator::Not) {
        if (isTruth(operand.type)) {
            return {std::string("(NOT ") + operand.sql + ")", ColumnType::Boolean, true, {}};
        }
        return site({CallSite::Kind::Not, {}, nullptr, {}, ColumnType::Long}, {operand});
    }
    if (operand.constant) {
        Typed made = constant(jet::detail::negate(*operand.constant));
        made.isStrict = operand.isStrict;
        return made;
    }
    const Type type = form == Form::Whole  ? Type(ColumnType::Long)
                      : form == Form::Text ? Type(ColumnType::Double)
                                           : operand.type;
    if (form == Form::Whole || form == Form::Real || form == Form::Currency) {
        return {std::string("(-") + value(operand) + ")", type, false, {}};
    }
    return site({CallSite::Kind::Negate, {}, nullptr, {}, type}, {operand});
}

Typed Translator::like(const Like& like, Scope& scope) {
    const auto text = [&](const Typed& typed) {
        return value(isText(typed.type) ? typed : converted(typed, ColumnType::Text));
    };
    const std::string left = text(emit(*like.value, scope));
    Typed pattern = emit(*like.pattern, scope);
    if (like.ansi && pattern.constant && !jet::isNull(*pattern.constant)) {
        pattern = constant(withDialectWildcards(jet::toInvariantText(*pattern.constant)));
    } else if (like.ansi) {
        pattern = site({CallSite::Kind::Pattern, {}, nullptr, {}, ColumnType::Memo}, {pattern});
    }
    const std::string right = text(pattern);
    return {std::string(likeName) + "(" + left + ", " + right + ")", ColumnType::Boolean, true, {}};
}

Typed Translator::binary(const Binary& binary, Scope& scope) {
    const Typed a = emit(*binary.left, scope);
    const Typed b = emit(*binary.right, scope);
    if (binary.op >= BinaryOperator::Equal && binary.op <= BinaryOperator::GreaterOrEqual) {
        return compare(binary.op, a, b, scope);
    }
    return binary.op >= BinaryOperator::And ? logical(binary.op, a, b)
                                            : arithmetic(binary.op, a, b);
}

// `a sign b` in parentheses; the chain goes on where `a` is of the same shape.
std::string Translator::chained(const Typed& a, Shape shape, const char* sign,
                                const std::string& b) const {
    const bool isChain = a.shape == shape;
    std::string text = shape == Shape::And || shape == Shape::Or ? a.sql : value(a);
    if (isChain) {
        text.pop_back();
    } else {
        text.insert(text.begin(), '(');
    }
    return text + sign + b + ")";
}

// A chain is one call, as long as SQLite takes so many arguments.
Typed Translator::concatenation(const Typed& a, const Typed& b) {
    constexpr size_t mostArguments = 100;
    const Type type = a.type.column == ColumnType::Memo || b.type.column == ColumnType::Memo
                          ? ColumnType::Memo
                          : ColumnType::Text;
    if (a.shape == Shape::Concatenation &&
        program_.calls[a.call].arguments.size() < mostArguments) {
        CallSite& call = program_.calls[a.call];
        call.arguments.push_back(b.type);
        call.result = type;
        Typed made = a;
        made.sql.pop_back();
        made.sql += std::string(", ") + value(b) + ")";
        made.type = type;
        return made;
    }
    Typed made = site({CallSite::Kind::Operator, Operator::Concatenate, nullptr, {}, type}, {a, b});
    made.shape = Shape::Concatenation;
    made.call = program_.calls.size() - 1;
    return made;
}

Typed Translator::logical(BinaryOperator op, const Typed& a, const Typed& b) {
    const bool truths = isTruth(a.type) && isTruth(b.type);
    if (truths && (op == BinaryOperator::And || op == BinaryOperator::Or)) {
        const Shape shape = op == BinaryOperator::And ? Shape::And : Shape::Or;
        const char* sign = op == BinaryOperator::And ? " AND " : " OR ";
        return {chained(a, shape, sign, b.sql), ColumnType::Boolean, true, {}, false, shape};
    }
    return site({CallSite::Kind::Operator,
                 op,
                 nullptr,
                 {},
                 truths ? ColumnType::Boolean : ColumnType::Long},
                {a, b});
}

// A small whole number that is written out is an Integer, beside which a Single stays one.
static Typed asOperand(Typed typed) {
    if (typed.constant && std::holds_alternative<int16_t>(*typed.constant)) {
        typed.type = ColumnType::Integer;
    }
    return typed;
}

Typed Translator::arithmetic(BinaryOperator op, const Typed& left, const Typed& right) {
    const Typed a = asOperand(left);
    const Typed b = asOperand(right);
    const bool isSum = op == BinaryOperator::Add || op == BinaryOperator::Subtract;
    CallSite call{CallSite::Kind::Operator, op, nullptr, {}, {}};
    switch (op) {
        case BinaryOperator::Concatenate:
            return concatenation(a, b);
        case BinaryOperator::Power:
            call.result = ColumnType::Double;
            return site(std::move(call), {a, b});
        case BinaryOperator::IntegerDivide:
        case BinaryOperator::Modulo:
            call.result = ColumnType::Long;
            return site(std::move(call), {a, b});
        case BinaryOperator::Divide:
            call.result = quotientType(a.type, b.type);
            return site(std::move(call), {a, b});
        default:
            break;
    }
    call.result = arithmeticType(a.type, b.type, isSum, op == BinaryOperator::Subtract);
    const auto plain = [](const Typed& typed) {
        const Form form = formOf(typed.type);
        return (form == Form::Whole && typed.type.column != ColumnType::BigInteger) ||
               form == Form::Real || form == Form::Date;
    };
    const Form form = formOf(call.result);
    const bool numbers = plain(a) && plain(b) && (form == Form::Whole || form == Form::Real);
    const bool amounts = isSum && formOf(a.type) == Form::Currency &&
                         formOf(b.type) == Form::Currency && form == Form::Currency;
    if (numbers || amounts) {
        const char* sign = op == BinaryOperator::Add        ? " + "
                           : op == BinaryOperator::Subtract ? " - "
                                                            : " * ";
        const Shape shape = isSum ? Shape::Sum : Shape::Product;
        return {chained(a, shape, sign, value(b)), call.result, false, {}, false, shape};
    }
    return site(std::move(call), {a, b});
}

}  // namespace sg::sql
