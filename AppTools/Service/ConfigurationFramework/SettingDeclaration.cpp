#include <ConfigurationFramework/SettingDeclaration.h>

#include <ConfigurationFramework/SettingsBase.h>
#include <ConfigurationFramework/ValueText.h>

#include <algorithm>

namespace Orvant {

namespace {

/// The key of a child, in brackets; empty: it has none.
std::string bracketedKeyOf(const ConfigurationObject& object) {
    const ConfigurationObject* const parent = object.getParent();
    if (parent == nullptr)
        return "";
    const auto place =
        std::find(parent->beginObjectIterator(), parent->endObjectIterator(), &object);
    const auto key =
        parent->getChildKey(static_cast<std::size_t>(place - parent->beginObjectIterator()));
    return key ? '[' + *key + ']' : "";
}

/// The path of an object from the outermost one on, as far as these have names.
std::string pathOf(const ConfigurationObject* object) {
    std::string path;
    for (; object != nullptr; object = object->getParent())
        if (!object->getName().empty())
            path.insert(0, object->getName() + bracketedKeyOf(*object) + '/');
    return path;
}

} // namespace

void throwBadDeclaration(const SettingsBase& owner, const char* name, const std::string& reason) {
    throw std::logic_error("the setting \"" + std::string(name) + "\" of the object \"" +
                           owner.getName() + "\": " + reason);
}

void throwNotAllowed(const SettingsBase& owner, const ConfigurationValueBase& value,
                     const ConfigurationValueBase* refused) {
    throw std::out_of_range(
        pathOf(&owner) + value.getName() + " cannot be " +
        (refused == nullptr ? "an enumerator without a text" : exactTextOf(*refused)) +
        ": it must be " + value.getConstraint().describe());
}

} // namespace Orvant
