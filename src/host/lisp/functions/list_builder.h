#pragma once

#include "host/lisp/interpreter.h"

namespace sg::lisp {

// Grows a list at its end. The head lies on the value stack, so the list stays alive while LISP
// code runs between two items; it must not be used after the native function has returned.
class ListBuilder {
  public:
    explicit ListBuilder(Interpreter& in) : in_(in), head_(in.sp) { in.push(Value::nil()); }

    void add(Value item) {
        const Value cell = in_.cons(item, Value::nil());
        // The cell is new and known to nobody else: writing to it is safe for the collector, since
        // the cell that is linked is newer still.
        if (last_ == nullptr) {
            *head_ = cell;
        } else {
            last_->cdr = cell;
        }
        last_ = cell.asCons();
    }
    // Ends the list with `tail` instead of nil.
    void end(Value tail) {
        if (last_ == nullptr) {
            *head_ = tail;
        } else {
            last_->cdr = tail;
        }
    }
    Value list() const { return *head_; }

  private:
    Interpreter& in_;
    Value* head_;
    Cons* last_ = nullptr;
};

}  // namespace sg::lisp
