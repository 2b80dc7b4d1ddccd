// Calls of functions, and aggregates.

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/sql/run/translator.h"
#include "host/sql/to_text.h"

namespace sg::sql {
namespace {

// These give something else each time.
bool isVolatile(std::wstring_view name) {
    static constexpr std::wstring_view names[] = {L"Rnd", L"GenGUID", L"GenUniqueID"};
    return std::any_of(std::begin(names), std::end(names),
                       [&](std::wstring_view each) { return equalIgnoringCase(each, name); });
}

[[noreturn]] void failArguments(const Scope& scope) {
    throw jet::Error(jet::ExpressionSyntax,
                     {L"Wrong number of arguments used with function", toText(*scope.whole)});
}

// The IIf that an IIf answers where its condition isn't met; null for anything else. Where there
// are groups it may be what they are made by.
const Call* elseIf(const Call& call, const Scope& scope) {
    if (call.arguments.size() < 3 || !scope.groupTexts.empty()) {
        return nullptr;
    }
    const auto* next = std::get_if<Call>(&call.arguments[2]->node);
    const bool isIIf = next != nullptr && equalIgnoringCase(next->function.text, L"IIf") &&
                       (next->arguments.size() == 2 || next->arguments.size() == 3);
    return isIIf ? next : nullptr;
}

}  // namespace

Typed Translator::call(const Call& call, Scope& scope) {
    const std::wstring& name = call.function.text;
    const jet::detail::Function* function = jet::detail::findFunction(name);
    if (function == nullptr) {
        throw jet::Error(jet::UndefinedFunction, {name});
    }
    if (call.arguments.size() < function->least || call.arguments.size() > function->most) {
        failArguments(scope);
    }
    if (std::optional<Typed> chosen = choice(call, scope)) {
        return *chosen;
    }
    std::vector<Typed> arguments;
    for (const ExpressionPtr& each : call.arguments) {
        arguments.push_back(emit(*each, scope));
    }
    CallSite made;
    made.kind = CallSite::Kind::Function;
    made.function = function;
    made.result = functionType(name, arguments.empty() ? Type() : arguments[0].type);
    return site(std::move(made), arguments, isVolatile(name));
}

// The functions that evaluate only what they answer.
std::optional<Typed> Translator::choice(const Call& call, Scope& scope) {
    const auto& arguments = call.arguments;
    const auto named = [&](std::wstring_view name) {
        return equalIgnoringCase(call.function.text, name);
    };
    std::vector<std::pair<std::string, Typed>> branches;
    std::optional<Typed> otherwise;
    if (named(L"IIf")) {
        const Call* last = &call;
        for (const Call* each = last; each != nullptr; each = elseIf(*each, scope)) {
            branches.emplace_back(condition(*each->arguments[0], scope),
                                  emit(*each->arguments[1], scope));
            last = each;
        }
        if (last->arguments.size() > 2) {
            otherwise = emit(*last->arguments[2], scope);
        }
    } else if (named(L"Switch")) {
        if (arguments.size() % 2 != 0) {
            failArguments(scope);
        }
        for (size_t i = 0; i < arguments.size(); i += 2) {
            branches.emplace_back(condition(*arguments[i], scope), emit(*arguments[i + 1], scope));
        }
    } else if (named(L"Choose")) {
        const Typed place = site({CallSite::Kind::Function,
                                  {},
                                  jet::detail::findFunction(L"Int"),
                                  {},
                                  ColumnType::Double},
                                 {emit(*arguments[0], scope)});
        for (size_t i = 1; i < arguments.size(); ++i) {
            branches.emplace_back(std::to_string(i), emit(*arguments[i], scope));
        }
        return cases(branches, otherwise, std::string(" ") + place.sql);
    } else if (named(L"Nz")) {
        const Typed first = emit(*arguments[0], scope);
        const Typed second =
            arguments.size() > 1 ? emit(*arguments[1], scope) : constant(std::wstring());
        const Type type = commonType(first.type, second.type);
        return Typed{std::string("coalesce(") + value(converted(first, type)) + ", " +
                         value(converted(second, type)) + ")",
                     type,
                     false,
                     {}};
    } else if (named(L"IsNull")) {
        return Typed{std::string("(") + value(emit(*arguments[0], scope)) + " IS NULL)",
                     ColumnType::Boolean,
                     true,
                     {}};
    } else {
        return std::nullopt;
    }
    return cases(branches, otherwise);
}

Typed Translator::cases(const std::vector<std::pair<std::string, Typed>>& branches,
                        const std::optional<Typed>& otherwise, const std::string& chosen) {
    Type type = otherwise ? otherwise->type : Type();
    for (const auto& [when, then] : branches) {
        type = commonType(type, then.type);
    }
    std::string sql = std::string("CASE") + chosen;
    for (const auto& [when, then] : branches) {
        sql += std::string(" WHEN ") + when + " THEN " + value(converted(then, type));
    }
    if (otherwise) {
        sql += std::string(" ELSE ") + value(converted(*otherwise, type));
    }
    return {std::string("(") + sql + " END)", type, false, {}};
}

Typed Translator::aggregate(const Aggregate& aggregate, Scope& scope) {
    if (!scope.mayAggregate || scope.ungrouped > 0) {
        throw jet::Error(scope.mayAggregate ? NoAggregateInExpression : scope.noAggregate,
                         {toText(*scope.whole)});
    }
    const std::string filter =
        scope.filter.empty() ? "" : std::string(" FILTER (WHERE ") + scope.filter + ")";
    // In a crosstab's cell: whether a row is in it. Where none is, a count is Null too.
    const std::string counted = std::string("count(*)") + filter;
    const auto inCell = [&](const std::string& count) {
        return scope.filter.empty() ? count
                                    : std::string("iif(") + counted + " > 0, " + count + ", NULL)";
    };
    if (aggregate.argument == nullptr) {
        return {inCell(counted), ColumnType::Long, false, {}};
    }
    ++scope.ungrouped;
    Typed argument = emit(*aggregate.argument, scope);
    --scope.ungrouped;
    const auto made = [&](const char* name, const Typed& of, const Type& type) {
        return Typed{std::string(name) + "(" + compared(of) + ")" + filter, type, false, {}};
    };
    using enum AggregateFunction;
    switch (aggregate.function) {
        case Count: {
            Typed count = made("count", argument, ColumnType::Long);
            count.sql = inCell(count.sql);
            return count;
        }
        case Min:
            return made("min", argument, argument.type);
        case Max:
            return made("max", argument, argument.type);
        case First:
            return made("jet_first", argument, argument.type);
        case Last:
            return made("jet_last", argument, argument.type);
        default:
            break;
    }
    const Form form = formOf(argument.type);
    const bool isSum = aggregate.function == Sum;
    if (isSum || aggregate.function == Avg) {
        if (form == Form::Decimal) {
            return made(isSum ? "jet_sum" : "jet_avg", argument, ColumnType::Numeric);
        }
        if (form == Form::Currency) {
            Typed amount = made(isSum ? "sum" : "avg", argument, ColumnType::Currency);
            if (!isSum) {
                amount.sql = std::string("CAST(round(") + amount.sql + ") AS INTEGER)";
            }
            return amount;
        }
        if (form == Form::Text) {
            argument = converted(argument, ColumnType::Double);
        }
        const bool small = form == Form::Whole && argument.type.column != ColumnType::Long &&
                           argument.type.column != ColumnType::BigInteger;
        return made(isSum ? "sum" : "avg", argument,
                    isSum && small ? ColumnType::Long : ColumnType::Double);
    }
    if (form == Form::Decimal || form == Form::Currency || form == Form::Text) {
        argument = converted(argument, ColumnType::Double);
    }
    const char* name = aggregate.function == StDev    ? "jet_stdev"
                       : aggregate.function == StDevP ? "jet_stdevp"
                       : aggregate.function == Var    ? "jet_var"
                                                      : "jet_varp";
    return made(name, argument, ColumnType::Double);
}

}  // namespace sg::sql
