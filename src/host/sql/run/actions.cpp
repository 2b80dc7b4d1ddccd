#include "host/sql/run/actions.h"

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <set>

#include "base/text.h"
#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/packed_rows.h"
#include "host/jet/recordset/record_columns.h"
#include "host/jet/schema/schema.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/translator.h"

namespace sg::sql {
namespace {

enum ActionError : int {
    NotUpdateable = 3073,
    LockedHere = 3188,
    NoTableToDelete = 3128,
    UnknownInsertColumn = 3127,
    CountOfValues = 3346,
    ColumnTwice = 3063,
    NoOutputTable = 3192,
    CannotDelete = 3086,
    NotUpdateableColumn = 3113,
};

jet::PackedRows collected(const Setting& setting, const Program& program) {
    jet::PackedRows rows;
    std::vector<jet::Value> values(program.columns.size());
    setting.engine.run(program, [&](sqlite3_stmt* row) {
        for (size_t i = 0; i < values.size(); ++i) {
            take(sqlite3_column_value(row, static_cast<int>(i)), program.columns[i].type,
                 values[i]);
        }
        rows.append(values);
        setting.engine.checkResult(rows.contentBytes());
    });
    return rows;
}

Translator translatorOf(const Setting& setting) {
    return {setting.database, setting.declared, setting.parameters, setting.engine};
}

// Where an INSERT puts its rows: a table, or the one table that a stored query's columns are of.
struct InsertTarget {
    TableUse table;
    std::vector<size_t> places;  // of the values, in the table's definition
};

// The columns that an INSERT fills: those it names, else those named as the query's columns, else
// all in their order.
std::vector<ColumnName> insertColumns(const Insert& statement, const Scope& scope,
                                      const Program& program) {
    std::vector<ColumnName> names;
    const auto add = [&](const std::wstring& name) { names.push_back({{}, {name, {}, false}}); };
    for (const ColumnName& column : statement.columns) {
        add(column.name.text);
    }
    if (names.empty() && statement.query != nullptr) {
        for (const OutputColumn& column : program.columns) {
            add(column.name);
        }
    } else if (names.empty()) {
        for (const ScopeColumn& column : scope.sources.at(0).columns) {
            add(column.name);
        }
    }
    if (names.size() != program.columns.size()) {
        throw jet::Error(CountOfValues);
    }
    std::set<std::wstring> given;
    for (const ColumnName& column : names) {
        if (!given.insert(upperCased(column.name.text)).second) {
            throw jet::Error(ColumnTwice, {column.name.text});
        }
    }
    return names;
}

InsertTarget insertTarget(const Insert& statement, Translator& translator, Scope& scope,
                          const Program& program) {
    std::set<size_t> bases;
    InsertTarget target;
    for (const ColumnName& name : insertColumns(statement, scope, program)) {
        try {
            const Origin origin = translator.place(name, scope);
            bases.insert(origin.base);
            target.places.push_back(origin.column);
        } catch (const jet::Error& error) {
            if (error.code() != jet::UnknownName) {
                throw;
            }
            throw jet::Error(UnknownInsertColumn, {name.name.text});
        }
    }
    if (bases.size() != 1) {
        throw jet::Error(NotUpdateable);
    }
    target.table = scope.bases[*bases.begin()].table;
    return target;
}

// What an INSERT names as a source of rows.
Scope scopeOf(const Insert& statement, Translator& translator) {
    From from;
    auto source = std::make_unique<Source>();
    source->node = TableReference{statement.table, {}};
    from.sources.push_back(std::move(source));
    from.database = statement.database;
    try {
        return translator.sources(from);
    } catch (const jet::Error& error) {
        if (error.code() == jet::InputTableNotFound) {
            throw jet::Error(NoOutputTable, error.names(), error.place());
        }
        throw;
    }
}

// Runs `write`, which converts the values of `row` and leaves what it can't convert.
template <class Write>
void written(const jet::TableWriter& writer, const std::vector<jet::Value>& row, Write write) {
    try {
        write();
    } catch (const jet::Error& error) {
        const auto& columns = writer.definition().columns;
        for (size_t i = 0; error.code() == jet::ConversionError && i < row.size(); ++i) {
            if (std::holds_alternative<std::wstring>(row[i]) && !columns[i].isText()) {
                throw jet::Error(jet::TypeMismatch, error.names(), error.place());
            }
        }
        throw;
    }
}

jet::RowId rowIdOf(const jet::Value& value) {
    return jet::RowId::fromPacked(static_cast<uint32_t>(std::get<int64_t>(value)));
}

// Whether an error is about the row that is written, and not about all of the work.
bool isOfRow(int code) {
    static constexpr int codes[] = {jet::DuplicateKey,
                                    jet::NullInIndex,
                                    jet::RecordTooLarge,
                                    jet::FieldTooSmall,
                                    LockedHere,
                                    jet::RecordChanged,
                                    jet::RelatedRecordsExist,
                                    jet::RelatedRecordRequired,
                                    jet::LockedByUser,
                                    jet::NullInRequiredField,
                                    jet::ZeroLengthField,
                                    jet::ValidationMessage,
                                    jet::ValidationRule,
                                    jet::CascadeNeedsRecord,
                                    jet::CascadeNullKey,
                                    jet::CascadeDuplicateKey,
                                    jet::TwoCascadingUpdates,
                                    jet::ConversionError};
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

// Whether `write` has written its row: one that is refused may be left out.
template <class Write>
bool wrote(const Setting& setting, const jet::Database& database, Write write) {
    const int depth = database.transactionDepth();
    try {
        write();
        return true;
    } catch (const jet::Error& error) {
        const bool isLeftOut = setting.refused == Refused::IsLeftOut && isOfRow(error.code()) &&
                               database.transactionDepth() == depth;
        if (!isLeftOut) {
            throw;
        }
        return false;
    }
}

// One transaction on every database that is written. What fails before the first commit undoes all;
// when the commit of a later file fails, as on a full disk, those before it stay written.
class Transactions {
  public:
    void begin(jet::Database& database) {
        if (std::find(databases_.begin(), databases_.end(), &database) == databases_.end()) {
            databases_.push_back(&database);
            open_.emplace_back(database);
        }
    }
    void commit() {
        for (Transaction& each : open_) {
            each.commit();
        }
    }

  private:
    std::vector<jet::Database*> databases_;
    std::list<Transaction> open_;
};

// The values that an UPDATE gives to one of its tables.
struct Target {
    size_t base = 0;
    TableUse table;
    std::vector<size_t> columns;
    std::vector<size_t> values;  // places in the collected rows, behind the row ids
};

std::vector<Target> targetsOf(const Update& statement, Translator& translator, Scope& scope) {
    std::vector<Target> targets;
    for (size_t i = 0; i < statement.assignments.size(); ++i) {
        const Origin place = translator.place(statement.assignments[i].column, scope);
        auto found = std::find_if(targets.begin(), targets.end(),
                                  [&](const Target& each) { return each.base == place.base; });
        if (found == targets.end()) {
            found =
                targets.insert(found, Target{place.base, scope.bases[place.base].table, {}, {}});
        }
        if (std::find(found->columns.begin(), found->columns.end(), place.column) !=
            found->columns.end()) {
            throw jet::Error(ColumnTwice, {statement.assignments[i].column.name.text});
        }
        found->columns.push_back(place.column);
        found->values.push_back(i);
    }
    return targets;
}

// The table's rows among those that are joined, each with the last of the joined rows it is in.
std::vector<std::pair<jet::RowId, size_t>> lastOfEach(const jet::PackedRows& rows, size_t target) {
    std::vector<std::pair<jet::RowId, size_t>> last;
    std::map<jet::RowId, size_t> places;
    jet::Value id;
    for (size_t i = 0; i < rows.size(); ++i) {
        rows.value(i, target, id);
        if (jet::isNull(id)) {  // the side of an outer join that has no row
            continue;
        }
        const auto [place, isNew] = places.try_emplace(rowIdOf(id), last.size());
        if (isNew) {
            last.emplace_back(place->first, i);
        }
        last[place->second].second = i;
    }
    return last;
}

// Answers the rows that were refused and left out.
std::set<jet::RowId> updateTable(const Setting& setting, const Target& target,
                                 const jet::PackedRows& rows, size_t place, size_t targets) {
    std::set<jet::RowId> refused;
    jet::TableWriter& writer = target.table.database->writer(target.table.name);
    const std::vector<jet::Column>& columns = writer.definition().columns;
    std::vector<jet::Value> row;
    std::vector<bool> changed(columns.size(), false);
    for (const size_t column : target.columns) {
        if (columns[column].isAutoNumber()) {
            throw jet::Error(NotUpdateableColumn, {columns[column].name});
        }
        changed[column] = true;
    }
    for (const auto& [id, joined] : lastOfEach(rows, place)) {
        setting.engine.passRow();
        row.assign(columns.size(), {});
        for (size_t i = 0; i < target.columns.size(); ++i) {
            rows.value(joined, targets + target.values[i], row[target.columns[i]]);
        }
        const auto write = [&, id = id] {
            written(writer, row, [&] { writer.update(id, row, changed); });
        };
        if (!wrote(setting, *target.table.database, write)) {
            refused.insert(id);
        }
    }
    return refused;
}

// How many of the joined rows have a row of one of the tables that was not refused.
int64_t countOfChanged(const jet::PackedRows& rows,
                       const std::vector<std::set<jet::RowId>>& refused) {
    int64_t count = 0;
    jet::Value id;
    for (size_t i = 0; i < rows.size(); ++i) {
        bool any = false;
        for (size_t target = 0; target < refused.size() && !any; ++target) {
            rows.value(i, target, id);
            any = !jet::isNull(id) && !refused[target].contains(rowIdOf(id));
        }
        count += any ? 1 : 0;
    }
    return count;
}

size_t sourceNamed(const Scope& scope, const std::wstring& name) {
    const auto found =
        std::find_if(scope.sources.begin(), scope.sources.end(),
                     [&](const ScopeSource& each) { return equalIgnoringCase(each.name, name); });
    if (found == scope.sources.end()) {
        throw jet::Error(jet::InputTableNotFound, {name});
    }
    return static_cast<size_t>(found - scope.sources.begin());
}

// The base whose rows a source's columns are of; none where they are of several.
size_t baseOf(const ScopeSource& source) {
    if (!source.isUpdatable) {
        throw jet::Error(CannotDelete);
    }
    std::optional<size_t> base;
    for (const ScopeColumn& column : source.columns) {
        if (column.origin && base && *base != column.origin->base) {
            throw jet::Error(NoTableToDelete);
        }
        base = column.origin ? column.origin->base : base;
    }
    if (!base) {
        throw jet::Error(CannotDelete);
    }
    return *base;
}

// Which of the bases loses rows.
size_t baseToErase(Translator& translator, const Delete& statement, Scope& scope) {
    std::optional<size_t> chosen;
    for (const SelectItem& item : statement.items) {
        size_t base = 0;
        if (const auto* star = std::get_if<Star>(&item.expression->node)) {
            if (star->qualifiers.empty()) {
                continue;
            }
            base = baseOf(scope.sources[sourceNamed(scope, star->qualifiers.back().text)]);
        } else if (const auto* name = std::get_if<ColumnName>(&item.expression->node)) {
            base = translator.place(*name, scope).base;
        } else {
            throw jet::Error(NoTableToDelete);
        }
        if (chosen && *chosen != base) {
            throw jet::Error(NoTableToDelete);
        }
        chosen = base;
    }
    if (!chosen && scope.sources.size() != 1) {
        throw jet::Error(NoTableToDelete);
    }
    return chosen ? *chosen : baseOf(scope.sources[0]);
}

jet::ColumnDesign designOf(const OutputColumn& column) {
    jet::ColumnDesign design;
    design.name = column.name;
    std::replace(design.name.begin(), design.name.end(), L'.', L'_');
    design.type = column.type.column.value_or(ColumnType::Text);
    if (design.type == ColumnType::Text || design.type == ColumnType::Binary) {
        design.size = static_cast<uint16_t>(std::min<uint32_t>(column.type.size, 255));
    } else if (design.type == ColumnType::Numeric) {
        design.precision = 28;
        design.scale = 10;
    } else if (design.type == ColumnType::Complex) {
        design.type = ColumnType::Long;
    } else if (design.type == ColumnType::DateTimeExtended) {
        design.type = ColumnType::Date;
    }
    return design;
}

bool anyIsNull(const jet::PackedRows& rows, size_t column) {
    jet::Value value;
    for (size_t i = 0; i < rows.size(); ++i) {
        rows.value(i, column, value);
        if (jet::isNull(value)) {
            return true;
        }
    }
    return false;
}

// A column that is a table's takes over what its type says of numbers: their digits, and that they
// count, unless it is grouped by or an outer join has left it empty.
void inheritNumbers(jet::Database& database, const Query& query, const Program& program,
                    const jet::PackedRows& rows, jet::TableDesign& design) {
    const auto* select = std::get_if<Select>(&query.body);
    const bool isGrouped = select == nullptr || !select->groupBy.empty();
    for (size_t i = 0; i < program.columns.size(); ++i) {
        const FieldOrigin& field = program.columns[i].field;
        if (field.table.empty()) {
            continue;
        }
        std::wstring name = field.table;
        const jet::Table table = database.home(name).table(name);
        const auto place = table.definition().columnByName(field.column);
        if (!place) {
            continue;
        }
        const jet::Column& column = table.definition().columns[*place];
        if (column.type == ColumnType::Numeric) {
            design.columns[i].precision = column.precision;
            design.columns[i].scale = column.scale;
        }
        design.columns[i].autoNumber = column.type == ColumnType::Long && column.isAutoNumber() &&
                                       !isGrouped && !anyIsNull(rows, i);
    }
}

}  // namespace

Transaction::Transaction(jet::Database& database)
    : database_(database), depth_(database.transactionDepth()) {
    database.beginTransaction();
}

Transaction::~Transaction() {
    // A failure may have cost all levels already.
    if (depth_ >= 0 && database_.transactionDepth() > depth_) {
        try {
            database_.rollbackTransaction();
        } catch (...) {  // what made it necessary is on its way already
        }
    }
}

void Transaction::commit() {
    database_.commitTransaction();
    depth_ = -1;
}

int64_t insert(const Setting& setting, const Insert& statement) {
    Translator names = translatorOf(setting);
    Scope scope = scopeOf(statement, names);
    Transactions transactions;
    for (const BaseRow& base : scope.bases) {
        transactions.begin(*base.table.database);
    }
    Translator translator = translatorOf(setting);
    const Program program = statement.query != nullptr ? translator.query(*statement.query)
                                                       : translator.values(statement.values);
    const InsertTarget target = insertTarget(statement, names, scope, program);
    const jet::PackedRows rows = collected(setting, program);
    jet::TableWriter& writer = target.table.database->writer(target.table.name);
    std::vector<jet::Value> row;
    int64_t count = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        setting.engine.passRow();
        row.clear();
        writer.rules().defaults(row);
        for (size_t column = 0; column < target.places.size(); ++column) {
            rows.value(i, column, row[target.places[column]]);
        }
        count += wrote(setting, *target.table.database,
                       [&] { written(writer, row, [&] { writer.insert(row); }); })
                     ? 1
                     : 0;
    }
    transactions.commit();
    return count;
}

int64_t update(const Setting& setting, const Update& statement) {
    Translator translator = translatorOf(setting);
    Scope scope = translator.sources(statement.from);
    const std::vector<Target> targets = targetsOf(statement, translator, scope);
    Transactions transactions;
    std::vector<size_t> bases;
    for (const Target& target : targets) {
        bases.push_back(target.base);
        transactions.begin(*target.table.database);
    }
    std::vector<const Expression*> values;
    for (const Assignment& assignment : statement.assignments) {
        values.push_back(assignment.value.get());
    }
    const Program program = translator.rows(scope, statement.where.get(), bases, values);
    const jet::PackedRows rows = collected(setting, program);
    std::vector<std::set<jet::RowId>> refused;
    for (size_t i = 0; i < targets.size(); ++i) {
        refused.push_back(updateTable(setting, targets[i], rows, i, targets.size()));
    }
    transactions.commit();
    return countOfChanged(rows, refused);
}

int64_t erase(const Setting& setting, const Delete& statement) {
    Translator translator = translatorOf(setting);
    Scope scope = translator.sources(statement.from);
    const size_t base = baseToErase(translator, statement, scope);
    const TableUse target = scope.bases[base].table;
    Transaction transaction(*target.database);
    const Program program = translator.rows(scope, statement.where.get(), {base}, {});
    const jet::PackedRows rows = collected(setting, program);
    std::set<jet::RowId> ids;
    jet::Value id;
    for (size_t i = 0; i < rows.size(); ++i) {
        rows.value(i, 0, id);
        if (!jet::isNull(id)) {
            ids.insert(rowIdOf(id));
        }
    }
    jet::TableWriter& writer = target.database->writer(target.name);
    int64_t count = 0;
    for (const jet::RowId row : ids) {
        setting.engine.passRow();
        try {
            count += wrote(setting, *target.database, [&] { writer.erase(row); }) ? 1 : 0;
        } catch (const jet::Error& error) {
            // A relation from the table to itself may have taken the row with another one.
            if (error.code() != jet::RecordDeleted) {
                throw;
            }
            ++count;
        }
    }
    transaction.commit();
    return count;
}

int64_t makeTable(const Setting& setting, const Query& query, const IntoTable& into) {
    Translator translator = translatorOf(setting);
    jet::Database& database = translator.databaseOf(into.table, into.database);
    Transaction transaction(database);
    const Program program = translator.query(query);
    jet::TableDesign design;
    design.name = into.table.name.text;
    for (const OutputColumn& column : program.columns) {
        design.columns.push_back(designOf(column));
    }
    const jet::PackedRows rows = collected(setting, program);
    inheritNumbers(setting.database, query, program, rows, design);
    jet::createTable(database, design);
    jet::TableWriter& writer = database.writer(design.name);
    std::vector<jet::Value> row(program.columns.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        setting.engine.passRow();
        for (size_t column = 0; column < row.size(); ++column) {
            rows.value(i, column, row[column]);
        }
        writer.insert(row);
    }
    transaction.commit();
    return static_cast<int64_t>(rows.size());
}

}  // namespace sg::sql
