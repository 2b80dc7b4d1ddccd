#pragma once

#include "host/dwg/class_list.h"
#include "host/dwg/object_map.h"
#include "host/dwg/write_filer.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/db/entity.h"

namespace sg::dwg {

// Writes objects one behind another, as the section of objects has them.
class ObjectWriter {
  public:
    ObjectWriter(const model::DatabaseState& state, WriteContext& context, ClassList& classes);

    // Handles of the neighbours of an entity in its owner, 0 where it has none. Files up to release
    // 2000 have them.
    struct Neighbours {
        uint64_t before = 0, behind = 0;
    };
    // False when the object's class cannot write it; nothing is written then.
    bool write(const AcDbObject& object, Neighbours neighbours);
    // An empty table of a type that drawings do not have.
    void writeEmptyTable(uint16_t type, uint64_t handle);

    Bytes& objects() { return objects_; }
    // In rising order of handles.
    std::vector<ObjectPlace> places();

  private:
    AcDb::AcDbDwgVersion release() const { return context_.release; }
    void begin(uint16_t type, uint64_t handle);
    std::string graphicsOf(const AcDbObject& object) const;
    void writeGraphics(const AcDbObject& object);
    void writeCommon(const AcDbObject& object, Neighbours neighbours);
    void writeEntityData(const model::EntityData& entity);
    void writeColor(const model::EntityData& entity);
    void writeEntityHandles(const model::EntityData& entity, bool hasLinks, Neighbours neighbours);
    unsigned linetypeFlag(const model::EntityData& entity) const;
    unsigned ownerMode(const AcDbEntity& entity) const;
    bool isSplit() const { return release() >= AcDb::kDHL_1021; }
    void pointer(unsigned kind, AcDbObjectId id) {
        streams_.handles.handle(kind, context_.handleOf(id));
    }
    void finish(uint64_t handle);

    const model::DatabaseState& state_;
    WriteContext& context_;
    ClassList& classes_;
    WriteStreams streams_;
    WriteFiler filer_;
    size_t sizeAt_ = 0;  // where the size of the data stands in them
    Bytes objects_;
    std::vector<ObjectPlace> places_;
    BitWriter whole_;
};

}  // namespace sg::dwg
