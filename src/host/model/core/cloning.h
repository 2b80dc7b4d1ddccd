#pragma once

#include <memory>

#include "platform/db/id_mapping.h"
#include "platform/db/object.h"

namespace sg::model {

// A copy of an object as it is filed for this kind of copying, in no database, its ids still those
// of the original. A proxy where the class asks for one; null for a class without instances.
std::unique_ptr<AcDbObject> copyOf(const AcDbObject& original, AcDb::FilerType type);

// What AcDbObject's deepClone and wblockClone do. A primary copy comes to the list of its owner and
// stays open for write; others are closed.
Acad::ErrorStatus cloneObject(const AcDbObject& original, AcDbObject* owner, AcDbObject*& copy,
                              AcDbIdMapping& mapping, bool isPrimary, AcDb::FilerType type);

// Replaces the ids of originals by those of their copies in all that was copied.
void translateCopies(const AcDbIdMapping& mapping);

// Erases the entities of a block, whatever layers they are on.
void emptyBlock(AcDbObjectId block);

}  // namespace sg::model
