#include "SettingIndex.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string_view>

namespace Orvant::Tool {

namespace {

bool isLoadable(ConfigurationItemBase::Persistence persistence) {
    return persistence == ConfigurationItemBase::LoadAndSave ||
           persistence == ConfigurationItemBase::LoadOnly;
}

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

/// Matches the rest of a path with the rest of an item's steps.
/// @param steps with the keys of the path, when it returns true
bool match(std::string_view path, std::vector<PathStep>& steps, std::size_t position) {
    if (position == steps.size())
        return path.empty();
    PathStep& step = steps[position];
    if (position != 0) {
        if (!path.starts_with('/'))
            return false;
        path.remove_prefix(1);
    }
    if (!path.starts_with(step.name))
        return false;
    path.remove_prefix(step.name.size());
    if (!step.isKind) {
        const std::string key = step.key ? '[' + *step.key + ']' : "";
        return path.starts_with(key) && match(path.substr(key.size()), steps, position + 1);
    }
    if (!path.starts_with('['))
        return match(path, steps, position + 1);
    // A key may hold brackets and slashes itself.
    for (std::size_t end = path.find(']'); end != std::string_view::npos;
         end = path.find(']', end + 1)) {
        step.key = path.substr(1, end - 1);
        if (match(path.substr(end + 1), steps, position + 1))
            return true;
    }
    step.key.reset();
    return false;
}

/// Number of letters to insert, remove or replace (Levenshtein, 1966), regardless of case.
std::size_t distance(const std::string& first, const std::string& second) {
    std::vector<std::size_t> row(second.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    const auto lower = [](char letter) { return std::tolower(static_cast<unsigned char>(letter)); };
    for (std::size_t i = 0; i < first.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < second.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(first[i]) == lower(second[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

} // namespace

SettingIndex::SettingIndex(const ConfigurationCatalogue& catalogue) {
    for (const auto& [object, isKeyed] : catalogue.getEntries())
        addObject(object, below({}, {.name = object.name, .isKind = isKeyed}));
}

void SettingIndex::addObject(const ConfigurationObjectDescription& object, CatalogueItem item) {
    item.object = &object;
    item.isLoaded = item.isLoaded && isLoadable(object.persistence);
    item.isLockedByClass = item.isLockedByClass || !object.isEditable;
    m_items.push_back(item);
    addContents(object, item);
}

void SettingIndex::addContents(const ConfigurationObjectDescription& object,
                               const CatalogueItem& item) {
    for (const ConfigurationValueDescription& value : object.values) {
        CatalogueItem found = below(item, {.name = value.name});
        found.value = &value;
        found.isLoaded = found.isLoaded && isLoadable(value.persistence);
        found.isLockedByClass = found.isLockedByClass || !value.isEditable;
        m_items.push_back(std::move(found));
    }
    for (const auto& [child, isKind, key] : object.children) {
        if (!child.name.empty()) {
            addObject(child, below(item, {.name = child.name, .isKind = isKind, .key = key}));
            continue;
        }
        CatalogueItem inlined = item;
        inlined.isLoaded = item.isLoaded && isLoadable(child.persistence);
        inlined.isLockedByClass = item.isLockedByClass || !child.isEditable;
        addContents(child, inlined);
    }
}

std::optional<FoundItem> SettingIndex::find(const std::string& path) const {
    for (const CatalogueItem& item : m_items) {
        if (item.path == path) // with "[*]", which then is no key
            return FoundItem{&item, item.steps};
        std::vector<PathStep> steps = item.steps;
        if (match(path, steps, 0))
            return FoundItem{&item, std::move(steps)};
    }
    return std::nullopt;
}

std::string SettingIndex::nearest(const std::string& path) const {
    std::vector<std::string> paths;
    paths.reserve(m_items.size());
    for (const CatalogueItem& item : m_items)
        paths.push_back(item.path);
    return nearestName(path, paths);
}

std::string nearestName(const std::string& text, const std::vector<std::string>& candidates) {
    std::string best;
    std::size_t least = text.size() / 3 + 2; // what is further away is another word
    for (const std::string& candidate : candidates) {
        const std::size_t difference =
            std::max(text.size(), candidate.size()) - std::min(text.size(), candidate.size());
        if (difference >= least)
            continue;
        if (const std::size_t found = distance(text, candidate); found < least) {
            least = found;
            best = candidate;
        }
    }
    return best;
}

} // namespace Orvant::Tool
