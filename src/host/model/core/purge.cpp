#include <unordered_map>
#include <unordered_set>

#include "host/model/core/database_state.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/database.h"

// What may be erased because nothing needs it.

namespace {

using sg::model::DatabaseRoots;
using sg::model::DatabaseState;
using sg::model::DatabaseTable;

// Finds which of the candidates are needed: by an object that is no candidate and stands in none,
// by the header, or by a candidate that is needed.
class Purge {
  public:
    Purge(DatabaseState& state, const AcDbObjectIdArray& candidates) : state_(state) {
        for (const AcDbObjectId id : candidates)
            candidates_.insert(id);
    }

    AcDbObjectIdArray unneeded(const AcDbObjectIdArray& order) {
        needFixed();
        state_.forEach([&](const AcDbObject& object) { follow(object); });
        while (!waiting_.empty()) {
            const AcDbObjectId id = waiting_.back();
            waiting_.pop_back();
            for (const AcDbObjectId target : neededBy_[id])
                need(target);
        }
        AcDbObjectIdArray left;
        for (const AcDbObjectId id : order) {
            if (id.database() == &state_.database && !needed_.contains(id)) left.append(id);
        }
        return left;
    }

  private:
    void need(AcDbObjectId id) {
        if (candidates_.contains(id) && needed_.insert(id).second) waiting_.push_back(id);
    }

    void needFixed() {
        const DatabaseRoots& roots = state_.roots;
        for (const AcDbObjectId id :
             {roots.modelSpace, roots.paperSpace, roots.layerZero, roots.continuousLinetype,
              roots.byLayerLinetype, roots.byBlockLinetype}) {
            need(id);
        }
        for (size_t place = 0; place < sg::model::headerRows().size(); ++place) {
            const auto* const id = std::get_if<AcDbObjectId>(&state_.header().at(place));
            if (id != nullptr) need(*id);
        }
    }

    // The candidate that the object is, or stands in; null when there is none. `isThere`: neither
    // it nor what it stands in is erased.
    AcDbObjectId candidateOver(const AcDbObject& object, bool& isThere) const {
        const AcDbObject* at = &object;
        isThere = true;
        AcDbObjectId found;
        for (int depth = 0; at != nullptr && depth < 64; ++depth) {
            if (at->isErased()) isThere = false;
            if (found.isNull() && candidates_.contains(at->objectId())) found = at->objectId();
            at = DatabaseTable::objectOf(at->ownerId());
        }
        return found;
    }

    void follow(const AcDbObject& object) {
        bool isThere = false;
        const AcDbObjectId within = candidateOver(object, isThere);
        if (!isThere) return;
        sg::model::ReferenceCollector references(AcDb::kPurgeFiler, &state_.database);
        const sg::model::Unguarded guard(object);
        object.dwgOutFields(&references);
        for (const auto& [kind, id] : references.items()) {
            const bool keeps = kind == sg::model::Reference::hardPointer ||
                               kind == sg::model::Reference::hardOwnership;
            if (!keeps || id == object.objectId() || !candidates_.contains(id)) continue;
            if (within.isNull()) {
                need(id);
            } else if (within != id) {
                neededBy_[within].push_back(id);
            }
        }
    }

    DatabaseState& state_;
    std::unordered_set<AcDbObjectId> candidates_, needed_;
    std::unordered_map<AcDbObjectId, std::vector<AcDbObjectId>> neededBy_;
    std::vector<AcDbObjectId> waiting_;
};

}  // namespace

Acad::ErrorStatus AcDbDatabase::purge(AcDbObjectIdArray& ids) const {
    Purge purge(*state_, ids);
    ids = purge.unneeded(ids);
    return Acad::eOk;
}
