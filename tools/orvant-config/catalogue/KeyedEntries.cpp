#include "catalogue/KeyedEntries.h"

#include <ConfigurationFramework/ConfigurationObject.h>

namespace Orvant::Tool {

std::string keyOfNone(const ConfigurationManager& manager, const std::string& name) {
    const std::set<std::string> keys = manager.getKeys(name);
    std::string key = "*";
    while (keys.contains(key))
        key += '*';
    return key;
}

ConfigurationObject& registerEntry(ConfigurationManager& manager,
                                   const ConfigurationObjectDescription& kind,
                                   const std::string& key) {
    for (const auto& [object, name, registeredKey] : manager.getRegistrations()) {
        if (name != kind.name)
            continue;
        if (registeredKey == key)
            return *object;
        if (!registeredKey) { // nothing with a key can join it
            manager.removeConfigurationObject(name);
            break;
        }
    }
    const std::shared_ptr<ConfigurationObject> object = kind.makeObject();
    manager.addConfigurationObject(object, kind.name, key);
    return *object;
}

} // namespace Orvant::Tool
