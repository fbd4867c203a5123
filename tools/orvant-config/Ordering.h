#pragma once

#include <map>
#include <utility>
#include <vector>

namespace Orvant::Tool {

/// Sorts like std::stable_sort, which libstdc++ makes of functions that C++ deprecated.
/// @param keyOf what to sort an item by
/// @return the items; those with the same key stay in order
template <typename Item, typename KeyOf>
std::vector<Item> orderedBy(std::vector<Item> items, KeyOf keyOf) {
    std::multimap<decltype(keyOf(std::declval<const Item&>())), Item> byKey;
    for (Item& item : items) {
        auto key = keyOf(item);
        byKey.emplace(std::move(key), std::move(item));
    }
    items.clear();
    for (auto& [key, item] : byKey)
        items.push_back(std::move(item));
    return items;
}

} // namespace Orvant::Tool
