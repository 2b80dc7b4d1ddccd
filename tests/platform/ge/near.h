#pragma once

#include <gtest/gtest.h>

#include "platform/ge/tol.h"

// A comparison of points or vectors within the default tolerance that shows both sides when it
// fails.
namespace sg::test {

template <class Triple>
testing::AssertionResult near(const Triple& a, const Triple& b) {
    if (a.isEqualTo(b)) return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure();
    failure << "(" << a.x << ", " << a.y << ", " << a.z << ") is not (" << b.x << ", " << b.y
            << ", " << b.z << ")";
    return failure;
}

}  // namespace sg::test
