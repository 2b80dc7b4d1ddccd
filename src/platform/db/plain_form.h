#pragma once

#include "platform/db/entity.h"

// What stands for an entity in a file for programs that do not know its class, where that is more
// than what it explodes into. A protocol extension: the module that brings the class adds one to
// its descriptor, and whoever writes such a file asks the entity's class for one.
class SG_API sgPlainFormPE : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(sgPlainFormPE)

    // New entities of classes that every program knows, none of them in a drawing yet, for an
    // entity that is open for read. They are the caller's.
    virtual Acad::ErrorStatus plainForm(const AcDbEntity* entity, AcDbVoidPtrArray& entities) = 0;
};
