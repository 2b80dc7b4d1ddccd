#pragma once

#include "platform/db/object.h"

// One transaction: objects that were opened through it stay open until it ends.
class SG_API AcTransaction {
  public:
    virtual ~AcTransaction() = default;
    virtual Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id,
                                        AcDb::OpenMode mode = AcDb::kForRead,
                                        bool openErased = false) = 0;
    // A new object that was given to the database and is still open: the transaction closes it.
    virtual Acad::ErrorStatus addNewlyCreatedDBRObject(AcDbObject* object, bool add = true) = 0;
};

// The nested transactions of a database. An object may be opened by several of them at once, and
// for write while they hold it for read.
class SG_API AcDbTransactionManager {
  public:
    virtual ~AcDbTransactionManager() = default;

    virtual AcTransaction* startTransaction() = 0;  // owned by the manager
    // Ends the innermost one. An inner one's changes become its outer one's. eNoActiveTransactions.
    virtual Acad::ErrorStatus endTransaction() = 0;
    // Ends it and takes back every change of it and of those that ended in it: the state of objects
    // through an undo filer, what was made is erased for good, what was erased is back.
    virtual Acad::ErrorStatus abortTransaction() = 0;
    virtual int numActiveTransactions() const = 0;
    virtual AcTransaction* topTransaction() const = 0;  // null when none is active
    virtual Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id,
                                        AcDb::OpenMode mode = AcDb::kForRead,
                                        bool openErased = false) = 0;
    virtual Acad::ErrorStatus addNewlyCreatedDBRObject(AcDbObject* object, bool add = true) = 0;
};

// The same, of a document's database.
using AcTransactionManager = AcDbTransactionManager;
