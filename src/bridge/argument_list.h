#pragma once

#include "platform/lisp/external_functions.h"

namespace sg {

// The arguments of the call in progress, released when the object ends.
class ArgumentList {
  public:
    ArgumentList() : list_(acedGetArgs()) {}
    ~ArgumentList() { acutRelRb(list_); }
    ArgumentList(const ArgumentList&) = delete;
    ArgumentList& operator=(const ArgumentList&) = delete;

    // Where the readers of bridge/marshal_readers.h begin; null when there are none.
    const resbuf* first() const { return list_; }

  private:
    resbuf* const list_;
};

}  // namespace sg
