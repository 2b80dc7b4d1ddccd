#include "host/jet/database/write_scope.h"

#include <exception>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"

namespace sg::jet {

WriteScope::WriteScope(Database& database, Undo undo) : database_(&database), undo_(undo) {
    if (database.transaction_ == nullptr) {
        database.openTransaction();
        own_ = true;
    }
}

WriteScope::~WriteScope() {
    // A failure that cost the whole transaction has closed it already.
    if (done_ || database_->transaction_ == nullptr) return;
    // What was read of the design meanwhile is not so.
    if (schemaChanged_) database_->noteDesignChange();
    try {
        if (own_ || (changing_ && undo_ == Undo::Transaction)) {
            database_->rollbackWhole();
        } else if (changing_) {
            database_->undoTo(savepoint_);
        }
    } catch (const std::exception&) {
        // The transaction is not committed in this state: its end drops it.
    }
}

PageAllocator& WriteScope::allocator() const {
    if (!database_->allocator_) throw Error(InvalidOperation, {}, {.file = database_->name()});
    return *database_->allocator_;
}

void WriteScope::changing() {
    if (changing_) return;
    if (!own_ && undo_ == Undo::Operation) {
        savepoint_ = pages().savepoint();
    } else if (!own_) {
        pages().limitMemory();
    }
    changing_ = true;
}

void WriteScope::schemaChanged() {
    schemaChanged_ = true;
    database_->noteDesignChange();
}

void WriteScope::done() {
    if (schemaChanged_) database_->noteDesignChange();
    if (own_) {
        done_ = true;
        database_->commitWhole();
        return;
    }
    if (savepoint_ != 0) pages().release(savepoint_);
    done_ = true;
}

}  // namespace sg::jet
