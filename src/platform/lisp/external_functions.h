#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// External LISP functions: how a module offers functions to AutoLISP, takes their arguments, gives
// their results, and calls functions that are written in LISP.
//
// Functions belong to a document: acedDefun, acedRegFunc and acedUndef work on the current document
// and on the module whose entry point or handler is running.

// Defines the LISP function `name` in the current document under the number `code`, in place of a
// function that the module has under that number.
// RTNORM, or RTERROR for an empty name or when no module is running.
SG_API int acedDefun(const wchar_t* name, int code);

// Removes the function again. RTNORM, or RTERROR when `code` is not the number of `name`.
SG_API int acedUndef(const wchar_t* name, int code);

// Makes the host call `handler` directly for the function numbered `code`; null takes it back, and
// the function is then delivered as AcRx::kInvkSubrMsg. The handler answers RSRSLT or RSERR.
SG_API int acedRegFunc(int (*handler)(), int code);

// The number of the function that is being called.
SG_API int acedGetFunCode();

// The arguments of the call in progress as a new list, which the caller releases with acutRelRb.
// Null when there are none.
//
// An integer that fits 16 bits arrives as RTSHORT, any other as RTLONG; a real as RTREAL; a string
// as RTSTR; nil as RTNIL, T as RTT; an entity name as RTENAME, a selection set as RTPICKS; a list
// of two or three reals, and of reals only, as one RTPOINT or RT3DPOINT, also inside another list;
// any other list as RTLB ... RTLE, a dotted pair with RTDOTE before its last item.
SG_API resbuf* acedGetArgs();

// Set the result of the call in progress; the last one set counts, nil when none is. RTNORM, or
// RTERROR when no call is in progress or the value makes no LISP value.
SG_API int acedRetNil();
SG_API int acedRetT();
SG_API int acedRetVoid();  // a result that prints as nothing
SG_API int acedRetInt(int value);
SG_API int acedRetReal(double value);
SG_API int acedRetStr(const wchar_t* value);
SG_API int acedRetPoint(const ads_point value);         // a list of three reals
SG_API int acedRetName(const ads_name name, int type);  // type: RTENAME or RTPICKS
SG_API int acedRetVal(const resbuf* value);             // one node

// A list as the result. The nodes are copied. A chain that is one list, from an RTLB to its RTLE,
// is that list; any other chain is the list of its items.
SG_API int acedRetList(const resbuf* list);

// The same, a part at a time, so that a long result needs no long chain: adds the items of a chain,
// none for null, to the end of the list that is the result. The `first` part begins the list. The
// parts of one list follow each other with no other result set between them. This host's own.
SG_API int sgRetListPart(const resbuf* items, bool first);

// Calls the LISP function that the first node names (RTSTR) with the remaining nodes as arguments,
// in the active document. A name that nothing defines loads the program of that name from the
// support path. On RTNORM `result` is a new list that the caller releases, or null for a
// result that no node holds. RTERROR: the function is unknown or failed (its error is reported).
// RTCAN: the user cancelled.
SG_API int acedInvoke(const resbuf* arguments, resbuf** result);

// The value of the LISP variable `name` in the active document; an unbound one gives null and
// RTNORM. And setting it.
SG_API int acedGetSym(const wchar_t* name, resbuf** value);
SG_API int acedPutSym(const wchar_t* name, const resbuf* value);

// Tells the host that a function defined with acedDefun has no implementation in this build.
// `swiftgate help --missing` lists such functions. This host's own.
SG_API void acedDeclareMissing(const wchar_t* name);
