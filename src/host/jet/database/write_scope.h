#pragma once

#include <cstdint>

#include "base/export.h"
#include "host/jet/pages/page_allocator.h"

namespace sg::jet {

class Database;

// One operation that changes a database, done wholly or not at all: a transaction of its own when
// none is open, else a part of the open one. Scopes may be nested; the inner ones join.
//
//     WriteScope scope(database);
//     ... look whether it can be done; what throws here leaves everything as it was ...
//     scope.changing();
//     ... change pages through scope.allocator() ...
//     scope.done();
class SG_API WriteScope {
  public:
    // What an operation that fails after changing() takes with it when it is part of an open
    // transaction: only itself, for which pages are kept as they were before, or, where speed
    // matters and only damage or a full disk can make it fail, the whole transaction.
    enum class Undo { Operation, Transaction };

    // Throws ReadOnlyDatabase, and what Storage::beginWrite() throws.
    explicit WriteScope(Database& database, Undo undo = Undo::Operation);
    // Undoes what was not done() since changing().
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    PageAllocator& allocator() const;
    WriteTransaction& pages() const { return allocator().pages(); }

    void changing();
    // The catalog or a definition is being changed: from here on they are read again when somebody
    // asks, and once more after the end.
    void schemaChanged();
    // Commits, when the transaction is this scope's own. When that throws nothing was done.
    void done();

  private:
    Database* database_;
    Undo undo_;
    bool own_ = false;  // the transaction
    bool changing_ = false;
    bool done_ = false;
    bool schemaChanged_ = false;
    WriteTransaction::SavepointId savepoint_ = 0;
};

}  // namespace sg::jet
