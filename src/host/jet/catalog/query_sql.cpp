#include "host/jet/catalog/query_sql.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "host/jet/expression/words.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

namespace attr = queryAttributes;

const std::wstring lineEnd = L"\r\n";

bool any(const QueryRow&) {
    return true;
}

int flagOf(const QueryRow& row) {
    return static_cast<uint16_t>(row.flag.value_or(0));
}

// In brackets where the name needs them and has none.
std::wstring quoted(std::wstring_view name) {
    const bool isQuoted = name.size() >= 2 && name.front() == L'[' && name.back() == L']';
    return isQuoted ? std::wstring(name) : quotedName(name);
}

// A name of parts with points, of a parameter exclamation marks, between them.
std::wstring quotedPath(std::wstring_view path, wchar_t between = L'.') {
    if (path.find(L'[') != std::wstring_view::npos) {
        return std::wstring(path);
    }
    std::wstring text;
    while (true) {
        const size_t end = path.find(between);
        text += quoted(path.substr(0, end));
        if (end == std::wstring_view::npos) {
            return text;
        }
        text += between;
        path.remove_prefix(end + 1);
    }
}

// Whether what stands in place of a table is a query and no file.
bool isStatement(std::wstring_view text) {
    text = trimmed(text);
    const auto begins = [&](std::wstring_view word) {
        return text.size() > word.size() && isBlank(text[word.size()]) &&
               equalIgnoringCase(text.substr(0, word.size()), word);
    };
    return text.starts_with(L'(') || begins(L"SELECT") || begins(L"TABLE");
}

std::wstring withAlias(std::wstring text, const std::optional<std::wstring>& alias) {
    return alias ? text + L" AS " + quoted(*alias) : text;
}

std::wstring remoteDatabase(const std::optional<std::wstring>& path,
                            const std::optional<std::wstring>& connect) {
    if (!path && !connect) {
        return L"";
    }
    std::wstring text = L" IN '";
    for (const wchar_t c : path.value_or(L"")) {
        text.append(c == L'\'' ? 2 : 1, c);
    }
    text += L'\'';
    return connect ? text + L" [" + *connect + L"]" : text;
}

// Statements that are kept whole may end in a zero or in line ends.
std::wstring cleaned(std::wstring_view text) {
    while (!text.empty() && (text.back() == L'\0' || isBlank(text.back()))) {
        text.remove_suffix(1);
    }
    return std::wstring(trimmed(text));
}

const wchar_t* parameterType(int flag) {
    switch (flag) {
        case 0:
            return L"Value";
        case static_cast<int>(ColumnType::Boolean):
            return L"Bit";
        case static_cast<int>(ColumnType::Byte):
            return L"Byte";
        case static_cast<int>(ColumnType::Integer):
            return L"Short";
        case static_cast<int>(ColumnType::Long):
            return L"Long";
        case static_cast<int>(ColumnType::Currency):
            return L"Currency";
        case static_cast<int>(ColumnType::Single):
            return L"IEEESingle";
        case static_cast<int>(ColumnType::Double):
            return L"IEEEDouble";
        case static_cast<int>(ColumnType::Date):
            return L"DateTime";
        case static_cast<int>(ColumnType::Binary):
            return L"Binary";
        case static_cast<int>(ColumnType::Text):
            return L"Text";
        case static_cast<int>(ColumnType::Ole):
            return L"LongBinary";
        case static_cast<int>(ColumnType::Memo):
            return L"LongText";
        case static_cast<int>(ColumnType::Guid):
            return L"Guid";
        case static_cast<int>(ColumnType::Numeric):
            return L"Decimal";
        default:
            return nullptr;
    }
}

const wchar_t* joinText(int kind) {
    switch (kind) {
        case 1:
            return L" INNER JOIN ";
        case 2:
            return L" LEFT JOIN ";
        case 3:
            return L" RIGHT JOIN ";
        default:
            return nullptr;
    }
}

}  // namespace

void QueryWriter::fail(const std::wstring& detail) const {
    throw Error(QueryDamaged, {query_.name}, {.detail = detail});
}

const QueryRow* QueryWriter::rowOf(uint8_t attribute) const {
    const auto found =
        std::find_if(query_.rows.begin(), query_.rows.end(),
                     [&](const QueryRow& row) { return row.attribute == attribute; });
    return found == query_.rows.end() ? nullptr : &*found;
}

