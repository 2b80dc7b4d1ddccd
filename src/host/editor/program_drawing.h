#pragma once

#include <map>

#include "host/model/access/entity_maker.h"
#include "platform/db/object_id.h"

namespace sg {

// What LISP programs have under way in one drawing.
struct ProgramDrawing {
    explicit ProgramDrawing(AcDbDatabase& database) : maker(database) {}

    model::EntityMaker maker;  // of entmake
    // Of tblnext and dictnext: what was answered last of a table or dictionary; the null id behind
    // the end.
    std::map<AcDbObjectId, AcDbObjectId> last;
};

}  // namespace sg
