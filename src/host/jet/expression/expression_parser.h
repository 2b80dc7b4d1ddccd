#pragma once

#include <string_view>

#include "host/jet/expression/expression_node.h"

namespace sg::jet::detail {

// Expression::parse() and Expression::parseRule().
NodePtr parseExpression(std::wstring_view text);
NodePtr parseRuleExpression(std::wstring_view text);

}  // namespace sg::jet::detail