std::wstring QueryWriter::expressionOf(uint8_t attribute) const {
    const QueryRow* row = rowOf(attribute);
    return row ? row->expression.value_or(L"") : L"";
}

bool QueryWriter::hasOption(int option) const {
    const QueryRow* row = rowOf(attr::options);
    return row && (flagOf(*row) & option) != 0;
}

std::wstring QueryWriter::list(uint8_t attribute, const std::function<bool(const QueryRow&)>& keep,
                               const std::function<std::wstring(const QueryRow&)>& text) const {
    std::wstring all;
    for (const QueryRow& row : query_.rows) {
        if (row.attribute == attribute && keep(row)) {
            all += (all.empty() ? L"" : L", ") + text(row);
        }
    }
    return all;
}

std::wstring QueryWriter::parameters() const {
    const std::wstring all = list(attr::parameter, any, [&](const QueryRow& row) {
        const wchar_t* type = parameterType(flagOf(row));
        if (type == nullptr) {
            fail(L"a parameter has the unknown type " + std::to_wstring(flagOf(row)));
        }
        std::wstring text = quotedPath(row.name1.value_or(L""), L'!') + L" " + type;
        const auto holds = [&](ColumnType type) { return flagOf(row) == static_cast<int>(type); };
        if ((holds(ColumnType::Text) || holds(ColumnType::Binary)) && row.extra.value_or(0) > 0) {
            text += L" (" + std::to_wstring(*row.extra) + L")";
        }
        return text;
    });
    return all.empty() ? L"" : L"PARAMETERS " + all + L";" + lineEnd;
}

// What stands between SELECT and the columns.
std::wstring QueryWriter::selection() const {
    std::wstring all;
    if (hasOption(queryOptions::distinct)) {
        all += L"DISTINCT ";
    } else if (hasOption(queryOptions::distinctRow)) {
        all += L"DISTINCTROW ";
    }
    if (hasOption(queryOptions::top)) {
        all += L"TOP " + rowOf(attr::options)->name1.value_or(L"") +
               (hasOption(queryOptions::percent) ? L" PERCENT " : L" ");
    }
    return all;
}

std::wstring QueryWriter::columns(const std::function<bool(const QueryRow&)>& keep) const {
    // A row without an expression names one more column that a star fills.
    const auto isColumn = [&](const QueryRow& row) { return row.expression && keep(row); };
    std::wstring all = list(attr::column, isColumn, [](const QueryRow& row) {
        return withAlias(*row.expression, row.name1);
    });
    if (hasOption(queryOptions::star)) {
        all += all.empty() ? L"*" : L", *";
    }
    return all;
}

bool QueryWriter::Source::contains(std::wstring_view table) const {
    return left ? left->contains(table) || right->contains(table) : equalIgnoringCase(name, table);
}

std::wstring QueryWriter::Source::write(const QueryWriter& writer, bool isNested) const {
    if (!left) {
        return text;
    }
    const wchar_t* word = joinText(joinKind);
    if (word == nullptr) {
        writer.fail(L"a join of the unknown kind " + std::to_wstring(joinKind));
    }
    std::wstring all = left->write(writer, true) + word + right->write(writer, true) + L" ON ";
    // Conditions on the same two tables stand with the last stored first.
    for (size_t i = conditions.size(); i-- > 0;) {
        all += conditions.size() == 1 ? conditions[i] : L"(" + conditions[i] + L")";
        all += i == 0 ? L"" : L" AND ";
    }
    return isNested ? L"(" + all + L")" : all;
}

QueryWriter::Sources QueryWriter::tables() const {
    Sources sources;
    for (const QueryRow& row : query_.rows) {
        if (row.attribute != attr::table) {
            continue;
        }
        auto source = std::make_unique<Source>();
        const std::wstring name = row.name1.value_or(L"");
        source->name = row.name2.value_or(name);
        // The expression is the other file, or a statement.
        if (!row.expression) {
            source->text = quotedPath(name);
        } else if (!row.name1 && isStatement(*row.expression)) {
            source->text = L"(" + cleaned(*row.expression) + L")";
        } else {
            source->text = L"[" + *row.expression + L"]" + (row.name1 ? L"." : L"") + quoted(name);
        }
        source->text = withAlias(source->text, row.name2);
        sources.push_back(std::move(source));
    }
    return sources;
}

