#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

namespace sg::sql {

// The dialect's LIKE of texts as a function of SQLite's, "jet_like(text, pattern)", and what tables
// are told of it as a constraint.
inline constexpr std::string_view likeName = "jet_like";
inline constexpr unsigned char likeConstraint = SQLITE_INDEX_CONSTRAINT_FUNCTION;

// A pattern with the wildcards % and _ as one with * and ?.
std::wstring withDialectWildcards(std::wstring_view pattern);

// Its user data is an Engine::Running.
void callLike(sqlite3_context* context, int count, sqlite3_value** arguments);

}  // namespace sg::sql
