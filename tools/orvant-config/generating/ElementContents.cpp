#include "generating/ElementContents.h"

#include <algorithm>

namespace Orvant::Tool {

namespace {

using Object = ConfigurationObjectDescription;

/// What its class locks is never loaded.
bool isLoaded(const Object& object) {
    return object.isEditable && object.isLoadable();
}

void add(const Object& object, bool isParentLoaded, ElementContents& contents) {
    for (const ConfigurationValueDescription& value : object.values)
        contents.values.push_back(
            {&value, isParentLoaded && value.isLoadable() && value.isEditable});
    for (const auto& [child, isKind, key] : object.children) {
        const bool isChildLoaded = isParentLoaded && isLoaded(child);
        if (child.name.empty())
            add(child, isChildLoaded, contents);
        else
            contents.children.push_back(
                {.object = &child, .isKind = isKind, .key = key, .isLoaded = isChildLoaded});
    }
}

} // namespace

bool ElementContents::hasLoadedValues() const {
    return std::ranges::any_of(values, &ElementValue::isLoaded) ||
           std::ranges::any_of(children, [](const ElementChild& child) {
               return child.isLoaded && contentsOf(child).hasLoadedValues();
           });
}

ElementContents contentsOfRoot(const ConfigurationCatalogue& catalogue) {
    ElementContents contents;
    for (const auto& [object, isKeyed] : catalogue.getEntries()) {
        ElementChild& child = contents.children.emplace_back();
        child.object = &object;
        child.isKind = isKeyed;
        child.isRegistered = true;
        child.isLoaded = isLoaded(object);
    }
    return contents;
}

ElementContents contentsOf(const ElementChild& child) {
    ElementContents contents;
    add(*child.object, child.isLoaded, contents);
    return contents;
}

} // namespace Orvant::Tool
