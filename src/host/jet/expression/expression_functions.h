#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "host/jet/expression/expression_node.h"

// The functions that expressions may call.
namespace sg::jet::detail {

enum class NullArguments : uint8_t {
    GiveNull,  // a Null argument makes the result Null, and the function is not called
    ArePassed,
};

struct Function {
    std::wstring_view name;
    size_t least;  // arguments
    size_t most;
    NullArguments nulls;
    Value (*call)(Evaluation& evaluation, std::span<Value> arguments);
    // Evaluates what it needs of its arguments itself; `call` is null then.
    Value (*callLazily)(Evaluation& evaluation, std::span<const NodePtr> arguments) = nullptr;
};

// The function of this name, ignoring case and a "$" at the end; nullptr when there is none.
const Function* findFunction(std::wstring_view name);

// The families that findFunction() looks through.
std::span<const Function> choiceFunctions();
std::span<const Function> conversionFunctions();
std::span<const Function> dateFunctions();
std::span<const Function> moneyFunctions();
std::span<const Function> numberFunctions();
std::span<const Function> textFunctions();

// --- arguments ---

// The number that an argument is or tells as text. Throws ConversionError.
double numberOf(const Value& value);
// The same rounded to a whole number, to the even one when it lies between two. Throws
// ConversionError also when it is no Long.
int32_t wholeOf(const Value& value);
// A date, or a number or text that tells one. Throws ConversionError, also for one that is not in
// the years 100 to 9999.
Date dateOf(const Value& value);
// A condition: what is not zero, or Yes, No, On, Off, True or False. Null is false. Throws
// ConversionError.
bool truthOf(const Value& value);
// The argument's place in `arguments`, or `otherwise` when there are fewer.
int32_t wholeOr(std::span<const Value> arguments, size_t place, int32_t otherwise);

[[noreturn]] void throwConversion(std::wstring detail);
[[noreturn]] void throwInvalidArgument(std::wstring detail);

// A whole number as the narrowest of Integer, Long and Double.
Value wholeValue(int64_t value);

}  // namespace sg::jet::detail
