#include "platform/db/vertex_owner.h"

#include <algorithm>

#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"

namespace sg::model {

VertexList::VertexList() = default;
VertexList::~VertexList() = default;

class VertexList::Iterator : public AcDbObjectIterator {
  public:
    explicit Iterator(const std::vector<VertexSlot>& slots) : slots_(slots) { start(); }

    void start(bool atBeginning = true, bool skipErased = true) override {
        at_ = atBeginning ? 0 : static_cast<std::ptrdiff_t>(slots_.size()) - 1;
        if (skipErased) skip(atBeginning ? 1 : -1);
    }
    bool done() const override {
        return at_ < 0 || at_ >= static_cast<std::ptrdiff_t>(slots_.size());
    }
    AcDbObjectId objectId() const override { return done() ? AcDbObjectId() : slot().id; }
    AcDbEntity* entity() const override { return done() ? nullptr : slot().loose.get(); }
    void step(bool backwards = false, bool skipErased = true) override {
        at_ += backwards ? -1 : 1;
        if (skipErased) skip(backwards ? -1 : 1);
    }

  private:
    const VertexSlot& slot() const { return slots_[static_cast<size_t>(at_)]; }
    void skip(std::ptrdiff_t way) {
        while (!done() && slot().loose == nullptr && slot().id.isErased())
            at_ += way;
    }

