#include "catalogue/LoadedItem.h"

#include "catalogue/KeyedEntries.h"
#include "common/ExitCode.h"

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/KeyedGroup.h>

#include <algorithm>
#include <optional>
#include <span>

namespace Orvant::Tool {

namespace {

using Steps = std::span<const PathStep>;

std::optional<LoadedItem> find(ConfigurationObject& object, Steps steps, bool isLocked);

ConfigurationObject& entryOf(KeyedGroup& group, const std::optional<std::string>& key,
                             bool isLocked) {
    if (!key)
        return *group.getChildPrototype();
    if (ConfigurationObject* const child = group.find(*key))
        return *child;
    if (!KeyedGroup::isKey(*key))
        throw Failure(ExitCode::Usage, '"' + *key + "\" cannot be a key");
    return isLocked ? *group.getChildPrototype() : group.add(*key);
}

std::optional<LoadedItem> findInGroup(KeyedGroup& group, Steps steps, bool isLocked) {
    const PathStep& step = steps.front();
    if (!step.isKind || group.getChildPrototype()->getName() != step.name)
        return std::nullopt;
    isLocked = isLocked || !group.isEditable();
    return find(entryOf(group, step.key, isLocked), steps.subspan(1), isLocked);
}

std::optional<LoadedItem> findInChild(const ConfigurationObject& parent, std::size_t position,
                                      Steps steps, bool isLocked) {
    ConfigurationObject& child =
        *parent.beginObjectIterator()[static_cast<std::ptrdiff_t>(position)];
    if (auto* const group = dynamic_cast<KeyedGroup*>(&child))
        return findInGroup(*group, steps, isLocked);
    if (child.getName().empty()) // inline
        return find(child, steps, isLocked);
    const PathStep& step = steps.front();
    const bool isMeant =
        !step.isKind && child.getName() == step.name && parent.getChildKey(position) == step.key;
    return isMeant ? find(child, steps.subspan(1), isLocked) : std::nullopt;
}

/// @param steps    to what is in an object, or none: the object itself is meant
/// @param isLocked whether the object is in something locked
std::optional<LoadedItem> find(ConfigurationObject& object, Steps steps, bool isLocked) {
    isLocked = isLocked || !object.isEditable();
    if (steps.empty())
        return LoadedItem{nullptr, isLocked};
    if (steps.size() == 1)
        for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
            if ((*value)->getName() == steps.front().name)
                return LoadedItem{*value, isLocked || !(*value)->isEditable()};
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i)
        if (auto found = findInChild(object, i, steps, isLocked))
            return found;
    return std::nullopt;
}

ConfigurationObject& registeredObject(Session& session, ConfigurationManager& manager,
                                      const PathStep& step) {
    if (!step.isKind)
        return *manager.getConfigurationObject(step.name);
    const auto& entries = session.catalogue().getEntries();
    const auto entry = std::ranges::find_if(
        entries, [&](const auto& candidate) { return candidate.object.name == step.name; });
    return registerEntry(manager, entry->object,
                         step.key ? *step.key : keyOfNone(manager, step.name));
}

} // namespace

LoadedItem findLoaded(Session& session, const std::string& path) {
    const FoundItem found = session.find(path);
    ConfigurationObject& object =
        registeredObject(session, session.loadUsable(), found.steps.front());
    return find(object, Steps(found.steps).subspan(1), false).value();
}

} // namespace Orvant::Tool
