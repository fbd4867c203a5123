#include "catalogue/KeyedEntries.h"

#include <ConfigurationFramework/ConfigurationObject.h>

#include <memory>
#include <set>
#include <utility>

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

DefaultEntries::DefaultEntries(const ConfigurationCatalogue& catalogue,
                               ConfigurationManager& manager, bool ofAllKinds) {
    for (const auto& [object, isKeyed] : catalogue.getEntries()) {
        if (!isKeyed || (!ofAllKinds && !manager.getKeys(object.name).contains("")))
            continue;
        const std::string key = keyOfNone(manager, object.name);
        registerEntry(manager, object, key);
        m_names.emplace(object.name + '[' + key + ']', object.name);
    }
}

std::string DefaultEntries::pathOf(const std::string& path) const {
    const std::size_t end = path.find(']');
    const auto found =
        end == std::string::npos ? m_names.end() : m_names.find(path.substr(0, end + 1));
    return found == m_names.end() ? path : found->second + path.substr(end + 1);
}

} // namespace Orvant::Tool
