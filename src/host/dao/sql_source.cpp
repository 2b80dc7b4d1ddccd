#include "host/dao/sql_source.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/text.h"
#include "host/sql/parser.h"

namespace sg::dao {
namespace {

// Whether it is a statement, and not a name: whatever begins with a word that statements begin with
// and that more follows.
bool isStatement(std::wstring_view source) {
    static constexpr std::wstring_view words[] = {L"SELECT", L"TABLE",  L"TRANSFORM", L"PARAMETERS",
                                                  L"INSERT", L"UPDATE", L"DELETE",    L"EXECUTE",
                                                  L"EXEC",   L"CREATE", L"ALTER",     L"DROP"};
    const std::wstring_view text = trimmed(source);
    const auto* const end = std::find_if(text.begin(), text.end(), isBlank);
    const std::wstring_view first(text.begin(), end);
    return text.starts_with(L'(') ||
           (end != text.end() &&
            std::any_of(std::begin(words), std::end(words),
                        [&](std::wstring_view word) { return equalIgnoringCase(word, first); }));
}

}  // namespace

sql::Statement statementOf(const jet::Database& database, std::wstring_view source) {
    if (database.object(source, jet::ObjectType::Query) != nullptr) {
        return storedStatement(database.query(source));
    }
    if (!isStatement(source)) {
        throw jet::Error(jet::InputTableNotFound, {std::wstring(source)});
    }
    return sql::parseStatement(source);
}

sql::Statement storedStatement(const jet::Query& query) {
    if (query.kind() == jet::QueryKind::PassThrough) {
        throw jet::Error(jet::OperationNotSupported, {}, {.detail = L"a pass-through query"});
    }
    return sql::parseStatement(query.sql());
}

}  // namespace sg::dao
