#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvant {

/// Names with a number each, whose changes can be taken back: what is true of a type's bases is
/// then found once for all that is derived from them.
///
/// @code
/// const std::size_t before = names.changes();
/// names.set("name", 1);
/// names.takeBack(before);
/// @endcode
class RevertibleNames {
public:
    std::optional<std::size_t> find(const std::string& name) const {
        const auto found = m_numbers.find(name);
        return found == m_numbers.end() ? std::nullopt : std::optional(found->second);
    }
    void set(const std::string& name, std::size_t number) {
        m_changes.push_back({name, find(name), std::nullopt});
        m_numbers.insert_or_assign(name, number);
    }
    void clear() {
        if (!m_numbers.empty())
            m_changes.push_back({{}, std::nullopt, std::exchange(m_numbers, {})});
    }

    /// @return how many changes there were that are not taken back
    std::size_t changes() const { return m_changes.size(); }
    /// Takes back all changes but the first ones.
    void takeBack(std::size_t first) {
        for (; m_changes.size() > first; m_changes.pop_back()) {
            Change& change = m_changes.back();
            if (change.cleared)
                m_numbers = std::move(*change.cleared);
            else if (change.number)
                m_numbers[change.name] = *change.number;
            else
                m_numbers.erase(change.name);
        }
    }

private:
    using Numbers = std::unordered_map<std::string, std::size_t>;
    struct Change {
        std::string name;
        std::optional<std::size_t> number; ///< that it had before
        std::optional<Numbers> cleared;    ///< all names, if all were removed
    };

    Numbers m_numbers;
    std::vector<Change> m_changes;
};

} // namespace Orvant
