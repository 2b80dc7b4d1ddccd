#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/row.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// A table's rows, in the order in which they stand in the file or by their ids.
namespace sg::jet {

class RowCursor;

// A table that can be read. Copies are cheap and share the definition; the store that it was read
// from must outlive them.
class SG_API Table {
  public:
    Table(const PageStore& store, std::shared_ptr<const TableDefinition> definition)
        : store_(&store), definition_(std::move(definition)) {}

    const PageStore& store() const { return *store_; }
    const TableDefinition& definition() const { return *definition_; }
    const std::wstring& name() const { return definition_->name; }
    // As the definition's page has it now.
    uint32_t rowCount() const;

    // A cursor before the first row.
    RowCursor scan() const;

  private:
    friend class RowCursor;
    const PageStore* store_;
    std::shared_ptr<const TableDefinition> definition_;
};

// Walks a table's rows page by page in ascending order, and within a page in the order of the row
// directory. Deleted rows are passed over; a row that overflowed comes where its id is.
//
// Its place is a row or, after a call that answers false, between rows. It keeps the pages that it
// reads as they were: who lets others write meanwhile calls refresh() before going on.
class SG_API RowCursor {
  public:
    // Before the first row.
    explicit RowCursor(const Table& table);
    RowCursor(const RowCursor&) = delete;
    RowCursor& operator=(const RowCursor&) = delete;

    // Goes to the next row; false behind the last. Throws Error with table and page for a damaged
    // page or row; called again after that it goes on with what stands behind.
    bool next();
    // The same backwards; false before the first.
    bool previous();
    bool first();
    bool last();

    // Goes to the row with this id; false, with no row under the cursor, when there is no row with
    // it in this table or it is deleted. next() goes on behind it.
    bool seek(RowId id);
    // Goes to the first row behind `id`, to the last one before it. No row need have the id.
    bool seekAfter(RowId id);
    bool seekBefore(RowId id);

    // Reads again what has changed. True when the cursor stood on a row and that is still there;
    // next() and previous() go on from its place in any case.
    bool refresh();
    // Lets the pages go, and the place with them: the next call must be one that does not need it.
    void release();

    const Table& table() const { return table_; }
    // Whether there is a row under the cursor.
    bool valid() const { return valid_; }

    // The rest is for a cursor that stands on a row. Columns are places in
    // TableDefinition::columns.
    RowId id() const { return id_; }
    const RowReader& row() const { return reader_; }
    bool isNull(size_t column) const { return reader_.isNull(column); }
    // RowReader::content(). Throws as value() does.
    ByteView content(size_t column) const;
    // Throws Error with table and page when the value is damaged; the others stay readable.
    void value(size_t column, Value& into) const;
    Value value(size_t column) const;

  private:
    bool advance();
    bool goBack();
    bool openNextPage();
    bool openPreviousPage();
    void readMap();
    DataPage ownPage(uint32_t number) const;
    bool belongsHere(const DataPage& page) const;
    void stand(uint16_t row);
    void startAt(uint32_t page, uint32_t row, uint32_t behind);

    Table table_;
    std::optional<UsageMap> map_;
    DataPage page_;      // whose directory is walked; none when the place is between pages
    DataPage overflow_;  // where the bytes of a row that overflowed are
    RowReader reader_;
    RowId id_;
    bool valid_ = false;
    uint32_t row_ = 0;       // of page_: those below it are before the place
    uint32_t nextRow_ = 0;   // of page_: those from it on are behind the place
    uint32_t nextPage_ = 0;  // those from it on are behind the place; without page_ the rest before
    bool finished_ = false;  // nothing is behind the place
};

}  // namespace sg::jet