// The join in which `a` and `b` come from the two sides.
QueryWriter::Source* QueryWriter::meetingJoin(Source* source, std::wstring_view a,
                                              std::wstring_view b) {
    while (source->left) {
        const bool bothLeft = source->left->contains(a) && source->left->contains(b);
        const bool bothRight = source->right->contains(a) && source->right->contains(b);
        if (!bothLeft && !bothRight) {
            return source;
        }
        source = bothLeft ? source->left.get() : source->right.get();
    }
    return nullptr;
}

// The place of the source that holds the table; one that only joins name comes behind the others.
size_t QueryWriter::placeOf(Sources& sources, const std::wstring& table) {
    const auto found = std::find_if(sources.begin(), sources.end(),
                                    [&](const auto& s) { return s->contains(table); });
    if (found != sources.end()) {
        return static_cast<size_t>(found - sources.begin());
    }
    auto source = std::make_unique<Source>();
    source->name = table;
    source->text = quotedPath(table);
    sources.push_back(std::move(source));
    return sources.size() - 1;
}

void QueryWriter::applyJoin(Sources& sources, const QueryRow& join) const {
    const std::wstring from = join.name1.value_or(L"");
    const std::wstring to = join.name2.value_or(L"");
    const size_t left = placeOf(sources, from);
    const size_t right = placeOf(sources, to);
    if (left == right) {
        Source* meeting = meetingJoin(sources[left].get(), from, to);
        if (meeting == nullptr || meeting->joinKind != flagOf(join)) {
            fail(L"the joins of " + from + L" and " + to + L" contradict each other");
        }
        meeting->conditions.push_back(join.expression.value_or(L""));
        return;
    }
    auto joined = std::make_unique<Source>();
    joined->left = std::move(sources[left]);
    joined->right = std::move(sources[right]);
    joined->joinKind = flagOf(join);
    joined->conditions.push_back(join.expression.value_or(L""));
    sources[std::min(left, right)] = std::move(joined);
    sources.erase(sources.begin() + static_cast<std::ptrdiff_t>(std::max(left, right)));
}

std::wstring QueryWriter::from() const {
    Sources sources = tables();
    int joins = 0;
    for (const QueryRow& row : query_.rows) {
        if (row.attribute == attr::join) {
            if (++joins > maxQueryJoins) {
                fail(L"it has more joins than a query can have");
            }
            applyJoin(sources, row);
        }
    }
    std::wstring all;
    for (const auto& source : sources) {
        all += (all.empty() ? L"" : L", ") + source->write(*this, false);
    }
    if (const QueryRow* remote = rowOf(attr::remote); remote && !all.empty()) {
        all += remoteDatabase(remote->name1, remote->expression);
    }
    return all;
}

std::wstring QueryWriter::orderings() const {
    const std::wstring all = list(attr::orderBy, any, [](const QueryRow& row) {
        const bool descending = row.name1 && equalIgnoringCase(*row.name1, L"D");
        return row.expression.value_or(L"") + (descending ? L" DESC" : L"");
    });
    return all.empty() ? L"" : lineEnd + L"ORDER BY " + all;
}

std::wstring QueryWriter::restriction(
    const std::function<bool(const QueryRow&)>& keepGroups) const {
    std::wstring all;
    if (const std::wstring where = expressionOf(attr::where); !where.empty()) {
        all += lineEnd + L"WHERE " + where;
    }
    const std::wstring groups = list(attr::groupBy, keepGroups, [](const QueryRow& row) {
        return row.expression.value_or(L"");
    });
    if (!groups.empty()) {
        all += lineEnd + L"GROUP BY " + groups;
    }
    if (const std::wstring having = expressionOf(attr::having); !having.empty()) {
        all += lineEnd + L"HAVING " + having;
    }
    return all + orderings();
}

std::wstring QueryWriter::select(const std::wstring& into) const {
    const auto isColumn = [&](const QueryRow& row) {
        return query_.kind() != QueryKind::Append || (flagOf(row) & queryColumns::value) == 0;
    };
    std::wstring all = L"SELECT " + selection() + columns(isColumn) + into;
    if (const std::wstring sources = from(); !sources.empty()) {
        all += lineEnd + L"FROM " + sources;
    }
    return all + restriction(any);
}

