#pragma once

#include <string>

#include "base/export.h"
#include "host/sql/statements.h"
#include "host/sql/syntax.h"

// Syntax trees as text in the Jet dialect: on one line, keywords in capitals, synonyms of types and
// options as one, brackets only around the names that need them. Parsing it gives the same tree.
namespace sg::sql {

enum class Parentheses {
    Needed,  // those without which the tree would be another
    All,     // around every operation that is part of another: shows how operators bind
};

SG_API std::wstring toText(const Expression& expression,
                           Parentheses parentheses = Parentheses::Needed);
SG_API std::wstring toText(const Query& query, Parentheses parentheses = Parentheses::Needed);
SG_API std::wstring toText(const Statement& statement,
                           Parentheses parentheses = Parentheses::Needed);

}  // namespace sg::sql
