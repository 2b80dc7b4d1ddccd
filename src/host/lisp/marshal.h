#pragma once

#include <memory>

#include "host/lisp/interpreter.h"
#include "platform/lisp/resbuf.h"

namespace sg::lisp {

struct ResbufRelease {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
// A result-buffer list that is released with its holder.
using ResbufList = std::unique_ptr<resbuf, ResbufRelease>;

// The arguments of a call as the module sees them; null when there are none. Throws "bad argument
// type" for a value that no node holds (a symbol but T, a function, a file).
ResbufList argumentsToResbuf(Interpreter& in, Args arguments);

// One value: an atom as one node, a list from its RTLB to its RTLE or as a point. Throws as above.
ResbufList valueToResbuf(Interpreter& in, Value value);

// The value of one node; nil for a code that holds no value.
Value nodeToValue(Interpreter& in, const resbuf& node);

// The list that a chain stands for: a chain that is one list, from an RTLB to the RTLE that closes
// it, is that list; any other chain is the list of its items. A group code below 1000 makes a
// dotted pair (code . value), or (code x y z) for a point. False, and `value` untouched, when lists
// do not close or a dot stands where none may.
bool listToValue(Interpreter& in, const resbuf* chain, Value& value);

// Adds every item of a chain to the end of a list, whose last cell is `last`; both are nil for an
// empty list. False as above, and what stands ahead of the fault is added.
bool appendItems(Interpreter& in, const resbuf* chain, Value& head, Value& last);

// The value of a chain as a function's argument list passes it: one item is the item itself.
bool chainToValue(Interpreter& in, const resbuf* chain, Value& value);

// Every item of a chain, pushed on the value stack; answers their number, or -1 as above.
int pushItems(Interpreter& in, const resbuf* chain);

// A value that holds the selection set of a name.
Value pickSetValue(Interpreter& in, uint64_t name);

// Entity and selection set names as words and as payloads of values.
uint64_t nameToPayload(const ads_name name);
void payloadToName(uint64_t payload, ads_name name);

}  // namespace sg::lisp
