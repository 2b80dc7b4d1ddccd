#include "grid/axis_sizes.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace sg::grid {
namespace {

int shownFrom(const std::vector<int>& sizes, int item, int step) {
    for (; item >= 0 && item < int(sizes.size()); item += step) {
        if (sizes[size_t(item)] > 0) return item;
    }
    return -1;
}

// Whatever is done in whatever order, sums and searches answer as a plain walk does.
TEST(AxisSizes, AnswersAsAPlainWalkDoes) {
    std::mt19937 random(7);
    const auto below = [&](int end) { return int(random() % unsigned(end)); };
    AxisSizes axis;
    std::vector<int> plain;
    for (int step = 0; step < 4000; ++step) {
        const int count = int(plain.size());
        const int size = below(3) == 0 ? 0 : below(40);
        switch (below(5)) {
            case 0: {
                const int at = below(count + 1), many = below(60);
                axis.Insert(at, many, size);
                plain.insert(plain.begin() + at, size_t(many), size);
                break;
            }
            case 1:
                if (count > 0) {
                    const int first = below(count), many = below(std::min(count - first, 30) + 1);
                    axis.Erase(first, many);
                    plain.erase(plain.begin() + first, plain.begin() + first + many);
                }
                break;
            case 2:
                if (count > 1) {
                    const int a = below(count), b = below(count);
                    axis.Swap(a, b);
                    std::swap(plain[size_t(a)], plain[size_t(b)]);
                }
                break;
            case 3:
                if (count > 0) {
                    const int item = below(count);
                    axis.Set(item, size);
                    plain[size_t(item)] = size;
                }
                break;
            default:
                if (step % 50 == 0) {
                    const int many = below(1500);
                    axis.Resize(many, size);
                    plain.resize(size_t(many), size);
                }
                break;
        }
        ASSERT_EQ(axis.Count(), int(plain.size()));
        const int item = below(int(plain.size()) + 1);
        const int64_t start = std::accumulate(plain.begin(), plain.begin() + item, int64_t(0));
        ASSERT_EQ(axis.Start(item), start) << step;
        ASSERT_EQ(axis.NextShown(item), shownFrom(plain, item, 1)) << step;
        if (item < int(plain.size())) {
            ASSERT_EQ(axis.PreviousShown(item), shownFrom(plain, item, -1)) << step;
            if (plain[size_t(item)] > 0) {
                ASSERT_EQ(axis.At(start), item) << step;
                ASSERT_EQ(axis.At(start + plain[size_t(item)] - 1), item) << step;
            }
        }
        ASSERT_EQ(axis.At(axis.Total()), axis.Count()) << step;
    }
}

}  // namespace
}  // namespace sg::grid
