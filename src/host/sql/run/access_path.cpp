#include "host/sql/run/access_path.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

#include "host/jet/format/error.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/definition_writer.h"
#include "host/sql/run/key_range.h"
#include "host/sql/run/like.h"

namespace sg::sql {
namespace {

constexpr int scanNumber = -1;
constexpr int transientNumber = -2;
constexpr char backwardsMark = '-';

// What it costs to pass one row of a scan is 1.
constexpr double scanStart = 20;
constexpr double descent = 5;
constexpr double indexedRow = 4;
constexpr double sortedRow = 0.3;      // times the steps of a search among them
constexpr double transientProbe = 15;  // its share of making the index among them
constexpr double transientRows = 20;   // that have a value in columns of which nothing is known
constexpr double shareOfBound = 1.0 / 3;
constexpr double shareOfPattern = 1.0 / 50;

// ---- What indexes can do

bool isGeneral(const jet::KeyColumn& column) {
    return column.order == jet::TextOrder::GeneralLegacy;
}

bool isReal(ColumnType type) {
    return type == ColumnType::Single || type == ColumnType::Double || type == ColumnType::Date;
}

// Whether keys of such a column may be made of what a column is compared with.
bool mayBound(const jet::KeyColumn& column, Bound bound) {
    switch (column.type) {
        case ColumnType::Boolean:
        case ColumnType::Guid:
            return bound == Bound::Equal;
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
            return bound != Bound::Like;
        case ColumnType::Text:
            return bound == Bound::Equal || isGeneral(column);
        default:
            return false;
    }
}

// Whether the index has the column's values in the order in which SQLite has them. Zeros of either
// sign are one for SQLite and two for an index, so that a real may only be what comes last.
bool hasOrder(const jet::KeyColumn& column, bool isLast) {
    switch (column.type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
            return true;
        case ColumnType::Text:
            return isGeneral(column);
        default:
            return isReal(column.type) && isLast;
    }
}

// ---- What SQLite asks for

std::optional<Bound> boundOf(unsigned char op) {
    switch (op) {
        case SQLITE_INDEX_CONSTRAINT_EQ:
            return Bound::Equal;
        case SQLITE_INDEX_CONSTRAINT_GT:
        case SQLITE_INDEX_CONSTRAINT_GE:
            return Bound::Low;
        case SQLITE_INDEX_CONSTRAINT_LT:
        case SQLITE_INDEX_CONSTRAINT_LE:
            return Bound::High;
        case likeConstraint:
            return Bound::Like;
        default:
            return std::nullopt;
    }
}

bool comparesRightly(sqlite3_index_info* info, int constraint, const jet::Column& column) {
    return !column.isText() || info->aConstraint[constraint].op == likeConstraint ||
           std::strcmp(sqlite3_vtab_collation(info, constraint), "JET") == 0;
}

// The usable constraint of this kind on a column; -1 when there is none.
int constraintOn(const JetTable& table, sqlite3_index_info* info, size_t place, Bound bound) {
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& constraint = info->aConstraint[i];
        if (constraint.usable && constraint.iColumn == static_cast<int>(place) &&
            boundOf(constraint.op) == bound &&
            comparesRightly(info, i, table.table.definition().columns[place])) {
            return i;
        }
    }
    return -1;
}

// Whether the value may be another one each time, as those of another table are.
bool mayVary(sqlite3_index_info* info, int constraint) {
    sqlite3_value* value = nullptr;
    return sqlite3_vtab_rhs_value(info, constraint, &value) != SQLITE_OK &&
           sqlite3_vtab_in(info, constraint, -1) == 0;
}

// ---- Candidates

struct Candidate {
    AccessPath path;
    std::vector<int> arguments;  // constraints
    double rows = 0;
    double cost = 0;
    bool isOrdered = false;
    bool isUnique = false;
};

// Candidates for what is asked of one table.
class Planner {
  public:
    Planner(const JetTable& table, sqlite3_index_info* info)
        : table_(table),
          info_(info),
          all_(std::max(1.0, static_cast<double>(table.table.rowCount()))) {}

    Candidate best() const {
        Candidate best = scan();
        const auto offer = [&](Candidate candidate) {
            if (wholeCost(candidate) < wholeCost(best)) {
                best = std::move(candidate);
            }
        };
        for (size_t i = 0; i < table_.encoders.size(); ++i) {
            if (table_.encoders[i].usable()) {
                Candidate candidate = byIndex(i);
                if (!candidate.arguments.empty() || candidate.isOrdered) {
                    offer(std::move(candidate));
                }
            }
        }
        Candidate candidate = byTransientIndex();
        if (!candidate.arguments.empty()) {
            offer(std::move(candidate));
        }
        return best;
    }

