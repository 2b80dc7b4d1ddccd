#include "bridge/call_guard.h"

#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/resbuf.h"
#include "platform/win/exceptions.h"

namespace sg {
namespace {

AcApDocument* workingDocument() {
    return acDocManagerPtr()->document(acdbHostApplicationServices()->workingDatabase());
}

// The document is looked up again on purpose: an implementation may have changed the working
// database, and the unlock follows the present one.
void unlockWorkingDocument() {
    acDocManagerPtr()->unlockDocument(workingDocument());
}

}  // namespace

int checkLispResult(int result) {
    switch (result) {
        case kLispTooFew:
            acutPrintf(L"\nToo few arguments passed.\n");
            return RSERR;
        case kLispWrongType:
            acutPrintf(L"\nWrong type of arguments passed.\n");
            return RSERR;
        case kLispBadData:
            acutPrintf(L"\nBad data passed .\n");
            return RSERR;
        case kLispTextScreen:
            acedTextScr();
            return RSERR;
        default:
            return RSRSLT;
    }
}

int callGuard(LispImplementation implementation) {
    acDocManagerPtr()->lockDocument(workingDocument(), AcAp::kWrite, nullptr, nullptr, true);
    int answer = RSRSLT;
    try {
        answer = checkLispResult(implementation());
    } catch (CException*) {
        unlockWorkingDocument();
        acutPrintf(L"\nGeneral Exception");
        throw;
    } catch (...) {
        unlockWorkingDocument();
        acutPrintf(L"\nError");
        throw;
    }
    unlockWorkingDocument();
    return answer;
}

}  // namespace sg
