#pragma once

#include "platform/ed/editor.h"

namespace sg {

// Watches drawings being saved: one that is saved under a new name loses its database until LISP
// connects again.
class sgEditorReactor : public AcEditorReactor {
  public:
    // Closes the current database when `database` is the active document's, `fileName` is not what
    // the head entry has for its document, and the head entry's connection is the current one.
    // The entry keeps its document's old name. Throws CInvalidArgException (by pointer) when the
    // active document was saved and there is no entry.
    void saveComplete(AcDbDatabase* database, const wchar_t* fileName) override;
};

}  // namespace sg
