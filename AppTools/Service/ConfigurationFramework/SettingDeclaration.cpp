#include <ConfigurationFramework/SettingDeclaration.h>

#include <ConfigurationFramework/SettingsBase.h>
#include <ConfigurationFramework/ValueText.h>

namespace Orvant {

namespace {

/// The path of an object from the outermost one on, as far as these have names.
std::string pathOf(const ConfigurationObject* object) {
    std::string path;
    for (; object != nullptr; object = object->getParent())
        if (!object->getName().empty())
            path.insert(0, object->getName() + '/');
    return path;
}

} // namespace

void throwBadDeclaration(const SettingsBase& owner, const char* name, const std::string& reason) {
    throw std::logic_error("the setting \"" + std::string(name) + "\" of the object \"" +
                           owner.getName() + "\": " + reason);
}

void throwNotAllowed(const SettingsBase& owner, const ConfigurationValueBase& value,
                     const ConfigurationValueBase& refused) {
    throw std::out_of_range(pathOf(&owner) + value.getName() + " cannot be " + textOf(refused) +
                            ": it must be " + value.getConstraint().describe());
}

} // namespace Orvant