  private:
    // With the sorting that is left to SQLite. To find what is distinct costs it less.
    double wholeCost(const Candidate& candidate) const {
        const bool sorts =
            info_->nOrderBy > 0 && !candidate.isOrdered && sqlite3_vtab_distinct(info_) < 2;
        return candidate.cost +
               (sorts ? sortedRow * candidate.rows * std::log2(candidate.rows + 1) : 0);
    }

    Candidate scan() const {
        Candidate made;
        made.rows = all_;
        made.cost = scanStart + all_;
        return made;
    }

    // All columns are known from what the index's own page says, some in proportion.
    double rowsOf(size_t index, size_t equalities) const {
        const size_t columns = table_.encoders[index].places().size();
        double keys = readEntryCount(table_.table.store(), table_.table.definition(), index);
        if (keys < 1 || keys > all_) {
            keys = std::sqrt(all_);
        }
        const double known = static_cast<double>(equalities) / static_cast<double>(columns);
        return std::max(1.0, all_ / std::pow(keys, known));
    }

    Candidate byIndex(size_t index) const {
        const jet::KeyEncoder& encoder = table_.encoders[index];
        Candidate made;
        made.path.kind = AccessPath::Kind::Index;
        made.path.index = index;
        const auto take = [&](size_t part, Bound bound) {
            const int at = mayBound(encoder.columns()[part], bound)
                               ? constraintOn(table_, info_, encoder.places()[part], bound)
                               : -1;
            if (at >= 0) {
                made.path.bounds += static_cast<char>(bound);
                made.arguments.push_back(at);
            }
            return at >= 0;
        };
        size_t equalities = 0;
        while (equalities < encoder.places().size() && take(equalities, Bound::Equal)) {
            ++equalities;
        }
        made.rows = equalities == 0 ? all_ : rowsOf(index, equalities);
        if (equalities < encoder.places().size()) {
            if (take(equalities, Bound::Like)) {
                made.rows *= shareOfPattern;
            } else {
                made.rows *= take(equalities, Bound::Low) ? shareOfBound : 1;
                made.rows *= take(equalities, Bound::High) ? shareOfBound : 1;
            }
        } else {
            finishUnique(index, made);
        }
        if (!made.isUnique && !made.arguments.empty()) {
            made.rows = rowsInRange(made).value_or(made.rows);
        }
        made.rows = std::max(1.0, made.rows);
        made.cost = descent + made.rows * indexedRow;
        made.isOrdered = servesOrder(index, equalities, made);
        return made;
    }

    // As many as the index itself has between the bounds, where they are known already.
    std::optional<double> rowsInRange(const Candidate& candidate) const {
        std::vector<sqlite3_value*> values(candidate.arguments.size());
        for (size_t i = 0; i < values.size(); ++i) {
            const int argument = candidate.arguments[i];
            if (sqlite3_vtab_in(info_, argument, -1) != 0 ||
                sqlite3_vtab_rhs_value(info_, argument, &values[i]) != SQLITE_OK) {
                return std::nullopt;
            }
        }
        KeyRange range;
        try {
            RangeMaker().make(table_, candidate.path, values.data(), range);
        } catch (const jet::Error&) {
            return std::nullopt;  // it is met again, and told, when rows are read
        }
        if (range.isEmpty) {
            return 0;
        }
        const uint32_t root = table_.table.definition().realIndexes[candidate.path.index].rootPage;
        const jet::IndexCursor index(table_.table.store(), root);
        const double high =
            range.high.empty() ? 1 : index.shareBefore(jet::ByteView(range.high), true);
        return all_ * (high - index.shareBefore(jet::ByteView(range.low), false));
    }

    void finishUnique(size_t index, Candidate& made) const {
        const auto& columns = table_.encoders[index].columns();
        made.isUnique = table_.table.definition().realIndexes[index].isUnique() &&
                        std::none_of(columns.begin(), columns.end(),
                                     [](const auto& column) { return isReal(column.type); });
        if (made.isUnique) {
            made.rows = 1;
        }
    }

    // Whether the index, `equalities` of whose leading columns have one value each, gives the order
    // that is asked for; sets the path's direction.
    bool servesOrder(size_t index, size_t equalities, Candidate& made) const {
        const jet::KeyEncoder& encoder = table_.encoders[index];
        const bool leavesOut = table_.table.definition().realIndexes[index].ignoresNulls();
        if (info_->nOrderBy == 0 || (leavesOut && made.arguments.empty())) {
            return false;
        }
        const auto& places = encoder.places();
        size_t part = equalities;
        std::optional<bool> backwards;
        for (int i = 0; i < info_->nOrderBy; ++i) {
            const auto& term = info_->aOrderBy[i];
            const auto place = static_cast<size_t>(term.iColumn);
            const auto fixed = places.begin() + static_cast<std::ptrdiff_t>(equalities);
            if (std::find(places.begin(), fixed, place) != fixed) {
                continue;
            }
            if (term.iColumn < 0 || part == places.size() || places[part] != place ||
                !hasOrder(encoder.columns()[part], i + 1 == info_->nOrderBy)) {
                return false;
            }
            const bool turned = (term.desc != 0) == encoder.columns()[part].ascending;
            if (backwards.value_or(turned) != turned) {
                return false;
            }
            backwards = turned;
            ++part;
        }
        made.path.backwards = backwards.value_or(false);
        return true;
    }

