#include "host/model/access/block_cycles.h"

#include <unordered_set>
#include <vector>

#include "host/model/core/object_access.h"
#include "platform/db/block_reference.h"

namespace sg::model {

bool showsBlock(AcDbObjectId block, AcDbObjectId other) {
    std::vector<AcDbObjectId> waiting = {block};
    std::unordered_set<AcDbObjectId> seen = {block};
    while (!waiting.empty()) {
        const AcDbObjectId id = waiting.back();
        waiting.pop_back();
        if (id == other) return true;
        const auto* const record = peek<AcDbBlockTableRecord>(id);
        if (record == nullptr) continue;
        for (const AcDbObjectId entity : record->entityIds()) {
            const auto* const reference = peek<AcDbBlockReference>(entity);
            if (reference == nullptr || reference->isErased()) continue;
            const AcDbObjectId shown = reference->blockTableRecord();
            if (seen.insert(shown).second) waiting.push_back(shown);
        }
    }
    return false;
}

}  // namespace sg::model
