#pragma once

#include "host/lisp/interpreter.h"
#include "host/lisp/marshal.h"
#include "host/model/core/list_filers.h"
#include "platform/db/object_id.h"

namespace sg {

// The groups that a LISP list describes: pairs (code . value), points as (code x y z), and extended
// data as (-3 ("application" (code . value) ...) ...). Throws "bad DXF group: ..." with the first
// item that is none.
lisp::ResbufList listToGroups(lisp::Interpreter& in, lisp::Value list);

// The list that a writer has collected, as LISP sees an object.
lisp::Value groupsToList(lisp::Interpreter& in, model::ListWriter& writer);

// An entity name, which must be one: else "bad argument type". The null id for a name that stands
// for nothing.
AcDbObjectId entityArgument(lisp::Interpreter& in, lisp::Value name);
// nil for the null id.
lisp::Value entityName(AcDbObjectId id);

}  // namespace sg
