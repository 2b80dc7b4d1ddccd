#include <memory>

#include "host/editor/commands/command.h"
#include "host/editor/commands/programs.h"
#include "host/model/core/object_access.h"
#include "platform/db/block_reference.h"

namespace sg::commands {
namespace {

bool mayExplode(const AcDbEntity& entity) {
    const auto* const reference = AcDbBlockReference::cast(&entity);
    if (reference == nullptr) return true;
    const auto* const block = model::peek<AcDbBlockTableRecord>(reference->blockTableRecord());
    return block != nullptr && block->explodable() && !block->isFromExternalReference();
}

// Puts the parts where the whole was. False, with nothing changed, when it has none.
bool explodeOne(Command& c, AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) return false;
    AcDbVoidPtrArray parts;
    const bool done =
        mayExplode(*entity) && entity->explode(parts) == Acad::eOk && !parts.isEmpty();
    if (done) entity->erase();
    entity->close();
    for (int i = 0; i < parts.length(); ++i) {
        std::unique_ptr<AcDbEntity> part(static_cast<AcDbEntity*>(parts[i]));
        if (done) c.append(std::move(part));
    }
    return done;
}

}  // namespace

void explode(Command& c) {
    // A program's call goes on without Enter behind what it explodes.
    const bool single = c.isFromProgram();
    const SelectionSet set = c.select(single ? L"Select object: " : L"Select objects: ", single);
    size_t left = 0;
    for (const AcDbObjectId id : set.ids())
        left += explodeOne(c, id) ? 0 : 1;
    if (left > 0) c.print(std::to_wstring(left) + L" could not be exploded.");
}

}  // namespace sg::commands
