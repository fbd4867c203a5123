#include "catalogue/SettingIndex.h"

#include "common/NearestName.h"

#include <algorithm>
#include <string_view>

namespace Orvant::Tool {

namespace {

std::string textOf(const PathStep& step) {
    if (step.isKind && !step.key)
        return step.name + "[*]";
    return step.key ? step.name + '[' + *step.key + ']' : step.name;
}

/// An item in another.
CatalogueItem below(const CatalogueItem& parent, PathStep step) {
    CatalogueItem item{.path = parent.path + (parent.path.empty() ? "" : "/") + textOf(step),
                       .steps = parent.steps,
                       .isLoaded = parent.isLoaded,
                       .isLockedByClass = parent.isLockedByClass};
    item.steps.push_back(std::move(step));
    return item;
}

/// A path as people write it who do not think of keys.
std::string withoutKinds(std::string path) {
    constexpr std::string_view kind = "[*]";
    for (std::size_t found = path.find(kind); found != std::string::npos; found = path.find(kind))
        path.erase(found, kind.size());
    return path;
}

/// An item with a user's keys.
FoundItem withKeys(const CatalogueItem& item, const std::vector<std::optional<std::string>>& keys) {
    FoundItem found{&item, item.steps};
    auto key = keys.begin();
    for (PathStep& step : found.steps)
        if (step.isKind)
            step.key = *key++;
    return found;
}

} // namespace

SettingIndex::SettingIndex(const ConfigurationCatalogue& catalogue) {
    for (const auto& [object, isKeyed] : catalogue.getEntries())
        addObject(object, below({}, {.name = object.name, .isKind = isKeyed}));
}

void SettingIndex::addObject(const ConfigurationObjectDescription& object, CatalogueItem item) {
    item.object = &object;
    item.isLoaded = item.isLoaded && object.isLoadable();
    item.isLockedByClass = item.isLockedByClass || !object.isEditable;
    add(item);
    addContents(object, item);
}

void SettingIndex::addContents(const ConfigurationObjectDescription& object,
                               const CatalogueItem& item) {
    for (const ConfigurationValueDescription& value : object.values) {
        CatalogueItem found = below(item, {.name = value.name});
        found.value = &value;
        found.isLoaded = found.isLoaded && value.isLoadable();
        found.isLockedByClass = found.isLockedByClass || !value.isEditable;
        add(std::move(found));
    }
    for (const auto& [child, isKind, key] : object.children) {
        if (!child.name.empty()) {
            addObject(child, below(item, {.name = child.name, .isKind = isKind, .key = key}));
            continue;
        }
        CatalogueItem inlined = item;
        inlined.isLoaded = item.isLoaded && child.isLoadable();
        inlined.isLockedByClass = item.isLockedByClass || !child.isEditable;
        addContents(child, inlined);
    }
}

void SettingIndex::add(CatalogueItem item) {
    m_positions.try_emplace(item.path, m_items.size());
    m_items.push_back(std::move(item));
}

std::optional<FoundItem> SettingIndex::find(const std::string& path) const {
    return find(path, "", {});
}

/// @param rest  of a path
/// @param above what is before that, as in a catalogue
/// @param keys  those of the kinds before that
std::optional<FoundItem> SettingIndex::find(std::string_view rest, const std::string& above,
                                            const Keys& keys) const {
    const auto go = [&](const std::string& path, std::size_t end,
                        const std::optional<std::string>& key) -> std::optional<FoundItem> {
        const auto position = m_positions.find(path);
        if (position == m_positions.end())
            return std::nullopt;
        const CatalogueItem& item = m_items[position->second];
        Keys known = keys;
        if (item.steps.back().isKind)
            known.push_back(key);
        if (end == rest.size())
            return withKeys(item, known);
        return rest[end] == '/' ? find(rest.substr(end + 1), path + '/', known) : std::nullopt;
    };
    const std::size_t nameEnd = std::min(rest.find_first_of("[/"), rest.size());
    const std::string name = above + std::string(rest.substr(0, nameEnd));
    if (nameEnd == rest.size() || rest[nameEnd] == '/') {
        const auto found = go(name, nameEnd, std::nullopt);
        return found ? found : go(name + "[*]", nameEnd, std::nullopt);
    }
    // A key may hold brackets and slashes itself.
    for (std::size_t end = rest.find(']'); end != std::string_view::npos;
         end = rest.find(']', end + 1)) {
        const std::string key(rest.substr(nameEnd + 1, end - nameEnd - 1));
        const std::string keyed = above + std::string(rest.substr(0, end + 1));
        if (auto found = go(keyed, end + 1, std::nullopt)) // "[*]" is no key
            return found;
        if (auto found = go(name + "[*]", end + 1, key))
            return found;
    }
    return std::nullopt;
}

std::string SettingIndex::nearest(const std::string& path) const {
    std::vector<std::string> paths;
    for (const CatalogueItem& item : m_items) {
        paths.push_back(item.path);
        if (const std::string plain = withoutKinds(item.path); plain != item.path)
            paths.push_back(plain);
    }
    return nearestName(path, paths);
}

} // namespace Orvant::Tool
