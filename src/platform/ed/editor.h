#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"
#include "platform/rx/rxclass.h"

class AcDbDatabase;

class SG_API AcRxEventReactor : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(AcRxEventReactor)

    virtual void beginSave(AcDbDatabase* database, const wchar_t* intendedName);
    // `database` has been written to `actualName`.
    virtual void saveComplete(AcDbDatabase* database, const wchar_t* actualName);
};

// Hears what happens in the editor. Derive from it, override what matters, and add the reactor to
// the AcEditor.
class SG_API AcEditorReactor : public AcRxEventReactor {
  public:
    ACRX_DECLARE_MEMBERS(AcEditorReactor)
};

// The editor itself, found under "AcEditor" in acrxSysRegistry().
class SG_API AcEditor : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(AcEditor)

    // Reactors are called in the order in which they were added and are not owned. Adding one twice
    // has no further effect.
    virtual void addReactor(AcEditorReactor* reactor) = 0;
    virtual void removeReactor(AcEditorReactor* reactor) = 0;
};
