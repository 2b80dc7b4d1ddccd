#include "base/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace sg {
namespace {

TEST(WholeOf, CutsWhatIsBehindThePointAndStopsAtTheLimits) {
    EXPECT_EQ(wholeOf<int32_t>(-2.9), -2);
    EXPECT_EQ(wholeOf<int32_t>(4.12149e11), INT32_MAX);
    EXPECT_EQ(wholeOf<int32_t>(-2147483648.5), INT32_MIN);
    EXPECT_EQ(wholeOf<int32_t>(2147483646.5), 2147483646);
    EXPECT_EQ(wholeOf<uint8_t>(-1.0), 0);
    EXPECT_EQ(wholeOf<int64_t>(9223372036854775808.0), INT64_MAX);
    EXPECT_EQ(wholeOf<int16_t>(std::nan("")), 0);
    EXPECT_EQ(wholeOf<int16_t>(-INFINITY), INT16_MIN);
}

}  // namespace
}  // namespace sg
