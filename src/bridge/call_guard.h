#pragma once

// The path of one LISP call from the host to its implementation and back.
namespace sg {

// What an implementation answers.
enum LispResult : int {
    kLispOk = 0,
    kLispTooFew = 1,
    kLispWrongType = 2,
    kLispBadData = 3,
    kLispTextScreen = 4,  // fails, and flips to the text screen
};

// An implementation fetches its arguments with acedGetArgs, sets its LISP result with one of the
// acedRet functions, releases what it took and answers a LispResult. With kLispOk and no result set
// the LISP result is nil.
using LispImplementation = int (*)();

// Prints what `result` means and answers what the host is to be told: RSERR for kLispTooFew,
// kLispWrongType, kLispBadData and kLispTextScreen, RSRSLT for kLispOk and any other number.
int checkLispResult(int result);

// Calls `implementation` with the working database's document locked for writing, and answers the
// checked result. The call goes on when the lock is refused. An exception leaves the document
// unlocked, is announced on the command line and passes on to the host.
int callGuard(LispImplementation implementation);

}  // namespace sg
