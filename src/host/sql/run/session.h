#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/recordset/recordset.h"
#include "host/sql/statements.h"

namespace sg::jet {
class Database;
}

namespace sg::sql {

// A parameter's value. Its name is compared ignoring case; names in several parts are joined by
// "!". Those without a name are taken by "?" in their order.
struct Parameter {
    std::wstring name;
    jet::Value value;
};
using Parameters = std::vector<Parameter>;

// What becomes of a statement when a row that it writes is refused: by a rule, a key, a relation or
// a lock, or as a value does not fit its column.
enum class Refused : uint8_t {
    UndoesAll,
    IsLeftOut,  // the other rows are written
};

// What is known of a statement before it runs.
struct Description {
    // In the order in which they are declared and, where they are not, used; those of "?" as "?1"
    // and on. Without a type where none is declared.
    struct Parameter {
        std::wstring name;
        std::optional<jet::ColumnType> type;
    };
    std::vector<Parameter> parameters;
    std::vector<jet::RecordColumn> columns;  // none where it gives no rows
};

struct Setting;

// What a statement may cost.
struct Limits {
    // Asked now and then, at least every few thousand rows: true ends the statement with Canceled
    // (3059).
    std::function<bool()> isCanceled;
    // That the rows of a result take in memory; more than this ends with ResultTooLarge (3183).
    uint64_t resultBytes = uint64_t(1) << 30;
};

// Runs statements of the dialect on a database, which must outlive it. Linked tables and stored
// queries stand for their rows.
class SG_API Session {
  public:
    explicit Session(jet::Database& database);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // For the statements from now on.
    void limit(Limits limits);

    // The rows of a query, or of a stored one that EXECUTE names, as they are now. Throws what
    // parseStatement() throws; InputTableNotFound (3078), UnknownName (3061) with the number of
    // parameters that have no value, UndefinedFunction, ConversionError and whatever else the
    // statement meets; 3219 for a statement that gives no rows.
    std::unique_ptr<jet::SnapshotRecordset> select(std::wstring_view text,
                                                   const Parameters& parameters = {});
    std::unique_ptr<jet::SnapshotRecordset> select(const Statement& statement,
                                                   const Parameters& parameters = {});

    // Whether it is for select(). Throws InputTableNotFound for an EXECUTE of no stored query, and
    // OperationNotSupported for one that cannot be run.
    bool givesRows(const Statement& statement) const;

    // Runs a statement that changes rows or the design, as one transaction: done wholly or, when
    // it throws, not at all. Answers how many records it changed. Throws as select() and as
    // TableWriter and schema.h do; 3065 for a query that only gives rows.
    int64_t execute(std::wstring_view text, const Parameters& parameters = {},
                    Refused refused = Refused::UndoesAll);
    int64_t execute(const Statement& statement, const Parameters& parameters = {},
                    Refused refused = Refused::UndoesAll);

    // Throws what select() does but for parameters. Columns of a crosstab whose headings are not
    // told are those that its rows give now.
    Description describe(const Statement& statement);

    // How a query is to be run, a line a step: SEARCH where an index is used to find rows, SCAN
    // where all are read. A TRANSIENT INDEX is made for the statement, in memory, where rows of a
    // table are looked for again and again and it has no index for it.
    std::vector<std::wstring> explain(const Statement& statement,
                                      const Parameters& parameters = {});

  private:
    struct State;
    Setting setting(const Statement& statement, const Parameters& parameters,
                    Refused refused = Refused::UndoesAll) const;

    std::unique_ptr<State> state_;
};

}  // namespace sg::sql
