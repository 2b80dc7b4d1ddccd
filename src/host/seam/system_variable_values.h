#pragma once

#include <optional>

#include "host/editor/system_variables.h"
#include "host/lisp/interpreter.h"
#include "platform/lisp/resbuf.h"

namespace sg {

// A system variable's value as LISP sees it, and back; nullopt for a value that none can have.
lisp::Value systemVariableToLisp(lisp::Interpreter& in, const SystemVariableValue& value);
std::optional<SystemVariableValue> lispToSystemVariable(lisp::Interpreter& in, lisp::Value value);

// The same for one result-buffer node; a string in it is new and becomes the node's.
void systemVariableToNode(const SystemVariableValue& value, resbuf& node);
std::optional<SystemVariableValue> nodeToSystemVariable(const resbuf& node);

}  // namespace sg
