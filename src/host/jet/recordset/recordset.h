#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/table.h"
#include "host/jet/values/value.h"

// Rows under a cursor that programs move, read and write through.
namespace sg::jet {

class Database;

// What a column of a recordset is.
struct RecordColumn {
    std::wstring name;
    ColumnType type = ColumnType::Text;
    uint32_t size = 0;  // bytes; of Text characters; 0 for long values
    // Of a result's column that is a table's column as it stands: which one. Else "".
    std::wstring sourceTable{};
    std::wstring sourceColumn{};
};

enum class EditMode { None, Edit, AddNew };
enum class SeekOperator { Equal, GreaterOrEqual, Greater, LessOrEqual, Less };

// A cursor over the rows of a table or of a result. Before the first row (BOF) and behind the last
// (EOF) there is no current record; in an empty recordset both are true. Functions that need a
// current record throw NoCurrentRecord without one, and RecordDeleted when it has been deleted.
class SG_API Recordset {
  public:
    virtual ~Recordset() = default;

    virtual const std::vector<RecordColumn>& columns() const = 0;
    // Ignoring case; throws ItemNotFound (3265).
    size_t columnByName(std::wstring_view name) const;

    virtual bool isBof() const = 0;
    virtual bool isEof() const = 0;
    // In an empty recordset: both BOF and EOF, without an error.
    virtual void moveFirst() = 0;
    virtual void moveLast() = 0;
    // So many rows forward, or back when negative; over the end it stops at EOF or BOF without an
    // error. Throws NoCurrentRecord when it is there already, and for any move by other than 0 in
    // an empty one. 0 reads the current record again, where there
    // is one.
    virtual void move(int64_t count) = 0;

    virtual void value(size_t column, Value& into) const = 0;
    Value value(size_t column) const {
        Value into;
        value(column, into);
        return into;
    }

    // Of a table: exactly. Of a result: all its rows.
    virtual uint32_t recordCount() const = 0;

    virtual Bytes bookmark() const = 0;
    // Throws InvalidBookmark; RecordDeleted when the row is gone.
    virtual void setBookmark(const Bytes& bookmark) = 0;
};

// All rows of a table: in file order, or by one of its indexes. It stays at its record when
// others write; a record that appears before or behind it in the order is met when moving there.
// After its record is deleted there is no current record, and a move by one goes to the neighbour.
class SG_API TableRecordset final : public Recordset {
  public:
    // On the first record. Throws InputTableNotFound. The database must outlive it.
    TableRecordset(Database& database, std::wstring_view table, bool readOnly = false);
    // cancelUpdate()
    ~TableRecordset() override;
    TableRecordset(const TableRecordset&) = delete;
    TableRecordset& operator=(const TableRecordset&) = delete;

    // In the order in which programs show them (Column::ordinal). Changes with the design.
    const std::vector<RecordColumn>& columns() const override;
    // What the table's definition says of a column. Throws ItemNotFound.
    const Column& columnDefinition(size_t column) const;
    // As it is now; holds until the next call.
    const Table& table() const;
    bool isReadOnly() const;

    // Ignoring case; "" is file order. The current record stays current; a recordset that was
    // never moved goes to the first record of the new order. Throws 3015 (NotAnIndex) with the
    // name, and OperationNotSupported for an index whose keys can't be made.
    void setIndex(std::wstring_view name);
    const std::wstring& index() const;

    bool isBof() const override;
    bool isEof() const override;
    void moveFirst() override;
    void moveLast() override;
    void move(int64_t count) override;
    void value(size_t column, Value& into) const override;
    using Recordset::value;
    uint32_t recordCount() const override;
    Bytes bookmark() const override;
    void setBookmark(const Bytes& bookmark) override;

    // To the first record (of LessOrEqual and Less: the last) whose leading index columns compare
    // so with `keys`, which are converted to the columns' types. In a descending column what comes
    // behind is greater; texts are equal but for case and trailing blanks; a Null equals a Null.
    // False when there is none: then there is no current record, and move() throws NoCurrentRecord.
    // Throws NoCurrentIndex, ConversionError, InvalidArgument for no keys or more than columns.
    bool seek(SeekOperator comparison, std::span<const Value> keys);

    // AddNew begins a new record with its default values; Edit locks the current one (LockedByUser,
    // 3188) and reads it again. value() tells what was set from then on. Update writes it and
    // unlocks, at the end of the transaction where one is open; when it throws, the edit goes on.
    // Edit and AddNew while one is under way drop it. After the update of a new record the old one
    // is current again; lastModified() is the bookmark of the one that was written. Moves, seeks
    // and setIndex() drop an edit, as does a change of the table's columns. In a recordset that is
    // only read these throw ReadOnlyDatabase; setValue(), update() and cancelUpdate() throw
    // UpdateWithoutEdit without an edit.
    void addNew();
    void edit();
    // The value is converted to the column's type. Throws ConversionError and FieldTooSmall with
    // the column's name; OperationNotSupported for a counter and for columns that are only read;
    // ItemNotFound.
    void setValue(size_t column, Value value);
    // Throws what TableWriter's insert() and update() throw.
    void update();
    void cancelUpdate();
    EditMode editMode() const;
    // Deletes the current record. Then there is none; throws as TableWriter's erase().
    void erase();
    // Throws NoCurrentRecord when nothing was written yet.
    Bytes lastModified() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// Rows as they were when they were read: of a query's result, or of a table.
class SG_API SnapshotRecordset final : public Recordset {
  public:
    explicit SnapshotRecordset(std::vector<RecordColumn> columns);
    // All rows of a table as they are now, in one state.
    SnapshotRecordset(const Database& database, std::wstring_view table);
    ~SnapshotRecordset() override;

    // Adds a row behind the last; one value for each column. The cursor is on the first row until
    // it is moved.
    void append(std::span<const Value> row);
    // That the rows take in memory.
    uint64_t contentBytes() const;

    const std::vector<RecordColumn>& columns() const override;
    bool isBof() const override;
    bool isEof() const override;
    void moveFirst() override;
    void moveLast() override;
    void move(int64_t count) override;
    void value(size_t column, Value& into) const override;
    using Recordset::value;
    uint32_t recordCount() const override;
    Bytes bookmark() const override;
    void setBookmark(const Bytes& bookmark) override;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sg::jet
