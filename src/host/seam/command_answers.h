#pragma once

#include "host/editor/input_source.h"
#include "host/lisp/interpreter.h"

namespace sg {

// A LISP value as the answer to a command's prompt: a text or number as it would be typed, a list
// of two or three numbers as a point, an entity name, alone or as (name point), a selection set.
// Where a line of text is asked for a point is its coordinates. "bad argument type" for other
// values.
PromptAnswer answerFromLisp(lisp::Interpreter& in, lisp::Value value, bool isText);

}  // namespace sg
