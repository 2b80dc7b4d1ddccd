#pragma once

#include <compare>

#include "host/jet/expression/expression_node.h"

// What operators make of values.
namespace sg::jet::detail {

// `a op b` for every operator but Like, whose operands are Null or not. Throws ConversionError.
Value applyOperator(Operator op, const Value& a, const Value& b);
Value negate(const Value& value);
Value invert(const Value& value);  // Not

// The order of two values that are not Null: text by compareTexts(), everything else as numbers;
// text beside another kind of value is read as one. Throws ConversionError where that can't be.
std::partial_ordering compareValues(const Value& a, const Value& b);

}  // namespace sg::jet::detail
