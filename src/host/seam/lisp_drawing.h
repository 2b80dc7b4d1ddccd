#pragma once

#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "platform/db/dictionary.h"

namespace sg {

// For LISP functions on the current drawing: its document, or the error that none is open.
Document& requireDocument(lisp::Interpreter& in);
AcDbDatabase& requireDatabase(lisp::Interpreter& in);

// Whether a dictionary is the drawing's root and the key that of an entry that every drawing needs,
// such as ACAD_GROUP. Programs can't take it away or rename it.
bool isNeededEntry(const AcDbDictionary& dictionary, const std::wstring& key);

}  // namespace sg
