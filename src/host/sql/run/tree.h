#pragma once

#include "host/sql/syntax.h"

namespace sg::sql {

// Whether the expression has an aggregate of its own query.
bool hasAggregate(const Expression& expression);

}  // namespace sg::sql
