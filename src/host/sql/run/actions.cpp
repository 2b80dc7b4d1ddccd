#include "host/sql/run/actions.h"

#include <algorithm>
#include <list>
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
    NoTableToDelete = 3128,
    UnknownInsertColumn = 3127,
    CountOfValues = 3346,
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

size_t placeOf(const jet::TableDefinition& table, const std::wstring& name) {
    const std::optional<size_t> place = table.columnByName(name);
    if (!place) {
        throw jet::Error(UnknownInsertColumn, {name});
    }
    return *place;
}

// Where the values of an INSERT go: to the columns it names, else by the names of the query's
// columns, else in the table's order.
std::vector<size_t> insertPlaces(const Insert& statement, const jet::TableDefinition& table,
                                 const Program& program) {
    std::vector<size_t> places;
    for (const ColumnName& column : statement.columns) {
        places.push_back(placeOf(table, column.name.text));
    }
    if (statement.columns.empty() && statement.query != nullptr) {
        for (const OutputColumn& column : program.columns) {
            places.push_back(placeOf(table, column.name));
        }
    } else if (statement.columns.empty()) {
        places = jet::placesInOrder(table);
    }
    if (places.size() != program.columns.size()) {
        throw jet::Error(CountOfValues);
    }
    return places;
}

jet::RowId rowIdOf(const jet::Value& value) {
    return jet::RowId::fromPacked(static_cast<uint32_t>(std::get<int64_t>(value)));
}

// One transaction on every database that is written.
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
    size_t source = 0;
    TableUse table;
    std::vector<size_t> columns;
    std::vector<size_t> values;  // places in the collected rows, behind the row ids
};

// Which of the sources loses rows.
size_t sourceToErase(Translator& translator, const Delete& statement, Scope& scope) {
    std::optional<size_t> chosen;
    for (const SelectItem& item : statement.items) {
        size_t source = 0;
        if (const auto* star = std::get_if<Star>(&item.expression->node)) {
            if (star->qualifiers.empty()) {
                continue;
            }
            const auto found = std::find_if(
                scope.sources.begin(), scope.sources.end(), [&](const ScopeSource& each) {
                    return equalIgnoringCase(each.name, star->qualifiers.back().text);
                });
            if (found == scope.sources.end()) {
                throw jet::Error(jet::InputTableNotFound, {star->qualifiers.back().text});
            }
            source = static_cast<size_t>(found - scope.sources.begin());
        } else if (const auto* name = std::get_if<ColumnName>(&item.expression->node)) {
            source = translator.place(*name, scope).source;
        } else {
            throw jet::Error(NoTableToDelete);
        }
        if (chosen && *chosen != source) {
            throw jet::Error(NoTableToDelete);
        }
        chosen = source;
    }
    if (!chosen && scope.sources.size() != 1) {
        throw jet::Error(NoTableToDelete);
    }
    if (!scope.sources[chosen.value_or(0)].table) {
        throw jet::Error(NotUpdateable);
    }
    return chosen.value_or(0);
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
    Translator translator = translatorOf(setting);
    const TableUse target = translator.target(statement.table, statement.database);
    Transaction transaction(*target.database);
    const Program program = statement.query != nullptr ? translator.query(*statement.query)
                                                       : translator.values(statement.values);
    jet::TableWriter& writer = target.database->writer(target.name);
    const std::vector<size_t> places = insertPlaces(statement, writer.definition(), program);
    const jet::PackedRows rows = collected(setting, program);
    std::vector<jet::Value> row;
    for (size_t i = 0; i < rows.size(); ++i) {
        setting.engine.passRow();
        row.clear();
        writer.rules().defaults(row);
        for (size_t column = 0; column < places.size(); ++column) {
            rows.value(i, column, row[places[column]]);
        }
        writer.insert(row);
    }
    transaction.commit();
    return static_cast<int64_t>(rows.size());
}

int64_t update(const Setting& setting, const Update& statement) {
    Translator translator = translatorOf(setting);
    Scope scope = translator.sources(statement.from);
    std::vector<Target> targets;
    std::vector<const Expression*> values;
    for (const Assignment& assignment : statement.assignments) {
        const Translator::ColumnPlace place = translator.place(assignment.column, scope);
        auto found = std::find_if(targets.begin(), targets.end(),
                                  [&](const Target& each) { return each.source == place.source; });
        if (found == targets.end()) {
            found = targets.insert(
                found, Target{place.source, *scope.sources[place.source].table, {}, {}});
        }
        found->columns.push_back(place.column);
        found->values.push_back(values.size());
        values.push_back(assignment.value.get());
    }
    std::vector<size_t> sources;
    Transactions transactions;
    for (const Target& target : targets) {
        sources.push_back(target.source);
        transactions.begin(*target.table.database);
    }
    const Program program = translator.rows(scope, statement.where.get(), sources, values);
    const jet::PackedRows rows = collected(setting, program);
    int64_t count = 0;
    std::vector<bool> wasWritten(rows.size(), false);
    for (size_t t = 0; t < targets.size(); ++t) {
        const Target& target = targets[t];
        jet::TableWriter& writer = target.table.database->writer(target.table.name);
        const size_t columns = writer.definition().columns.size();
        std::vector<jet::Value> row;
        std::vector<bool> changed(columns, false);
        for (const size_t column : target.columns) {
            changed[column] = true;
        }
        jet::Value id;
        for (size_t i = 0; i < rows.size(); ++i) {
            setting.engine.passRow();
            rows.value(i, t, id);
            if (jet::isNull(id)) {  // the side of an outer join that has no row
                continue;
            }
            row.assign(columns, {});
            for (size_t column = 0; column < target.columns.size(); ++column) {
                rows.value(i, targets.size() + target.values[column], row[target.columns[column]]);
            }
            writer.update(rowIdOf(id), row, changed);
            wasWritten[i] = true;
        }
    }
    count = std::count(wasWritten.begin(), wasWritten.end(), true);
    transactions.commit();
    return count;
}

int64_t erase(const Setting& setting, const Delete& statement) {
    Translator translator = translatorOf(setting);
    Scope scope = translator.sources(statement.from);
    const size_t source = sourceToErase(translator, statement, scope);
    const TableUse target = *scope.sources[source].table;
    Transaction transaction(*target.database);
    const Program program = translator.rows(scope, statement.where.get(), {source}, {});
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
    for (const jet::RowId row : ids) {
        setting.engine.passRow();
        try {
            writer.erase(row);
        } catch (const jet::Error& error) {
            // A relation from the table to itself may have taken the row with another one.
            if (error.code() != jet::RecordDeleted) {
                throw;
            }
        }
    }
    transaction.commit();
    return static_cast<int64_t>(ids.size());
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
