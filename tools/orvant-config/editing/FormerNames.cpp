#include "editing/FormerNames.h"

#include <algorithm>
#include <iterator>

namespace Orvant::Tool {

namespace {

/// A user's file tells by elements of that name which keys of a kind are removed.
constexpr const char* removedPrefix = "Removed";

std::string namesOf(const std::vector<PathStep>& steps) {
    std::string names;
    for (const PathStep& step : steps)
        names += (names.empty() ? "" : "/") + step.name;
    return names;
}

bool isRemovable(const CatalogueItem& item) {
    return item.steps.size() > 1 && item.steps.back().isKind;
}

/// Whether an element may have its key. Where none is asked for, any will do.
bool hasFittingKey(const PathStep& step, const ConfigurationElementStep& element) {
    return step.isKind || !step.key || *step.key == element.key.value_or("");
}

} // namespace

FormerNames::FormerNames(const ConfigurationCatalogue& catalogue, const SettingIndex& settings) {
    for (const CatalogueItem& item : settings.items()) {
        m_items[namesOf(item.steps)].push_back(&item);
        if (item.object == nullptr || !isRemovable(item))
            continue;
        std::vector<PathStep> removed = item.steps;
        removed.back().name.insert(0, removedPrefix);
        m_items[namesOf(removed)].push_back(&item);
    }
    for (const auto& [former, today] : catalogue.getFormerPaths())
        m_paths.try_emplace(former, today);
}

const CatalogueItem* FormerNames::itemAt(const ConfigurationElementPath& path) const {
    const auto found = m_items.find(namesOf(path));
    if (found == m_items.end())
        return nullptr;
    const auto item = std::ranges::find_if(found->second, [&](const CatalogueItem* candidate) {
        return std::ranges::equal(candidate->steps, path, hasFittingKey);
    });
    return item == found->second.end() ? nullptr : *item;
}

std::optional<ConfigurationElementPath>
FormerNames::placeToday(const ConfigurationElementPath& path) const {
    std::optional<ConfigurationElementPath> place = path;
    // Each name may have had a name before. A catalogue could name them in a circle.
    for (std::size_t i = 0; i <= m_paths.size() && place && itemAt(*place) == nullptr; ++i)
        place = rename(*place);
    if (place && itemAt(*place) != nullptr)
        return place;
    ConfigurationElementPath kind = path;
    if (!path.back().name.starts_with(removedPrefix))
        return std::nullopt;
    kind.back().name.erase(0, std::char_traits<char>::length(removedPrefix));
    if (kind.back().name.empty())
        return std::nullopt;
    place = placeToday(kind);
    if (!place || !isRemovable(*itemAt(*place)))
        return std::nullopt;
    place->back().name.insert(0, removedPrefix);
    return place;
}

/// Replaces the longest former path.
std::optional<ConfigurationElementPath>
FormerNames::rename(const ConfigurationElementPath& path) const {
    for (std::size_t size = path.size(); size != 0; --size) {
        const auto end = path.begin() + static_cast<std::ptrdiff_t>(size);
        const auto found = m_paths.find(Tool::namesOf({path.begin(), end}));
        if (found != m_paths.end())
            return replaceFront(path, size, found->second);
    }
    return std::nullopt;
}

/// Each key stays at its step, or goes to the next one that has room for it, from the front again.
std::optional<ConfigurationElementPath>
FormerNames::replaceFront(const ConfigurationElementPath& path, std::size_t size,
                          const std::string& today) const {
    const auto found = m_items.find(today);
    if (found == m_items.end())
        return std::nullopt;
    const std::vector<PathStep>& steps = found->second.front()->steps;
    ConfigurationElementPath place;
    std::ranges::transform(steps, std::back_inserter(place), [](const PathStep& step) {
        return ConfigurationElementStep{step.name, step.key};
    });
    for (std::size_t i = 0; i < size; ++i) {
        if (!path[i].key || path[i].key->empty())
            continue;
        const auto hasRoom = [&](std::size_t step) {
            return steps[step].isKind && !place[step].key;
        };
        std::size_t tried = 0;
        while (tried < steps.size() && !hasRoom((i + tried) % steps.size()))
            ++tried;
        if (tried == steps.size())
            return std::nullopt;
        const std::size_t room = (i + tried) % steps.size();
        place[room].key = path[i].key;
    }
    place.insert(place.end(), path.begin() + static_cast<std::ptrdiff_t>(size), path.end());
    return place;
}

std::string namesOf(const ConfigurationElementPath& path) {
    std::string names;
    for (const ConfigurationElementStep& step : path)
        names += (names.empty() ? "" : "/") + step.name;
    return names;
}

} // namespace Orvant::Tool
