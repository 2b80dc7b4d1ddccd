#include "host/model/core/database_table.h"

#include <stdexcept>

#include "host/model/core/database_state.h"

namespace sg::model {
namespace {

constexpr uint64_t kSequences = 1ull << (48 - kIndexBits);

// The number of the next database of the process, whichever host it belongs to.
uint64_t nextSequence = 1;

}  // namespace

DatabaseTable* DatabaseTable::the_ = nullptr;

DatabaseTable::DatabaseTable() : first_(nextSequence) {
    the_ = this;
}

DatabaseTable::~DatabaseTable() {
    the_ = nullptr;
}

uint64_t DatabaseTable::add(DatabaseState* state) {
    if (nextSequence == kSequences) throw std::length_error("too many drawings were opened");
    states_.push_back(state);
    return nextSequence++;
}

void DatabaseTable::remove(uint64_t sequence) {
    const uint64_t at = sequence - first_;
    if (at < states_.size()) states_[at] = nullptr;
}

std::vector<DatabaseState*> DatabaseTable::all() const {
    std::vector<DatabaseState*> open;
    for (DatabaseState* const state : states_) {
        if (state != nullptr) open.push_back(state);
    }
    return open;
}

IdRecord* DatabaseTable::recordOf(AcDbObjectId id) {
    DatabaseState* const state = databaseOf(id);
    return state == nullptr ? nullptr : state->records.find(indexOf(id));
}

}  // namespace sg::model
