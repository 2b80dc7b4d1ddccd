#include "platform/db/sortents.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/model/core/object_access.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject, 0, 0, L"SORTENTSTABLE", nullptr)

namespace {

using Order = std::vector<AcDbObjectId>;

// Where the moved entities go: in front of this place of those that stay.
void place(Order& order, const AcDbObjectIdArray& moved, size_t beforeStaying) {
    const std::unordered_set<AcDbObjectId> set(moved.begin(), moved.end());
    Order moving, staying;
    for (const AcDbObjectId id : order)
        (set.contains(id) ? moving : staying).push_back(id);
    order = std::move(staying);
    const size_t at = std::min(beforeStaying, order.size());
    order.insert(order.begin() + static_cast<ptrdiff_t>(at), moving.begin(), moving.end());
}

}  // namespace

AcDbSortentsTable::AcDbSortentsTable() = default;
AcDbSortentsTable::~AcDbSortentsTable() = default;

void AcDbSortentsTable::setBlockId(AcDbObjectId block) {
    assertWriteEnabled();
    block_ = block;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids) const {
    assertReadEnabled();
    ids.removeAll();
    // The block may be open for a change that the table is part of.
    const auto* const block = sg::model::peek<AcDbBlockTableRecord>(block_);
    if (block == nullptr) return Acad::eUnknownHandle;
    std::unordered_map<AcDbObjectId, uint64_t> sortHandles;
    for (const Entry& entry : entries_)
        sortHandles[entry.entity] = entry.sortHandle;
    std::vector<std::pair<uint64_t, AcDbObjectId>> sorted;
    for (const AcDbObjectId id : block->entityIds()) {
        if (id.isErased()) continue;
        const auto other = sortHandles.find(id);
        sorted.emplace_back(other == sortHandles.end() ? id.handle() : AcDbHandle(other->second),
                            id);
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [handle, id] : sorted)
        ids.append(id);
    return Acad::eOk;
}

// The handles of all entities, in rising order, are dealt out anew along the order.
Acad::ErrorStatus AcDbSortentsTable::reorder(const AcDbObjectIdArray& entities,
                                             const Placement& placement) {
    AcDbObjectIdArray full;
    const Acad::ErrorStatus status = getFullDrawOrder(full);
    if (status != Acad::eOk) return status;
    const std::unordered_set<AcDbObjectId> known(full.begin(), full.end());
    for (const AcDbObjectId id : entities) {
        if (!known.contains(id)) return Acad::eInvalidInput;
    }
    Order order(full.begin(), full.end());
    if (!placement(order)) return Acad::eInvalidInput;
    assertWriteEnabled();
    std::vector<uint64_t> handles;
    for (const AcDbObjectId id : order)
        handles.push_back(id.handle());
    std::sort(handles.begin(), handles.end());
    entries_.clear();
    for (size_t i = 0; i < order.size(); ++i) {
        if (order[i].handle() == handles[i]) continue;
        entries_.push_back({AcDbSoftPointerId(order[i]), AcDbHandle(handles[i])});
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& entities) {
    return reorder(entities, [&](Order& order) {
        place(order, entities, 0);
        return true;
    });
}

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& entities) {
    return reorder(entities, [&](Order& order) {
        place(order, entities, order.size());
        return true;
    });
}

Acad::ErrorStatus AcDbSortentsTable::moveBeside(const AcDbObjectIdArray& entities,
                                                AcDbObjectId target, size_t behind) {
    if (entities.contains(target)) return Acad::eInvalidInput;
    return reorder(entities, [&](Order& order) {
        const std::unordered_set<AcDbObjectId> moving(entities.begin(), entities.end());
        size_t staying = 0;
        for (const AcDbObjectId id : order) {
            if (id == target) {
                place(order, entities, staying + behind);
                return true;
            }
            if (!moving.contains(id)) ++staying;
        }
        return false;
    });
}

Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& entities,
                                               AcDbObjectId target) {
    return moveBeside(entities, target, 0);
}

Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& entities,
                                               AcDbObjectId target) {
    return moveBeside(entities, target, 1);
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId left, AcDbObjectId right) {
    return reorder(AcDbObjectIdArray(), [&](Order& order) {
        const auto a = std::find(order.begin(), order.end(), left);
        const auto b = std::find(order.begin(), order.end(), right);
        if (a == order.end() || b == order.end()) return false;
        std::iter_swap(a, b);
        return true;
    });
}

Acad::ErrorStatus AcDbSortentsTable::setRelativeDrawOrder(const AcDbObjectIdArray& entities) {
    return reorder(entities, [&](Order& order) {
        const std::unordered_set<AcDbObjectId> set(entities.begin(), entities.end());
        if (set.size() != static_cast<size_t>(entities.length())) return false;
        int next = 0;
        for (AcDbObjectId& id : order) {
            if (set.contains(id)) id = entities[next++];
        }
        return true;
    });
}

bool AcDbSortentsTable::firstEntityIsDrawnBeforeSecond(AcDbObjectId first,
                                                       AcDbObjectId second) const {
    AcDbObjectIdArray order;
    getFullDrawOrder(order);
    const int a = order.find(first);
    return a >= 0 && a < order.find(second);
}

Acad::ErrorStatus AcDbSortentsTable::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeUInt32(static_cast<uint32_t>(entries_.size()));
    for (const Entry& entry : entries_)
        filer->writeAcDbHandle(entry.sortHandle);
    filer->writeSoftPointerId(block_);
    for (const Entry& entry : entries_)
        filer->writeSoftPointerId(entry.entity);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    uint32_t count = 0;
    filer->readUInt32(&count);
    entries_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i)
        filer->readAcDbHandle(&entries_.emplace_back().sortHandle);
    filer->readSoftPointerId(&block_);
    for (Entry& entry : entries_)
        filer->readSoftPointerId(&entry.entity);
    std::erase_if(entries_, [](const Entry& entry) { return entry.entity.isNull(); });
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbSortentsTable");
    filer->writeObjectId(330, block_);
    for (const Entry& entry : entries_) {
        filer->writeObjectId(331, entry.entity);
        filer->writeAcDbHandle(5, entry.sortHandle);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbSortentsTable")) return Acad::eBadDxfSequence;
    entries_.clear();
    FieldReader fields(filer);
    AcDbObjectId entity;
    while (fields.next()) {
        switch (fields.code()) {
            case 330:
                block_ = fields.objectId();
                break;
            case 331:
                entity = fields.objectId();
                break;
            case 5:
                if (!entity.isNull()) {
                    entries_.push_back({entity, AcDbHandle(fields.text().c_str())});
                }
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}
