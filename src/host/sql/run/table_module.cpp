#include "host/sql/run/table_module.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/index/index_tree.h"
#include "host/sql/run/access_path.h"
#include "host/sql/run/column_reader.h"
#include "host/sql/run/functions.h"
#include "host/sql/run/jet_table.h"
#include "host/sql/run/key_range.h"
#include "host/sql/run/like.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/transient_index.h"

namespace sg::sql {
namespace {

struct ModuleData {
    TableUse use;
    Engine::Running* running;
};

template <class Work>
int guarded(Engine::Running& running, Work work) {
    try {
        return work();
    } catch (...) {
        keepFailure(running);
        return SQLITE_ERROR;
    }
}

// -1, 0 or 1 as the key is before `bound`, begins with it, or is behind it.
int orderOf(jet::ByteView key, const jet::KeyBytes& bound) {
    const size_t common = std::min(key.size(), bound.size());
    const int order = common == 0 ? 0 : std::memcmp(key.data(), bound.data(), common);
    return order != 0 ? order : key.size() < bound.size() ? -1 : 0;
}

// ---- Cursors

// The rows of one access path, one after the other.
class JetCursor : public sqlite3_vtab_cursor {
  public:
    explicit JetCursor(const jet::Table& table) : sqlite3_vtab_cursor{}, rows_(table) {}

    // A path stays the same for as long as its text stands at the same place.
    void start(int number, const char* text, sqlite3_value** arguments);
    void next() {
        if (walksIndex_) {
            settle(path_.backwards ? index_->previous() : index_->next());
        } else if (walksList_) {
            nextListed();
        } else {
            ended_ = !rows_.next();
        }
    }
    bool ended() const { return ended_; }
    const jet::RowCursor& rows() const { return rows_; }
    JetTable& table() const { return *static_cast<JetTable*>(pVtab); }

    ColumnReader reader;

  private:
    void start(sqlite3_value** arguments);
    void startScan() { ended_ = !rows_.first(); }
    void startIndex();
    void startListed(sqlite3_value** arguments);
    void nextListed();
    void settle(bool found);

    jet::RowCursor rows_;
    bool ended_ = true;
    AccessPath path_;
    int number_ = 0;
    const char* text_ = nullptr;             // of path_
    std::optional<jet::IndexCursor> index_;  // of path_
    bool walksIndex_ = false;
    RangeMaker maker_;
    KeyRange range_;
    bool walksList_ = false;
    std::span<const uint32_t> list_;  // rows that are still to come
};

void JetCursor::start(int number, const char* text, sqlite3_value** arguments) {
    if (text_ == nullptr || text != text_ || number != number_) {
        path_ = AccessPath::of(number, text);
        number_ = number;
        text_ = text;
        index_.reset();
    }
    start(arguments);
}

void JetCursor::start(sqlite3_value** arguments) {
    walksIndex_ = false;
    walksList_ = false;
    if (path_.kind == AccessPath::Kind::Transient) {
        startListed(arguments);
        return;
    }
    if (path_.kind == AccessPath::Kind::Index) {
        try {
            maker_.make(table(), path_, arguments, range_);
            startIndex();
            return;
        } catch (const jet::Error& error) {
            if (error.code() != jet::OperationNotSupported) {
                throw;
            }
            // A text without a place in the index: all rows are looked at.
        }
    }
    startScan();
}

void JetCursor::startIndex() {
    ended_ = true;
    if (range_.isEmpty) {
        return;
    }
    const jet::Table& table = this->table().table;
    if (!index_) {
        index_.emplace(table.store(), table.definition().realIndexes[path_.index].rootPage);
    }
    walksIndex_ = true;
    if (!path_.backwards) {
        settle(index_->lowerBound(jet::ByteView(range_.low)));
    } else if (range_.high.empty()) {
        settle(index_->last());
    } else {
        settle(index_->lastUpTo(jet::ByteView(range_.high)));
    }
}

// To the row of the index's entry; rows that are gone are passed over.
void JetCursor::settle(bool found) {
    ended_ = true;
    while (found) {
        const jet::ByteView key = index_->key();
        if (path_.backwards ? orderOf(key, range_.low) < 0 : orderOf(key, range_.high) > 0) {
            return;
        }
        if (rows_.seek(index_->row())) {
            ended_ = false;
            return;
        }
        table().running->passRow();
        found = path_.backwards ? index_->previous() : index_->next();
    }
}

// The first time all rows are looked at, which is all that there is to do where the values stay the
// same; an index is made when they are asked for a second time.
void JetCursor::startListed(sqlite3_value** arguments) {
    Engine::Running& running = *table().running;
    Engine::TransientUse& use = running.transients[{&table(), path_.columns}];
    if (use.count++ == 0) {
        startScan();
        return;
    }
    if (use.index == nullptr) {
        use.index = std::make_shared<TransientIndex>(table().table, path_.columns,
                                                     [&running] { running.passRow(); });
    }
    HashOfValues hash;
    bool hasNull = false;
    for (size_t i = 0; i < path_.columns.size(); ++i) {
        const std::optional<uint64_t> part = hashOf(arguments[i]);
        hash.add(part.value_or(0));
        hasNull = hasNull || !part;
    }
    list_ = hasNull ? std::span<const uint32_t>() : use.index->find(hash.value());
    walksList_ = true;
    nextListed();
}

void JetCursor::nextListed() {
    ended_ = true;
    while (ended_ && !list_.empty()) {
        const jet::RowId row = jet::RowId::fromPacked(list_.front());
        list_ = list_.subspan(1);
        ended_ = !rows_.seek(row);
    }
}

// ---- What SQLite calls

JetCursor& cursorOf(sqlite3_vtab_cursor* base) {
    return *static_cast<JetCursor*>(base);
}

int bestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
    const auto& table = *static_cast<JetTable*>(base);
    return guarded(*table.running, [&] {
        choosePath(table, info);
        return SQLITE_OK;
    });
}

int filter(sqlite3_vtab_cursor* base, int number, const char* text, int, sqlite3_value** values) {
    JetCursor& cursor = cursorOf(base);
    return guarded(*cursor.table().running, [&] {
        cursor.start(number, text, values);
        return SQLITE_OK;
    });
}

int next(sqlite3_vtab_cursor* base) {
    JetCursor& cursor = cursorOf(base);
    return guarded(*cursor.table().running, [&] {
        cursor.next();
        return SQLITE_OK;
    });
}

int atEnd(sqlite3_vtab_cursor* base) {
    return cursorOf(base).ended();
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int place) {
    JetCursor& cursor = cursorOf(base);
    return guarded(*cursor.table().running, [&] {
        cursor.reader.answer(context, cursor.rows(), static_cast<size_t>(place));
        return SQLITE_OK;
    });
}

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
    *id = cursorOf(base).rows().id().packed();
    return SQLITE_OK;
}

