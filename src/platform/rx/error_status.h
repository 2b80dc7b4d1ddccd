#pragma once

#include "base/export.h"

// What operations of the drawing database and of documents answer.
namespace Acad {

enum ErrorStatus {
    eOk = 0,
    eNotImplementedYet = 1,
    eNotApplicable = 2,
    eInvalidInput = 3,
    eAmbiguousInput = 4,
    eAmbiguousOutput = 5,
    eOutOfMemory = 6,
    eBufferTooSmall = 7,
    eInvalidOpenState = 8,
    eEntityInInactiveLayout = 9,
    eHandleExists = 11,
    eNullHandle = 12,
    eBrokenHandle = 13,
    eUnknownHandle = 14,
    eHandleInUse = 15,
    eNullObjectPointer = 16,
    eNullObjectId = 17,
    eNullBlockName = 18,
    eContainerNotEmpty = 19,
    eNullEntityPointer = 20,
    eIllegalEntityType = 21,
    eKeyNotFound = 22,
    eDuplicateKey = 23,
    eInvalidIndex = 24,
    eNotInDatabase = 54,
    eNoDocument = 1001,
    eFileNotFound = 1002,
    eFileAccessErr = 1003,
    eLockViolation = 1004,
    eLockConflict = 1005,
    eCannotChangeActiveContext = 1006,
    eNoActiveTransactions = 1007,
};

}  // namespace Acad

// The status's name without its prefix, such as "Ok".
SG_API const wchar_t* acadErrorStatusText(Acad::ErrorStatus status);
