#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/variant/safe_array.h"
#include "standards/record_columns.h"

namespace sg {

class CDBConnection;

// A row of one of the standards tables, and the cursor of that table on a connection:
//
//     layer.seekKey(L"WALL");          layer.addNew();
//     layer.edit();                    layer.sName.set(L"WALL");
//     layer.sLinetype.set(L"HIDDEN");  layer.save();
//     layer.save();
//
// The columns of the table are members of the classes in standards/records.h. Columns that a class
// does not know are left alone. Every operation selects the table on the connection first. It
// answers false, and changes nothing, without a connection; when it fails or finds no row, the
// values stay as they were.
class StandardsRecord {
  public:
    StandardsRecord(const StandardsRecord&) = delete;
    StandardsRecord& operator=(const StandardsRecord&) = delete;

    bool flag() const { return flag_; }
    bool isNew() const { return isNew_; }
    bool isEdited() const { return isEdited_; }

    // Closes the table on the connection.
    void forgetTable();

    // Chooses an index for the cursor; the one that operations below name is chosen by them.
    bool setIndex(const std::wstring& name);

    // From now on the cursor walks the rows that meet `condition`, in this order, both as a query
    // has them behind WHERE and ORDER BY; empty is all rows, and any order. Which rows these are is
    // found now. Both empty: the table's own rows and order again.
    bool setFilter(const std::wstring& condition, const std::wstring& order);

    // True without a connection.
    bool isBof();
    bool isEof();
    // To a row, which is read.
    bool moveFirst();
    bool moveNext();

    // To the row with this id, which is read. These use the table's index, whatever the filter.
    bool seekId(int32_t id);

    // Deletes the row that was read.
    bool deleteCurrent();

    // Begin a new row, or a change of the one that was read. Nothing is changed yet.
    void addNew();
    void edit();

    // Writes the columns that were changed since, and reads the row again; of a new row its id is
    // the database's. True without writing when none was changed; it then goes on being new or
    // edited. False also when neither was begun.
    bool save();

  protected:
    // `connection` may be null; it is not owned and outlives the record. With `flag` errors of the
    // connection are printed as a dialog reports them.
    StandardsRecord(bool flag, CDBConnection* connection, const wchar_t* table,
                    const wchar_t* idColumn);
    ~StandardsRecord() = default;

    bool moveToLast();
    bool seekOn(const wchar_t* index, const std::wstring& text);
    bool seekOn(const wchar_t* index, const COleVariant& key1, const std::wstring& key2);

  private:
    friend class RecordColumn;

    bool select(const std::wstring& index);
    bool took(bool done, const COleSafeArray& row);
    bool report(bool done);
    void read(const COleSafeArray& row);
    int32_t id() const;

    template <class Move>
    bool moveTo(const Move& move);
    bool moveToFiltered(ptrdiff_t position, ptrdiff_t step);

    std::vector<COleVariant> changes() const;
    bool write(const COleSafeArray& pairs);
    void clearChanged();

    const bool flag_;
    CDBConnection* const connection_;
    const wchar_t* const table_;
    const wchar_t* const idColumn_;  // and its index
    std::vector<RecordColumn*> columns_;
    bool isNew_ = false;
    bool isEdited_ = false;
    int32_t editedId_ = 0;

    std::optional<std::vector<int32_t>> filtered_;  // the ids of the rows
    ptrdiff_t filteredAt_ = 0;                      // -1 is BOF, their number EOF
};

}  // namespace sg
