#pragma once

#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"

namespace sg {

// For LISP functions on the current drawing: its document, or the error that none is open.
Document& requireDocument(lisp::Interpreter& in);
AcDbDatabase& requireDatabase(lisp::Interpreter& in);

}  // namespace sg