    Candidate byTransientIndex() const {
        Candidate made;
        made.path.kind = AccessPath::Kind::Transient;
        const auto& columns = table_.table.definition().columns;
        for (int i = 0; i < info_->nConstraint; ++i) {
            const auto& constraint = info_->aConstraint[i];
            const auto place = static_cast<size_t>(constraint.iColumn);
            if (constraint.usable && constraint.iColumn >= 0 &&
                constraint.op == SQLITE_INDEX_CONSTRAINT_EQ &&
                comparesRightly(info_, i, columns[place]) && mayVary(info_, i)) {
                made.path.columns.push_back(place);
                made.arguments.push_back(i);
            }
        }
        made.rows = std::max(1.0, std::min(all_ / 4, transientRows));
        made.cost = transientProbe + made.rows * indexedRow;
        return made;
    }

    const JetTable& table_;
    sqlite3_index_info* info_;
    double all_;  // rows
};

// ---- In words

std::wstring indexName(const jet::TableDefinition& definition, size_t real) {
    std::wstring name;
    for (const jet::LogicalIndex& index : definition.indexes) {
        if (index.realIndex == real && (name.empty() || !index.isForeign())) {
            name = index.name;
        }
    }
    return name;
}

std::wstring term(const jet::Column& column, Bound bound) {
    const wchar_t* sign = bound == Bound::Equal  ? L"=?"
                          : bound == Bound::Low  ? L">?"
                          : bound == Bound::High ? L"<?"
                                                 : L" LIKE ?";
    return column.name + sign;
}

std::wstring listed(const std::vector<std::wstring>& terms) {
    std::wstring text;
    for (const std::wstring& each : terms) {
        text += (text.empty() ? L" (" : L" AND ") + each;
    }
    return text.empty() ? text : text + L")";
}

}  // namespace

int AccessPath::number() const {
    return kind == Kind::Scan        ? scanNumber
           : kind == Kind::Transient ? transientNumber
                                     : static_cast<int>(index);
}

std::string AccessPath::text() const {
    std::string text = backwards ? std::string(1, backwardsMark) : std::string();
    for (const size_t column : columns) {
        text += (text.empty() ? "" : ",") + std::to_string(column);
    }
    return text + bounds;
}

AccessPath AccessPath::of(int number, const char* text) {
    AccessPath path;
    if (number == transientNumber) {
        path.kind = Kind::Transient;
        for (char* at = const_cast<char*>(text); *at != '\0'; at += *at == ',') {
            path.columns.push_back(std::strtoul(at, &at, 10));
        }
    } else if (number >= 0) {
        path.kind = Kind::Index;
        path.index = static_cast<size_t>(number);
        path.backwards = *text == backwardsMark;
        path.bounds = text + path.backwards;
    }
    return path;
}

void choosePath(const JetTable& table, sqlite3_index_info* info) {
    const Candidate best = Planner(table, info).best();
    for (size_t i = 0; i < best.arguments.size(); ++i) {
        info->aConstraintUsage[best.arguments[i]].argvIndex = static_cast<int>(i) + 1;
    }
    info->idxNum = best.path.number();
    info->idxStr = sqlite3_mprintf("%s", best.path.text().c_str());
    if (info->idxStr == nullptr) {
        throw std::bad_alloc();
    }
    info->needToFreeIdxStr = 1;
    info->orderByConsumed = best.isOrdered;
    info->estimatedRows = static_cast<sqlite3_int64>(best.rows);
    info->estimatedCost = best.cost;
    if (best.isUnique) {
        info->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
    }
}

std::wstring describe(const AccessPath& path, const std::wstring& name, const jet::Table& table) {
    const jet::TableDefinition& definition = table.definition();
    std::vector<std::wstring> terms;
    if (path.kind == AccessPath::Kind::Scan) {
        return L"SCAN " + name;
    }
    if (path.kind == AccessPath::Kind::Transient) {
        for (const size_t column : path.columns) {
            terms.push_back(term(definition.columns[column], Bound::Equal));
        }
        return L"SEARCH " + name + L" USING TRANSIENT INDEX" + listed(terms);
    }
    size_t part = 0;
    for (const char bound : path.bounds) {
        const auto& parts = definition.realIndexes[path.index].columns;
        const auto place = definition.columnByNumber(parts[part].column);
        terms.push_back(term(definition.columns[*place], static_cast<Bound>(bound)));
        part += static_cast<Bound>(bound) == Bound::Equal;
    }
    return (terms.empty() ? L"SCAN " : L"SEARCH ") + name + L" USING INDEX " +
           indexName(definition, path.index) + listed(terms);
}

}  // namespace sg::sql