int open(sqlite3_vtab* base, sqlite3_vtab_cursor** cursor) {
    const auto& table = *static_cast<JetTable*>(base);
    return guarded(*table.running, [&] {
        *cursor = new JetCursor(table.table);
        return SQLITE_OK;
    });
}

int close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<JetCursor*>(cursor);
    return SQLITE_OK;
}

// LIKE is told to bestIndex() as a constraint of its own.
int findFunction(sqlite3_vtab* base, int arguments, const char* name,
                 void (**function)(sqlite3_context*, int, sqlite3_value**), void** given) {
    if (arguments != 2 || std::string_view(name) != likeName) {
        return 0;
    }
    *function = callLike;
    *given = static_cast<JetTable*>(base)->running;
    return likeConstraint;
}

int connect(sqlite3* connection, void* auxiliary, int, const char* const*, sqlite3_vtab** table,
            char**) {
    const auto& source = *static_cast<ModuleData*>(auxiliary);
    return guarded(*source.running, [&] {
        auto made =
            std::make_unique<JetTable>(source.use.database->table(source.use.name), source.running);
        std::string text = "CREATE TABLE t(";
        const std::vector<jet::Column>& columns = made->table.definition().columns;
        for (size_t i = 0; i < columns.size(); ++i) {
            text += std::string(i == 0 ? "c" : ", c") + std::to_string(i);
            text += columns[i].isText() ? " COLLATE JET" : "";
        }
        text += columns.empty() ? "c0)" : ")";
        source.running->declares = true;
        const int code = sqlite3_declare_vtab(connection, text.c_str());
        source.running->declares = false;
        if (code == SQLITE_OK) {
            *table = made.release();
        }
        return code;
    });
}

int disconnect(sqlite3_vtab* table) {
    delete static_cast<JetTable*>(table);
    return SQLITE_OK;
}

sqlite3_module makeModule() {
    sqlite3_module module = {};
    module.xConnect = connect;
    module.xBestIndex = bestIndex;
    module.xDisconnect = disconnect;
    module.xOpen = open;
    module.xClose = close;
    module.xFilter = filter;
    module.xNext = next;
    module.xEof = atEnd;
    module.xColumn = column;
    module.xRowid = rowId;
    module.xFindFunction = findFunction;
    return module;
}

}  // namespace

void addTable(sqlite3* connection, const std::string& name, const TableUse& use,
              Engine::Running& running) {
    static const sqlite3_module module = makeModule();
    const int code =
        sqlite3_create_module_v2(connection, name.c_str(), &module, new ModuleData{use, &running},
                                 [](void* source) { delete static_cast<ModuleData*>(source); });
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace sg::sql
