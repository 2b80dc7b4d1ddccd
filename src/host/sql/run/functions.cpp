#include "host/sql/run/functions.h"

#include <cmath>
#include <exception>
#include <new>
#include <vector>

#include "host/jet/expression/expression.h"
#include "host/jet/expression/expression_decimal.h"
#include "host/jet/expression/expression_operators.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"
#include "host/sql/run/like.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/text_order.h"

namespace sg::sql {
namespace {

using Values = std::vector<jet::Value>;

constexpr int severalRecords = 3354;

class NoNames final : public jet::ExpressionNames {
  public:
    bool value(std::wstring_view, jet::Value&) const override { return false; }
};

// More than two values are concatenated.
jet::Value operatorOf(jet::detail::Operator op, const Values& values) {
    jet::Value value = jet::detail::applyOperator(op, values[0], values[1]);
    for (size_t i = 2; i < values.size(); ++i) {
        value = jet::detail::applyOperator(op, value, values[i]);
    }
    return value;
}

// The bounds may come in either order.
jet::Value betweenOf(const Values& values) {
    for (const jet::Value& value : values) {
        if (jet::isNull(value)) {
            return {};
        }
    }
    const auto toLow = jet::detail::compareValues(values[0], values[1]);
    const auto toHigh = jet::detail::compareValues(values[0], values[2]);
    return (toLow >= 0 && toHigh <= 0) || (toLow <= 0 && toHigh >= 0);
}

jet::Value functionOf(const CallSite& site, Values& values) {
    for (const jet::Value& value : values) {
        if (jet::isNull(value) && site.function->nulls == jet::detail::NullArguments::GiveNull) {
            return {};
        }
    }
    const NoNames names;
    jet::detail::Evaluation evaluation(names);
    return site.function->call(evaluation, values);
}

jet::Value valueOf(const CallSite& site, Values& values) {
    switch (site.kind) {
        case CallSite::Kind::Operator:
            return operatorOf(site.op, values);
        case CallSite::Kind::Pattern:
            return jet::isNull(values[0]) ? jet::Value()
                                          : withDialectWildcards(jet::toInvariantText(values[0]));
        case CallSite::Kind::Between:
            return betweenOf(values);
        case CallSite::Kind::Negate:
            return jet::detail::negate(values[0]);
        case CallSite::Kind::Not:
            return jet::detail::invert(values[0]);
        case CallSite::Kind::Function:
            return functionOf(site, values);
        case CallSite::Kind::Truth:
            return jet::isNull(values[0]) ? jet::Value() : jet::detail::truthOf(values[0]);
        case CallSite::Kind::Convert:
            break;
    }
    return values[0];
}

Engine::Running& runningOf(sqlite3_context* context) {
    return *static_cast<Engine::Running*>(sqlite3_user_data(context));
}

// Runs `work`; what it throws ends the statement.
template <class Work>
void guarded(sqlite3_context* context, Work work) {
    try {
        work();
    } catch (...) {
        keepFailure(runningOf(context));
        sqlite3_result_error(context, "failed", -1);
    }
}

void callFunction(sqlite3_context* context, int count, sqlite3_value** arguments) {
    guarded(context, [&] {
        const auto place = static_cast<size_t>(sqlite3_value_int64(arguments[0]));
        const CallSite& site = runningOf(context).program->calls.at(place);
        Values& values = site.values;
        values.resize(static_cast<size_t>(count) - 1);
        for (size_t i = 0; i < values.size(); ++i) {
            take(arguments[i + 1], site.arguments[i], values[i]);
        }
        answer(context, asType(site.result, valueOf(site, values)));
    });
}

// ---- Aggregates

void stepFirst(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto** kept =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
    if (kept != nullptr && *kept == nullptr) {
        *kept = sqlite3_value_dup(arguments[0]);
    }
}

void stepLast(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto** kept =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
    if (kept != nullptr) {
        sqlite3_value_free(*kept);
        *kept = sqlite3_value_dup(arguments[0]);
    }
}

// The one value of a subquery.
void stepOne(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto** kept =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
    if (kept == nullptr) {
        return;
    }
    if (*kept == nullptr) {
        *kept = sqlite3_value_dup(arguments[0]);
        return;
    }
    guarded(context, [] { throw jet::Error(severalRecords); });
}

void finishKept(sqlite3_context* context) {
    auto** kept = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
    if (kept != nullptr && *kept != nullptr) {
        sqlite3_result_value(context, *kept);
        sqlite3_value_free(*kept);
    }
}

// Welford's: exact enough also where the mean is far from zero.
struct Spread {
    int64_t count;
    double mean;
    double squares;
};

void stepSpread(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (spread == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL) {
        return;
    }
    const double value = sqlite3_value_double(arguments[0]);
    ++spread->count;
    const double difference = value - spread->mean;
    spread->mean += difference / static_cast<double>(spread->count);
    spread->squares += difference * (value - spread->mean);
}

// Of a sample or of the whole; Null where there are too few values.
template <bool Sample, bool Root>
void finishSpread(sqlite3_context* context) {
    const auto* spread = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
    const int64_t divisor = spread == nullptr ? 0 : spread->count - (Sample ? 1 : 0);
    if (divisor > 0) {
        const double variance = spread->squares / static_cast<double>(divisor);
        sqlite3_result_double(context, Root ? std::sqrt(variance) : variance);
    }
}

struct DecimalSum {
    int64_t count;
    jet::Decimal sum;
};

void stepDecimal(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* sum = static_cast<DecimalSum*>(sqlite3_aggregate_context(context, sizeof(DecimalSum)));
    if (sum == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL) {
        return;
    }
    guarded(context, [&] {
        jet::Value value;
        take(arguments[0], ColumnType::Numeric, value);
        sum->sum = jet::detail::add(sum->sum, std::get<jet::Decimal>(value));
        ++sum->count;
    });
}

template <bool Average>
void finishDecimal(sqlite3_context* context) {
    const auto* sum = static_cast<DecimalSum*>(sqlite3_aggregate_context(context, 0));
    if (sum != nullptr && sum->count > 0) {
        guarded(context, [&] {
            const jet::Decimal count = jet::detail::decimalOf(sum->count);
            answer(context, Average ? jet::detail::divide(sum->sum, count) : sum->sum);
        });
    }
}

int collate(void*, int sizeA, const void* a, int sizeB, const void* b) {
    try {
        return compareTexts({static_cast<const char*>(a), static_cast<size_t>(sizeA)},
                            {static_cast<const char*>(b), static_cast<size_t>(sizeB)});
    } catch (...) {  // memory has run out, which the next call will tell
        return 0;
    }
}

void check(int code) {
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace

void keepFailure(Engine::Running& running) {
    if (!running.failure) {
        running.failure = std::current_exception();
    }
}

void addFunctions(sqlite3* connection, Engine::Running& running) {
    using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
    using Finish = void (*)(sqlite3_context*);
    const auto add = [&](const char* name, int arguments, int flags, Step call, Step step,
                         Finish finish) {
        check(sqlite3_create_function_v2(connection, name, arguments, SQLITE_UTF8 | flags, &running,
                                         call, step, finish, nullptr));
    };
    add("jet", -1, SQLITE_DETERMINISTIC, callFunction, nullptr, nullptr);
    add("jetv", -1, 0, callFunction, nullptr, nullptr);
    add(likeName.data(), 2, SQLITE_DETERMINISTIC, callLike, nullptr, nullptr);
    add("jet_first", 1, 0, nullptr, stepFirst, finishKept);
    add("jet_one", 1, 0, nullptr, stepOne, finishKept);
    add("jet_last", 1, 0, nullptr, stepLast, finishKept);
    add("jet_stdev", 1, 0, nullptr, stepSpread, finishSpread<true, true>);
    add("jet_stdevp", 1, 0, nullptr, stepSpread, finishSpread<false, true>);
    add("jet_var", 1, 0, nullptr, stepSpread, finishSpread<true, false>);
    add("jet_varp", 1, 0, nullptr, stepSpread, finishSpread<false, false>);
    add("jet_sum", 1, 0, nullptr, stepDecimal, finishDecimal<false>);
    add("jet_avg", 1, 0, nullptr, stepDecimal, finishDecimal<true>);
    check(sqlite3_create_collation_v2(connection, "JET", SQLITE_UTF8, nullptr, collate, nullptr));
}

}  // namespace sg::sql
