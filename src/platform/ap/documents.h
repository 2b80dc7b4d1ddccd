#pragma once

#include <string>

#include "base/export.h"
#include "platform/rx/error_status.h"

class AcDbDatabase;
class AcDbTransactionManager;

namespace AcAp {

// Modes of a document lock, weakest first. kNone: not locked.
enum DocLockMode {
    kNone = 0,
    kAutoWrite = 1,
    kNotLocked = 2,
    kWrite = 4,
    kProtectedAutoWrite = 0x14,
    kRead = 0x20,
    kXWrite = 0x40,
};

}  // namespace AcAp

// One open drawing.
class SG_API AcApDocument {
  public:
    virtual ~AcApDocument() = default;

    // The drawing's file, with its folder once it has one; "Drawing1.dwg" and so on until it is
    // saved. Distinct among the open documents that have no file.
    virtual const wchar_t* fileName() const = 0;
    virtual const wchar_t* docTitle() const = 0;  // the name without its folder
    virtual AcDbDatabase* database() const = 0;
    virtual AcDbTransactionManager* transactionManager() const = 0;  // of its database

    // The strongest mode in which the document is locked; kNone when nothing locks it.
    virtual AcAp::DocLockMode lockMode() const = 0;
    // How many locks are held.
    virtual int lockCount() const = 0;

    // True when no LISP expression or command is running in the document.
    virtual bool isQuiescent() const = 0;
};

// Walks the open documents in the order in which they were opened.
class SG_API AcApDocumentIterator {
  public:
    virtual ~AcApDocumentIterator() = default;
    virtual bool done() const = 0;               // past the last document
    virtual void step() = 0;                     // to the next one; no effect when done
    virtual AcApDocument* document() const = 0;  // null when done
};

class SG_API AcApDocManager {
  public:
    virtual ~AcApDocManager() = default;

    // The document that calls work on now, and the one that the user sees as active. They differ
    // only while a message about another document is being delivered. Null when none is open.
    virtual AcApDocument* curDocument() const = 0;
    virtual AcApDocument* mdiActiveDocument() const = 0;

    // The document that shows `database`; null for a database without one.
    virtual AcApDocument* document(const AcDbDatabase* database) const = 0;

    // A new iterator, which the caller deletes.
    virtual AcApDocumentIterator* newAcApDocumentIterator() = 0;

    // Locks count: each needs its unlockDocument. Everything runs on one thread, so no lock
    // excludes another. eInvalidInput for a document that is not open and for kNone. The command
    // names show in lock messages only and may be null.
    virtual Acad::ErrorStatus lockDocument(AcApDocument* document,
                                           AcAp::DocLockMode mode = AcAp::kWrite,
                                           const wchar_t* globalCommand = nullptr,
                                           const wchar_t* localCommand = nullptr,
                                           bool prompt = true) = 0;
    // Takes back the latest lock. eLockViolation when the document is not locked.
    virtual Acad::ErrorStatus unlockDocument(AcApDocument* document) = 0;

    // Makes `document` the active one.
    virtual Acad::ErrorStatus activateDocument(AcApDocument* document) = 0;

    // Queues `text` as if it were typed at the document's command line. It runs after the
    // expression that is running now. `activate` makes the document active first.
    virtual Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const wchar_t* text,
                                                  bool activate = true, bool wrapUpInactive = false,
                                                  bool echo = true) = 0;
};

SG_API AcApDocManager* acDocManagerPtr();