std::wstring QueryWriter::makeTable() const {
    const QueryRow* target = rowOf(attr::kind);
    if (target == nullptr || !target->name1) {
        fail(L"it does not say which table it makes");
    }
    return select(L" INTO " + quotedPath(*target->name1) +
                  remoteDatabase(target->name2, target->expression));
}

std::wstring QueryWriter::append() const {
    const QueryRow* target = rowOf(attr::kind);
    if (target == nullptr || !target->name1) {
        fail(L"it does not say to which table it appends");
    }
    std::wstring all = L"INSERT INTO " + quotedPath(*target->name1);
    const std::wstring names = list(
        attr::column, [](const QueryRow& row) { return row.name2.has_value(); },
        [](const QueryRow& row) { return quotedPath(*row.name2); });
    all += names.empty() ? L"" : L" (" + names + L")";
    all += remoteDatabase(target->name2, target->expression) + lineEnd;
    const std::wstring values = list(
        attr::column, [](const QueryRow& row) { return (flagOf(row) & queryColumns::value) != 0; },
        [](const QueryRow& row) { return row.expression.value_or(L""); });
    return all + (values.empty() ? select(L"") : L"VALUES (" + values + L")");
}

std::wstring QueryWriter::update() const {
    std::wstring all = L"UPDATE " + from() + lineEnd + L"SET ";
    all += list(attr::column, any, [](const QueryRow& row) {
        return quotedPath(row.name2.value_or(L"")) + L" = " + row.expression.value_or(L"");
    });
    return all + restriction(any);
}

std::wstring QueryWriter::remove() const {
    const std::wstring what = columns(any);
    return L"DELETE " + selection() + what + lineEnd + L"FROM " + from() + restriction(any);
}

std::wstring QueryWriter::crosstab() const {
    const auto isRow = [](const QueryRow& row) { return (flagOf(row) & queryColumns::row) != 0; };
    const auto isPivot = [](const QueryRow& row) {
        return (flagOf(row) & (queryColumns::pivot | queryColumns::row)) == queryColumns::pivot;
    };
    const auto isCell = [](const QueryRow& row) {
        return (flagOf(row) & (queryColumns::pivot | queryColumns::row)) == 0;
    };
    std::wstring all;
    const std::wstring cell = list(attr::column, isCell, [](const QueryRow& row) {
        return withAlias(row.expression.value_or(L""), row.name1);
    });
    if (!cell.empty()) {
        all += L"TRANSFORM " + cell + lineEnd;
    }
    all += L"SELECT " + selection() + columns(isRow) + lineEnd + L"FROM " + from() +
           restriction(isRow);
    return all + lineEnd + L"PIVOT " + list(attr::column, isPivot, [](const QueryRow& row) {
               return row.expression.value_or(L"");
           });
}

std::wstring QueryWriter::unite() const {
    std::wstring all;
    for (const QueryRow& row : query_.rows) {
        if (row.attribute != attr::table) {
            continue;
        }
        if (!all.empty()) {
            all += lineEnd;
            all += hasOption(queryOptions::distinct) ? L"UNION " : L"UNION ALL ";
        }
        all += cleaned(row.expression.value_or(L""));
    }
    return all + orderings();
}

std::wstring QueryWriter::statement() const {
    switch (query_.kind()) {
        case QueryKind::Select:
            return select(L"");
        case QueryKind::MakeTable:
            return makeTable();
        case QueryKind::Append:
            return append();
        case QueryKind::Update:
            return update();
        case QueryKind::Delete:
            return remove();
        case QueryKind::Crosstab:
            return crosstab();
        case QueryKind::Union:
            return unite();
        default:
            fail(L"it is of no known kind");
    }
}

std::wstring QueryWriter::write() {
    const QueryKind kind = query_.kind();
    if (kind == QueryKind::DataDefinition || kind == QueryKind::PassThrough) {
        return cleaned(expressionOf(attr::kind));
    }
    std::wstring all = parameters() + statement();
    if (hasOption(queryOptions::ownerAccess)) {
        all += lineEnd + L"WITH OWNERACCESS OPTION";
    }
    return all + L";";
}

}  // namespace sg::jet
