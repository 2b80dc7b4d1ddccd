#pragma once

#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog/query.h"
#include "host/sql/statements.h"

namespace sg::sql {

// A statement as a database keeps it; see docs/formats/jet.md, "Stored queries".
struct QueryForm {
    jet::QueryKind kind = jet::QueryKind::Unknown;
    std::vector<jet::QueryRow> rows;  // in the order of jet::Query::rows
};

// Of definitions and EXECUTE it is DataDefinition, never PassThrough.
SG_API jet::QueryKind kindOf(const Statement& statement);

// The form of a statement that parseStatement() made of `text`. jet::Query::sql() of the rows means
// the same, and is the same tree but for what the form has no place for: a query in place of a
// table gets a name where it has none, TABLE t becomes SELECT * FROM t, [file].t as the target of
// an action IN 'file', and of a parameter's type only its kind and a text's length remain.
// Expressions keep their spelling. Definitions and EXECUTE are kept as their text.
//
// Throws TooComplex (3360) for more than jet::maxQueryJoins conditions of joins, and ObjectExists
// (3012) for joins of tables with one name.
SG_API QueryForm queryForm(const Statement& statement, std::wstring_view text);

}  // namespace sg::sql
