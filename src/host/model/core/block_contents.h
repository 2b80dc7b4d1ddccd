#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/db/block_table.h"

// What a block holds.
struct AcDbBlockTableRecord::Contents {
    std::vector<AcDbObjectId> entities;  // in the order in which they were appended
    AcDbHardOwnershipId begin, end;
    std::wstring comments;
    std::wstring path;             // of an external reference
    std::vector<uint8_t> preview;  // a picture of it, as files have it

    static constexpr size_t kNotFound = static_cast<size_t>(-1);

    size_t find(AcDbObjectId entity) const;
    void append(AcDbObjectId entity);
    void insert(size_t index, AcDbObjectId entity);
    void remove(AcDbObjectId entity);
    void assign(std::vector<AcDbObjectId> ids);

  private:
    // Entities mostly come with rising ids, so that their places are found by halving; where not,
    // an index is made when a place is asked for.
    bool sorted_ = true;
    mutable std::unordered_map<AcDbObjectId, size_t> places_;
};

namespace sg::model {

// The entity after `id` in its block, erased ones left out; the first one of the block for a null
// id, and null after the last.
SG_API AcDbObjectId entityAfter(const AcDbBlockTableRecord& block, AcDbObjectId id);
// The last entity of the block that is not erased; null when there is none.
SG_API AcDbObjectId lastEntity(const AcDbBlockTableRecord& block);

}  // namespace sg::model
