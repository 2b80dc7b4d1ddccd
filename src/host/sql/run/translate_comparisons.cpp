// Comparisons: by SQLite where it orders the values as the dialect does, else by the dialect's own.

#include <algorithm>

#include "host/jet/expression/expression_operators.h"
#include "host/jet/format/error.h"
#include "host/sql/run/translator.h"
#include "host/sql/syntax_errors.h"

namespace sg::sql {
namespace {

using jet::detail::Operator;

struct Comparison {
    const char* sign;
    Operator op;
};

Comparison comparisonOf(BinaryOperator op) {
    switch (op) {
        case BinaryOperator::Equal:
            return {" = ", Operator::Equal};
        case BinaryOperator::NotEqual:
            return {" <> ", Operator::NotEqual};
        case BinaryOperator::Less:
            return {" < ", Operator::Less};
        case BinaryOperator::LessOrEqual:
            return {" <= ", Operator::LessOrEqual};
        case BinaryOperator::Greater:
            return {" > ", Operator::Greater};
        default:
            return {" >= ", Operator::GreaterOrEqual};
    }
}

bool isNative(const Type& a, const Type& b) {
    const Form x = formOf(a);
    const Form y = formOf(b);
    const auto isReal = [](Form form) {
        return form == Form::Whole || form == Form::Real || form == Form::Date;
    };
    return x == y || x == Form::Null || y == Form::Null || (isReal(x) && isReal(y));
}

}  // namespace

// `given` as a constant of the form of what it is compared with, where that makes no difference.
Typed Translator::folded(const Typed& given, const Type& beside) {
    if (!given.constant || jet::isNull(*given.constant) || isNative(given.type, beside)) {
        return given;
    }
    Type type = beside;
    switch (formOf(beside)) {
        case Form::Whole:
            if (isBoolean(beside) ||
                (!isText(given.type) && formOf(given.type) != Form::Currency)) {
                return given;
            }
            type = ColumnType::Double;
            break;
        case Form::Real:
            type = ColumnType::Double;
            break;
        case Form::Single:
        case Form::Date:
        case Form::Guid:
        case Form::Decimal:
            break;
        case Form::Currency:
            if (formOf(given.type) == Form::Decimal) {
                return given;
            }
            break;
        default:
            return given;
    }
    try {
        Typed made = constant(asType(type, *given.constant));
        made.type = type;
        return made;
    } catch (const jet::Error&) {
        return given;  // the comparison itself tells what is wrong, if it is ever made
    }
}

Typed Translator::compare(BinaryOperator op, Typed a, Typed b) {
    if (a.constant && !b.constant) {
        a = folded(a, b.type);
    } else if (b.constant && !a.constant) {
        b = folded(b, a.type);
    }
    const Comparison comparison = comparisonOf(op);
    if (isNative(a.type, b.type)) {
        return {std::string("(") + compared(a) + comparison.sign + value(b) + ")",
                ColumnType::Boolean,
                true,
                {}};
    }
    return site({CallSite::Kind::Operator, comparison.op, nullptr, {}, ColumnType::Boolean},
                {a, b});
}

Typed Translator::between(const Between& between, Scope& scope) {
    const Typed middle = emit(*between.value, scope);
    Typed low = folded(emit(*between.low, scope), middle.type);
    Typed high = folded(emit(*between.high, scope), middle.type);
    const bool fixed = low.constant && high.constant && !jet::isNull(*low.constant) &&
                       !jet::isNull(*high.constant) && isNative(low.type, high.type);
    if (!fixed || !isNative(middle.type, low.type) || !isNative(middle.type, high.type)) {
        return site({CallSite::Kind::Between, {}, nullptr, {}, ColumnType::Boolean},
                    {middle, low, high});
    }
    if (jet::detail::compareValues(*low.constant, *high.constant) > 0) {
        std::swap(low, high);
    }
    return {std::string("(") + compared(middle) + " BETWEEN " + value(low) + " AND " + value(high) +
                ")",
            ColumnType::Boolean,
            true,
            {}};
}

Typed Translator::in(const In& in, Scope& scope) {
    const Typed left = emit(*in.value, scope);
    if (in.query != nullptr) {
        const Translated query = oneColumn(*in.query, scope);
        const Type& type = query.columns[0].type;
        if (isNative(left.type, type)) {
            return {std::string("(") + compared(left) + " IN (" + query.sql + "))",
                    ColumnType::Boolean,
                    true,
                    {}};
        }
        const std::string alias = std::string("s") + std::to_string(sources_++);
        const Typed each{alias + ".c0", type, false, {}};
        const std::string met = compare(BinaryOperator::Equal, left, each).sql;
        return {std::string("EXISTS (SELECT 1 FROM (") + query.sql + ") AS " + alias + " WHERE " +
                    met + ")",
                ColumnType::Boolean,
                true,
                {}};
    }
    std::string list;
    std::string others;
    for (const ExpressionPtr& item : in.list) {
        const Typed each = folded(emit(*item, scope), left.type);
        if (isNative(left.type, each.type)) {
            list += std::string(list.empty() ? "" : ", ") + value(each);
        } else {
            others += std::string(" OR ") + compare(BinaryOperator::Equal, left, each).sql;
        }
    }
    std::string sql = list.empty() ? "0" : compared(left) + " IN (" + list + ")";
    return {std::string("(") + sql + others + ")", ColumnType::Boolean, true, {}};
}

// ANY: there is a row that fulfils it. ALL: there is none that doesn't.
Typed Translator::quantified(const Quantified& quantified, Scope& scope) {
    const Typed left = emit(*quantified.value, scope);
    const Translated query = oneColumn(*quantified.query, scope);
    const std::string alias = std::string("s") + std::to_string(sources_++);
    const Typed each{alias + ".c0", query.columns[0].type, false, {}};
    const std::string met = compare(quantified.op, left, each).sql;
    const std::string from =
        std::string("EXISTS (SELECT 1 FROM (") + query.sql + ") AS " + alias + " WHERE ";
    if (quantified.quantifier == Quantifier::Any) {
        return {from + met + ")", ColumnType::Boolean, true, {}};
    }
    return {std::string("(NOT ") + from + met + " IS NOT TRUE))", ColumnType::Boolean, true, {}};
}

Translated Translator::oneColumn(const Query& query, Scope& scope) {
    Translated made = translate(query, &scope);
    if (made.columns.size() != 1) {
        throw jet::Error(3306);
    }
    return made;
}

Typed Translator::subquery(const Query& query, Scope& scope) {
    const Translated made = oneColumn(query, scope);
    return {std::string("(") + made.sql + ")", made.columns[0].type, false, {}};
}

}  // namespace sg::sql
