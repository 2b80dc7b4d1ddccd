#include "host/sql/stored/stored_query.h"

#include <string>

#include "base/text.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/schema/schema.h"
#include "host/sql/parser.h"
#include "host/sql/stored/query_form.h"
#include "host/sql/to_text.h"

namespace sg::sql {
namespace {

constexpr int countOfColumns = 3346;

// A pass-through query's rows with another text.
std::vector<jet::QueryRow> passedThrough(const jet::Query& query, std::wstring_view text) {
    std::vector<jet::QueryRow> rows = query.rows;
    for (jet::QueryRow& row : rows) {
        if (row.attribute == jet::queryAttributes::kind) {
            row.expression = std::wstring(text);
        }
    }
    return rows;
}

void requireNew(const jet::Database& database, const std::wstring& name) {
    if (database.object(name, jet::ObjectType::Query) != nullptr) {
        throw jet::Error(jet::ObjectExists, {name});
    }
}

// The first of a union's terms names its columns.
Select* namingSelect(Query& query) {
    if (auto* all = std::get_if<Union>(&query.body)) {
        return namingSelect(*all->terms.front().query);
    }
    return std::get_if<Select>(&query.body);
}

void nameColumns(Query& query, const std::vector<Name>& names) {
    Select* select = namingSelect(query);
    if (select == nullptr || select->items.size() != names.size()) {
        throw jet::Error(countOfColumns);
    }
    for (size_t i = 0; i < names.size(); ++i) {
        if (std::holds_alternative<Star>(select->items[i].expression->node)) {
            throw jet::Error(countOfColumns);
        }
        select->items[i].alias = names[i];
    }
}

}  // namespace

void storeQuery(jet::Database& database, std::wstring_view name, std::wstring_view text) {
    const jet::CatalogObject* found = database.object(name, jet::ObjectType::Query);
    const uint32_t kept = found == nullptr ? 0 : found->flags & ~jet::queryKindFlags;
    if (found != nullptr) {
        const jet::Query old = database.query(name);
        if (old.kind() == jet::QueryKind::PassThrough) {
            jet::putQuery(database, name, old.flags, passedThrough(old, text));
            return;
        }
    }
    const QueryForm form = queryForm(parseStatement(text), text);
    jet::putQuery(database, name, kept | jet::catalogFlags(form.kind), form.rows);
}

void createView(jet::Database& database, const CreateView& statement) {
    requireNew(database, statement.view.text);
    std::wstring text = toText(*statement.query);
    if (!statement.columns.empty()) {
        const Statement view = parseStatement(text);
        Query& query = *std::get<QueryPtr>(view.body);
        nameColumns(query, statement.columns);
        text = toText(query);
    }
    storeQuery(database, statement.view.text, text);
}

void createProcedure(jet::Database& database, const CreateProcedure& statement) {
    requireNew(database, statement.procedure.text);
    storeQuery(database, statement.procedure.text, toText(*statement.statement));
}

}  // namespace sg::sql
