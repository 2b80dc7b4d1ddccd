#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jet/index/sort_order.h"

namespace sg::dao {

// Sorts what the engine's collections hold as they show it: in the order of the names, in which the
// catalog's own index has them.
template <class Item, class NameOf>
void sortByName(std::vector<Item>& items, NameOf nameOf) {
    std::vector<std::pair<jet::KeyBytes, size_t>> order(items.size());
    for (size_t i = 0; i < items.size(); ++i) {
        order[i].second = i;
        jet::appendTextKey(jet::TextOrder::GeneralLegacy, nameOf(items[i]), false, order[i].first);
    }
    std::sort(order.begin(), order.end());
    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const auto& [key, place] : order)
        sorted.push_back(std::move(items[place]));
    items = std::move(sorted);
}

}  // namespace sg::dao
