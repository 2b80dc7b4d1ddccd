// Comparisons: by SQLite where it orders the values as the dialect does, else by the dialect's own.

#include <algorithm>

#include "host/jet/expression/expression_operators.h"
#include "host/jet/format/error.h"
#include "host/sql/run/translator.h"
#include "host/sql/run/tree.h"
#include "host/sql/syntax_errors.h"

namespace sg::sql {
namespace {

const char* signOf(BinaryOperator op) {
    switch (op) {
        case BinaryOperator::Equal:
            return " = ";
        case BinaryOperator::NotEqual:
            return " <> ";
        case BinaryOperator::Less:
            return " < ";
        case BinaryOperator::LessOrEqual:
            return " <= ";
        case BinaryOperator::Greater:
            return " > ";
        default:
            return " >= ";
    }
}

constexpr int typeMismatchInJoin = 3615;

bool isStrict(const Translated& query) {
    return !query.traces.empty() && query.traces[0].isStrict;
}

// Whether it gives one row whatever there is.
bool isSingleRow(const Query& query) {
    const auto* select = std::get_if<Select>(&query.body);
    if (select == nullptr || !select->groupBy.empty()) {
        return false;
    }
    return !select->from ||
           std::any_of(select->items.begin(), select->items.end(),
                       [](const SelectItem& item) { return hasAggregate(*item.expression); });
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

void Translator::checkComparable(const Typed& a, const Typed& b, const Scope& scope) const {
    const auto isNothing = [](const Typed& typed) {
        return !typed.type.column || (typed.constant && jet::isNull(*typed.constant));
    };
    const auto isNumber = [](const Type& type) {
        const Form form = formOf(type);
        return form == Form::Whole || form == Form::Single || form == Form::Real ||
               form == Form::Date || form == Form::Currency || form == Form::Decimal;
    };
    if (!a.isStrict || !b.isStrict || isNothing(a) || isNothing(b)) {
        return;
    }
    if ((isText(a.type) && isNumber(b.type)) || (isText(b.type) && isNumber(a.type))) {
        throw jet::Error(scope.joins ? typeMismatchInJoin : jet::TypeMismatch);
    }
}

Typed Translator::compare(BinaryOperator op, Typed a, Typed b, const Scope& scope) {
    checkComparable(a, b, scope);
    if (a.constant && !b.constant) {
        a = folded(a, b.type);
    } else if (b.constant && !a.constant) {
        b = folded(b, a.type);
    }
    if (isNative(a.type, b.type)) {
        return {std::string("(") + compared(a) + signOf(op) + value(b) + ")",
                ColumnType::Boolean,
                true,
                {}};
    }
    return site({CallSite::Kind::Operator, op, nullptr, {}, ColumnType::Boolean}, {a, b});
}

Typed Translator::between(const Between& between, Scope& scope) {
    const Typed middle = emit(*between.value, scope);
    Typed low = emit(*between.low, scope);
    Typed high = emit(*between.high, scope);
    checkComparable(middle, low, scope);
    checkComparable(middle, high, scope);
    low = folded(low, middle.type);
    high = folded(high, middle.type);
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
        checkComparable(left, {{}, type, false, {}, isStrict(query)}, scope);
        if (isNative(left.type, type)) {
            return {std::string("(") + compared(left) + " IN (" + query.sql + "))",
                    ColumnType::Boolean,
                    true,
                    {}};
        }
        const std::string alias = std::string("s") + std::to_string(sources_++);
        const Typed each{alias + ".c0", type, false, {}};
        return anyOf(query, alias, compare(BinaryOperator::Equal, left, each, scope).sql, true);
    }
    std::string list;
    std::string others;
    for (const ExpressionPtr& item : in.list) {
        Typed each = emit(*item, scope);
        checkComparable(left, each, scope);
        each = folded(each, left.type);
        if (isNative(left.type, each.type)) {
            list += std::string(list.empty() ? "" : ", ") + value(each);
        } else {
            others += std::string(" OR ") + compare(BinaryOperator::Equal, left, each, scope).sql;
        }
    }
    std::string sql = list.empty() ? "0" : compared(left) + " IN (" + list + ")";
    return {std::string("(") + sql + others + ")", ColumnType::Boolean, true, {}};
}

// Whether one row of the query, called `alias`, makes the condition `wanted`: if none does, a row
// that makes it Null leaves it open.
Typed Translator::anyOf(const Translated& query, const std::string& alias, const std::string& met,
                        bool wanted) {
    const std::string any =
        std::string("EXISTS (SELECT 1 FROM (") + query.sql + ") AS " + alias + " WHERE " + met;
    return {std::string("(CASE WHEN ") + any + (wanted ? " IS TRUE)" : " IS FALSE)") + " THEN " +
                (wanted ? "1" : "0") + " WHEN " + any + " IS NULL) THEN NULL ELSE " +
                (wanted ? "0" : "1") + " END)",
            ColumnType::Boolean,
            true,
            {}};
}

// ANY: there is a row that fulfils it. ALL: there is none that doesn't.
Typed Translator::quantified(const Quantified& quantified, Scope& scope) {
    const Typed left = emit(*quantified.value, scope);
    const Translated query = oneColumn(*quantified.query, scope);
    const std::string alias = std::string("s") + std::to_string(sources_++);
    const Typed each{alias + ".c0", query.columns[0].type, false, {}, isStrict(query)};
    const std::string met = compare(quantified.op, left, each, scope).sql;
    return anyOf(query, alias, met, quantified.quantifier == Quantifier::Any);
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
    const Type& type = made.columns[0].type;
    if (isSingleRow(query)) {
        return {std::string("(") + made.sql + ")", type, false, {}};
    }
    return {std::string("(SELECT jet_one(c0) FROM (") + made.sql + "))", type, false, {}};
}

}  // namespace sg::sql
