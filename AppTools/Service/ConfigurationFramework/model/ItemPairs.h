#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvant {

/// Finds, for the items of an object, those of the same name in another object (null: none).
/// Objects of the same class have them at the same positions.
template <typename Item>
class ItemPairs {
public:
    using Items = std::vector<Item*>;

    ItemPairs(const Items& items, const Items* others) : m_items(items), m_others(others) {}

    /// @return first item of the other object with the name of the item at a position; null when
    ///         there is none
    const Item* counterpartOf(std::size_t position) {
        if (m_others == nullptr)
            return nullptr;
        const std::string& name = m_items[position]->getName();
        if (position < m_others->size() && (*m_others)[position]->getName() == name)
            return (*m_others)[position];
        if (m_byName.empty())
            for (const Item* other : *m_others)
                m_byName.try_emplace(other->getName(), other);
        const auto found = m_byName.find(name);
        return found == m_byName.end() ? nullptr : found->second;
    }

private:
    const Items& m_items;
    const Items* m_others;
    /// Made when positions differ.
    std::unordered_map<std::string_view, const Item*> m_byName;
};

} // namespace Orvant
