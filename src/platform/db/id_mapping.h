#pragma once

#include <unordered_map>

#include "platform/db/dictionary.h"
#include "platform/db/object_id.h"

namespace AcDb {
enum DeepCloneType {
    kDcCopy = 0,
    kDcExplode = 1,
    kDcBlock = 2,
    kDcXrefBind = 3,
    kDcSymTableMerge = 4,
    kDcInsert = 6,
    kDcWblock = 7,
    kDcObjects = 8,
    kDcWblkObjects = 14,
};
}  // namespace AcDb

// What became of the objects of one copying operation.
class SG_API AcDbIdMapping {
  public:
    struct Pair {
        AcDbObjectId key;    // of the original
        AcDbObjectId value;  // of its copy
        bool isCloned = false;
        bool isPrimary = false;
        bool isOwnerTranslated = true;
    };

    AcDbDatabase* destination = nullptr;
    AcDbDatabase* origin = nullptr;
    AcDb::DeepCloneType context = AcDb::kDcCopy;
    AcDb::DuplicateRecordCloning duplicates = AcDb::kDrcIgnore;

    void assign(const Pair& pair) { pairs_[pair.key] = pair; }
    // Null when the object was not met.
    const Pair* find(AcDbObjectId key) const {
        const auto found = pairs_.find(key);
        return found == pairs_.end() ? nullptr : &found->second;
    }
    const std::unordered_map<AcDbObjectId, Pair>& pairs() const { return pairs_; }

  private:
    std::unordered_map<AcDbObjectId, Pair> pairs_;
};
