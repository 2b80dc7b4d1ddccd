#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_writer.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// All indexes of a table, for whoever changes its rows.
namespace sg::jet {

// What one index has of a row.
struct IndexKey {
    KeyBytes bytes;
    bool hasEntry = false;  // the index does not leave the row out
    bool hasNull = false;   // one of its columns is Null
};

// Indexes are named by their places in TableDefinition::realIndexes, rows are vectors of converted
// values in the order of TableDefinition::columns. The table must outlive the object.
class SG_API TableIndexes {
  public:
    TableIndexes(const Format& format, const TableDefinition& table);

    size_t count() const { return encoders_.size(); }
    const KeyEncoder& encoder(size_t index) const { return encoders_[index]; }
    // The name by which programs know it.
    const std::wstring& name(size_t index) const;

    // Throws OperationNotSupported with the name of an index whose keys can't be made.
    void requireUsable() const;
    void requireUsable(size_t index) const;

    // Whether a column of the index is among those that have a flag.
    bool hasColumn(size_t index, const std::vector<bool>& flags) const;

    // Throws OperationNotSupported for a text with a character that has no weight.
    void makeKey(size_t index, std::span<const Value> row, IndexKey& key) const;

    // The rest needs begin() before: with each transaction, and after something was undone in it.
    void begin(PageAllocator& allocator);

    // Whether the index may have an entry with this key, beside the one of `own`: throws
    // NullInIndex and DuplicateKey, with the index's name, and RecordTooLarge for a key that is too
    // long. A key that has a Null in it is never a duplicate, also when other columns of the index
    // have values.
    void check(size_t index, const IndexKey& key, RowId own = {}) const;
    bool contains(size_t index, ByteView key, RowId except = {}) const {
        return writers_[index].contains(key, except);
    }
    // Answers whether the index has got a key that was not there yet.
    bool insert(size_t index, const IndexKey& key, RowId row);
    // Throws Damaged when the entry is not there.
    void erase(size_t index, const IndexKey& key, RowId row);

  private:
    const TableDefinition* table_;
    std::vector<KeyEncoder> encoders_;
    std::vector<const LogicalIndex*> names_;
    std::optional<size_t> unusable_;
    std::vector<IndexWriter> writers_;
};

}  // namespace sg::jet
