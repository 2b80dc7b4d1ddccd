#include "platform/rx/error_status.h"

const wchar_t* acadErrorStatusText(Acad::ErrorStatus status) {
    switch (status) {
        // clang-format off
        case Acad::eOk: return L"Ok";
        case Acad::eNotImplementedYet: return L"NotImplementedYet";
        case Acad::eNotApplicable: return L"NotApplicable";
        case Acad::eInvalidInput: return L"InvalidInput";
        case Acad::eAmbiguousInput: return L"AmbiguousInput";
        case Acad::eAmbiguousOutput: return L"AmbiguousOutput";
        case Acad::eOutOfMemory: return L"OutOfMemory";
        case Acad::eBufferTooSmall: return L"BufferTooSmall";
        case Acad::eInvalidOpenState: return L"InvalidOpenState";
        case Acad::eEntityInInactiveLayout: return L"EntityInInactiveLayout";
        case Acad::eHandleExists: return L"HandleExists";
        case Acad::eNullHandle: return L"NullHandle";
        case Acad::eBrokenHandle: return L"BrokenHandle";
        case Acad::eUnknownHandle: return L"UnknownHandle";
        case Acad::eHandleInUse: return L"HandleInUse";
        case Acad::eNullObjectPointer: return L"NullObjectPointer";
        case Acad::eNullObjectId: return L"NullObjectId";
        case Acad::eNullBlockName: return L"NullBlockName";
        case Acad::eContainerNotEmpty: return L"ContainerNotEmpty";
        case Acad::eNullEntityPointer: return L"NullEntityPointer";
        case Acad::eIllegalEntityType: return L"IllegalEntityType";
        case Acad::eKeyNotFound: return L"KeyNotFound";
        case Acad::eDuplicateKey: return L"DuplicateKey";
        case Acad::eInvalidIndex: return L"InvalidIndex";
        case Acad::eNotInDatabase: return L"NotInDatabase";
        case Acad::eNoDocument: return L"NoDocument";
        case Acad::eFileNotFound: return L"FileNotFound";
        case Acad::eFileAccessErr: return L"FileAccessErr";
        case Acad::eLockViolation: return L"LockViolation";
        case Acad::eLockConflict: return L"LockConflict";
        case Acad::eCannotChangeActiveContext: return L"CannotChangeActiveContext";
        case Acad::eNoActiveTransactions: return L"NoActiveTransactions";
            // clang-format on
    }
    return L"UnknownStatus";
}
