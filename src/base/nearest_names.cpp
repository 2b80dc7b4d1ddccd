#include "base/nearest_names.h"

#include <fmt/xchar.h>

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace sg {
namespace {

// How many letters must be changed, put in, left out or exchanged with their neighbour.
size_t distanceOf(std::wstring_view a, std::wstring_view b) {
    std::vector<size_t> beforeLast(b.size() + 1), last(b.size() + 1), now(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        now[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            now[j] = std::min({changed, last[j] + 1, now[j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                now[j] = std::min(now[j], beforeLast[j - 2] + 1);
            }
        }
        std::swap(beforeLast, last);
        std::swap(last, now);
    }
    return last[b.size()];
}

}  // namespace

std::vector<std::wstring> nearestNames(const std::vector<std::wstring>& names,
                                       std::wstring_view name, size_t most) {
    const std::wstring wanted = lowerCased(name);
    const size_t farthest = std::max<size_t>(1, wanted.size() / 3);
    std::vector<std::pair<size_t, std::wstring>> near;
    for (const std::wstring& one : names) {
        const std::wstring candidate = lowerCased(one);
        const size_t distance = distanceOf(wanted, candidate);
        if (distance <= farthest) {
            near.emplace_back(distance, one);
        } else if (wanted.size() > 2 && candidate.find(wanted) != std::wstring::npos) {
            near.emplace_back(farthest + 1, one);
        }
    }
    std::sort(near.begin(), near.end());
    std::vector<std::wstring> nearest;
    for (auto& [distance, one] : near) {
        if (nearest.size() == most) break;
        if (nearest.empty() || nearest.back() != one) nearest.push_back(std::move(one));
    }
    return nearest;
}

std::wstring suggestion(const std::vector<std::wstring>& near) {
    return near.empty() ? std::wstring()
                        : fmt::format(L"; did you mean: {}", fmt::join(near, L", "));
}

}  // namespace sg