    const std::vector<VertexSlot>& slots_;
    std::ptrdiff_t at_ = 0;
};

std::unique_ptr<AcDbObjectIterator> VertexList::vertexIterator() const {
    return std::make_unique<Iterator>(slots_);
}

// Ids mostly rise along a polyline, so that a vertex is found by halving; where not, one by one.
AcDbObjectId VertexList::vertexAfter(AcDbObjectId vertex) const {
    auto at = slots_.begin();
    if (!vertex.isNull()) {
        at = std::lower_bound(slots_.begin(), slots_.end(), vertex,
                              [](const VertexSlot& slot, AcDbObjectId id) { return slot.id < id; });
        if (at == slots_.end() || at->id != vertex) {
            at = std::find_if(slots_.begin(), slots_.end(),
                              [&](const VertexSlot& slot) { return slot.id == vertex; });
        }
        if (at != slots_.end()) ++at;
    }
    while (at != slots_.end() && (at->id.isNull() || at->id.isErased()))
        ++at;
    return at == slots_.end() ? AcDbObjectId() : at->id;
}

const AcDbEntity* VertexList::peekVertex(const VertexSlot& slot) {
    if (slot.loose != nullptr) return slot.loose.get();
    const AcDbEntity* const vertex = peek<AcDbEntity>(slot.id);
    return vertex == nullptr || vertex->isErased() ? nullptr : vertex;
}

AcDbEntity* VertexList::openVertex(const VertexSlot& slot) {
    if (slot.loose != nullptr) return slot.loose.get();
    AcDbEntity* vertex = nullptr;
    acdbOpenObject(vertex, slot.id, AcDb::kForWrite);
    return vertex;
}

void VertexList::closeVertex(const VertexSlot& slot, AcDbEntity* vertex) {
    if (slot.loose == nullptr) vertex->close();
}

void VertexList::eraseSlot(const VertexSlot& slot) {
    if (slot.loose == nullptr) eraseObject(slot.id);
}

template <class Base>
VertexOwner<Base>::VertexOwner() = default;
template <class Base>
VertexOwner<Base>::~VertexOwner() = default;

template <class Base>
uint8_t VertexOwner<Base>::kindOf(const AcDbEntity&) const {
    return 0;
}

template <class Base>
std::vector<VertexSlot> VertexOwner<Base>::takeSlots() {
    this->assertWriteEnabled();
    return std::move(slots_);
}

template <class Base>
void VertexOwner<Base>::setSlots(std::vector<VertexSlot> slots) {
    slots_ = std::move(slots);
    if (!this->objectId().isNull()) moveIntoDatabase();
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::place(size_t at, AcDbObjectId& id, AcDbEntity* vertex) {
    if (vertex == nullptr) return Acad::eNullEntityPointer;
    this->assertWriteEnabled();
    id.setNull();
    VertexSlot slot;
    AcDbDatabase* const owner = this->database();
    if (owner == nullptr) {
        slot.loose.reset(vertex);
    } else {
        // Either all vertices are the database's or none is.
        if (!slots_.empty() && slots_.back().loose != nullptr) moveIntoDatabase();
        const Acad::ErrorStatus status = owner->addAcDbObject(id, vertex);
        if (status != Acad::eOk) return status;
        vertex->setOwnerId(this->objectId());
        slot.id = id;
    }
    slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(at), std::move(slot));
    return Acad::eOk;
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::appendVertexEntity(AcDbObjectId& id, AcDbEntity* vertex) {
    return place(slots_.size(), id, vertex);
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::insertVertexEntity(AcDbObjectId& id, AcDbObjectId after,
                                                        AcDbEntity* vertex) {
    if (after.isNull()) return place(0, id, vertex);
    for (size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].id == after) return place(i + 1, id, vertex);
    }
    return Acad::eKeyNotFound;
}

namespace {

// Takes the entity over when the database takes it.
bool give(AcDbDatabase& database, std::unique_ptr<AcDbEntity>& entity, AcDbObjectId owner,
          AcDbObjectId& id) {
    if (database.addAcDbObject(id, entity.get()) != Acad::eOk) return false;
    entity->setOwnerId(owner);
    entity.release()->close();
    return true;
}

}  // namespace

template <class Base>
void VertexOwner<Base>::moveIntoDatabase() {
    AcDbDatabase* const owner = this->database();
    if (owner == nullptr) return;
    for (VertexSlot& slot : slots_) {
        if (slot.loose != nullptr) give(*owner, slot.loose, this->objectId(), slot.id);
    }
}

template <class Base>
void VertexOwner<Base>::addSequenceEnd() {
    AcDbDatabase* const owner = this->database();
    if (owner == nullptr || !sequenceEnd_.isNull()) return;
    std::unique_ptr<AcDbEntity> end = std::make_unique<AcDbSequenceEnd>();
    end->setPropertiesFrom(this);
    give(*owner, end, this->objectId(), sequenceEnd_);
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setOwnerId(AcDbObjectId owner) {
    const Acad::ErrorStatus status = Base::setOwnerId(owner);
    if (status == Acad::eOk && this->isNewObject()) moveIntoDatabase();
    return status;
}

// The sequence ends when the new polyline is closed, so that its handle follows those of the
// vertices that were appended since it came into the database.
template <class Base>
Acad::ErrorStatus VertexOwner<Base>::subClose() {
    if (this->isNewObject()) {
        moveIntoDatabase();
        addSequenceEnd();
    }
    return Base::subClose();
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::subErase(bool erasing) {
    const Acad::ErrorStatus status = Base::subErase(erasing);
    if (status != Acad::eOk) return status;
    for (const VertexSlot& slot : slots_) {
        if (slot.loose == nullptr) eraseObject(slot.id, erasing);
    }
    eraseObject(sequenceEnd_, erasing);
    return Acad::eOk;
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setColor(const AcCmColor& color, bool doSubents) {
    return carriedOn(Base::setColor(color, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setColor(color); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setLayer(AcDbObjectId layer, bool doSubents,
                                              bool allowHiddenLayer) {
    return carriedOn(Base::setLayer(layer, doSubents, allowHiddenLayer), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setLayer(layer, true, allowHiddenLayer); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setLinetype(AcDbObjectId linetype, bool doSubents) {
    return carriedOn(Base::setLinetype(linetype, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setLinetype(linetype); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setLinetypeScale(double scale, bool doSubents) {
    return carriedOn(Base::setLinetypeScale(scale, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setLinetypeScale(scale); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setLineWeight(AcDb::LineWeight weight, bool doSubents) {
    return carriedOn(Base::setLineWeight(weight, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setLineWeight(weight); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setVisibility(AcDb::Visibility visibility, bool doSubents) {
    return carriedOn(Base::setVisibility(visibility, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setVisibility(visibility); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setPlotStyleName(AcDb::PlotStyleNameType type,
                                                      AcDbObjectId style, bool doSubents) {
    return carriedOn(Base::setPlotStyleName(type, style, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setPlotStyleName(type, style); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setTransparency(uint32_t transparency, bool doSubents) {
    return carriedOn(Base::setTransparency(transparency, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setTransparency(transparency); });
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::setMaterial(AcDbObjectId material, bool doSubents) {
    return carriedOn(Base::setMaterial(material, doSubents), doSubents,
                     [&](AcDbEntity& vertex) { vertex.setMaterial(material); });
}

// The vertices go by their ids, which copies within and between databases translate. A copy that
// belongs to no database has vertices of its own; so has a polyline outside one: they go whole.
template <class Base>
Acad::ErrorStatus VertexOwner<Base>::writeVertices(AcDbDwgFiler* filer) const {
    const bool whole = filer->dwgForm() == nullptr &&
                       (this->objectId().isNull() || filer->filerType() == AcDb::kCopyFiler);
    if (filer->dwgForm() == nullptr) filer->writeBool(whole);
    if (!whole) return writeIds(filer);
    uint32_t count = 0;
    forEachVertex<AcDbEntity>([&](const AcDbEntity&) { ++count; });
    filer->writeUInt32(count);
    forEachVertex<AcDbEntity>([&](const AcDbEntity& vertex) {
        const Unguarded guard(vertex);
        filer->writeUInt8(kindOf(vertex));
        vertex.dwgOutFields(filer);
    });
    return filer->filerStatus();
}

// A file has no erased vertices.
Acad::ErrorStatus VertexList::writeIds(AcDbDwgFiler* filer) const {
    std::vector<AcDbHardOwnershipId> ids;
    ids.reserve(slots_.size());
    for (const VertexSlot& slot : slots_) {
        if (filer->dwgForm() == nullptr || !slot.id.isErased()) ids.emplace_back(slot.id);
    }
    writePartCount(filer, ids.size());
    writePartIds(filer, ids);
    return filer->writeHardOwnershipId(sequenceEnd_);
}

template <class Base>
Acad::ErrorStatus VertexOwner<Base>::readVertices(AcDbDwgFiler* filer) {
    bool whole = false;
    uint32_t count = 0;
    if (filer->dwgForm() == nullptr) filer->readBool(&whole);
    slots_.clear();
    sequenceEnd_.setNull();
    if (!whole) return readIds(filer);
    filer->readUInt32(&count);
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        VertexSlot slot;
        uint8_t kind = 0;
        filer->readUInt8(&kind);
        slot.loose = newVertex(kind);
        slot.loose->dwgInFields(filer);
        slots_.push_back(std::move(slot));
    }
    return filer->filerStatus();
}

Acad::ErrorStatus VertexList::readIds(AcDbDwgFiler* filer) {
    std::vector<AcDbHardOwnershipId> ids;
    uint32_t count = 0;
    readPartCount(filer, count);
    readPartIds(filer, count, ids);
    for (const AcDbHardOwnershipId& id : ids) {
        VertexSlot slot;
        slot.id = id;
        slots_.push_back(std::move(slot));
    }
    AcDbHardOwnershipId end;
    const Acad::ErrorStatus status = filer->readHardOwnershipId(&end);
    sequenceEnd_ = end;
    return status;
}

template class VertexOwner<AcDbCurve>;
template class VertexOwner<AcDbEntity>;

}  // namespace sg::model
