#pragma once

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/table.h"
#include "host/jet/recordset/recordset.h"

namespace sg::jet {

// Where a table recordset stands, and what it keeps of pages and design to go on from there.
//
// The position is `place` and, of a row, its id with its key in the current index. Everything else
// is kept for speed and dropped when it is no longer true: synchronize() sees to that at the start
// of each call. A page that is held is never changed in place, so that what was read of one is true
// as long as the store still answers the same bytes for its number.
struct TableRecordset::State {
    enum class Place { Before, Row, Behind, Nowhere };

    // Begins every call that reads: one state of the database for its whole length.
    class Call {
      public:
        explicit Call(State& state) : scope_(state.opened()) { state.synchronize(); }

      private:
        Database::ReadScope scope_;
    };

    State(Database& database, std::wstring_view table, bool readOnly);

    const Database& opened() const;
    void synchronize();
    // Whether nothing has changed since synchronize().
    bool isSynchronized() const {
        const Storage* storage = database->storage();
        return storage == nullptr ||
               (storage->transaction() == nullptr && storage->changeCounter() == seen);
    }

    // --- the design ---

    void useTable(Table now);
    void useIndex(std::wstring_view wanted);
    void useFileOrder();
    void followDesign();
    const Column& column(size_t number) const;
    size_t checked(size_t number) const;

    // --- moving ---

    bool goToEnd(bool first);
    void step(bool forward);
    bool stepInFile(bool forward);
    bool stepInIndex(bool forward);
    void standOnRow();
    void standOnEntry();
    void standAt(RowId id);
    bool isEmpty();

    // Puts the tree's cursor on the current row's entry; false when the row has none.
    bool locate();
    // The row's key as its values are now.
    void makeKey();
    // The key while the tree's cursor has it, before that goes elsewhere.
    void keepKey();

    // Puts the row cursor on the current row; false when that is gone.
    bool load();
    // Throws NoCurrentRecord and RecordDeleted.
    void requireRow();

    // --- bookmarks and keys ---

    Bytes bookmarkOf(RowId id) const;
    RowId rowOf(const Bytes& bookmark) const;
    void makeTarget(std::span<const Value> keys);

    // --- editing ---

    void requireWritable() const;
    void requireEdit() const;
    void begin(EditMode newMode);
    void dropEdit();
    void forgetMadeNumbers();
    void releasePages();

    Database* database;
    std::wstring name;
    bool readOnly;

    uint64_t designStamp = 0;
    std::optional<Table> table;
    std::vector<RecordColumn> columns;
    std::vector<size_t> places;  // of the columns in the definition
    std::wstring indexName;
    std::optional<KeyEncoder> encoder;  // of the index; none in file order

    static constexpr uint64_t unknown = std::numeric_limits<uint64_t>::max();
    uint64_t seen = unknown;  // the commit whose state all the following is of

    Place place = Place::Before;
    bool moved = false;  // from where it was opened
    RowId row;
    KeyBytes key;            // in an index, unless the tree has it
    bool isLoaded = false;   // the row cursor stands on the row
    bool isLocated = false;  // the tree's cursor stands on the row's entry
    bool isPassing = false;  // the row cursor has met damage, and goes on behind it
    std::optional<RowCursor> rows;
    std::optional<IndexCursor> tree;
    PageRef leaf;  // that the tree's cursor is on

    EditMode mode = EditMode::None;
    std::vector<Value> values;  // by place in the definition
    std::vector<bool> changed;  // likewise: those that were set
    std::optional<RowId> locked;
    std::optional<RowId> lastModified;

    std::vector<Value> keyValues;  // scratch
    KeyBytes target;               // scratch
};

}  // namespace sg::jet
