#pragma once

#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/sql/statements.h"
#include "host/sql/syntax.h"

// Takes text in the Jet dialect apart into syntax trees.
//
// What is wrong ends in a jet::Error with the engine's number: ExpressionSyntax (3075) with what is
// wrong and the expression, and those of syntax_errors.h for the clauses, whose detail tells the
// place. Statements longer than a million characters and those nested too deep are TooComplex.
// Names of tables, columns and functions are not looked up. Time and memory are in proportion to
// the text.
namespace sg::sql {

inline constexpr size_t maxTextLength = 1'000'000;
inline constexpr size_t maxScriptLength = 16'000'000;

// One statement, with or without ";" at its end.
SG_API Statement parseStatement(std::wstring_view text);

struct ScriptEntry {
    bool explain = false;  // the word EXPLAIN stands before it, which is of scripts alone
    Statement statement;
};

// Adds any number of statements with ";" between them, also none. Lines that begin with "--" are
// comments there. Ranges count from the script's
// start. When it throws, those before the one that is wrong have been added.
SG_API void parseScript(std::wstring_view text, std::vector<ScriptEntry>& into);

// An expression by itself: a criterion, a filter.
SG_API ExpressionPtr parseExpression(std::wstring_view text);

}  // namespace sg::sql
