#pragma once

#include "host/sql/syntax_parser.h"

namespace sg::sql::detail {

// The expression that begins at `start` and ends with the last token, a tree of `height`.
template <class Node>
ExpressionPtr SyntaxParser::made(size_t start, Node node, int height) {
    auto expression = std::make_unique<Expression>();
    expression->range = since(start);
    expression->height = counted(height);
    expression->node = std::move(node);
    return expression;
}

}  // namespace sg::sql::detail
