#include "catalogue/ExplainedSettings.h"

#include "Ordering.h"
#include "catalogue/KeyedEntries.h"

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SettingVisitor.h>

#include <optional>
#include <unordered_map>
#include <utility>

namespace Orvant::Tool {

namespace {

using ItemsByPath = std::unordered_map<std::string, std::vector<std::string>>;

std::string stepOf(const std::string& name, const std::optional<std::string>& key) {
    return key ? name + '[' + *key + ']' : name;
}

/// Collects the lists of an object.
class ListCollector : public SettingVisitor {
public:
    ListCollector(const std::string& path, ItemsByPath& lists) : m_paths{path}, m_lists(lists) {}

    void visitValue(ConfigurationValueBase& value) override {
        if (value.getValueType() == ConfigurationValueBase::StringVectorValue)
            m_lists.try_emplace(m_paths.back() + '/' + value.getName(), textsOf(value));
    }
    bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key) override {
        m_paths.push_back(m_paths.back() + '/' + stepOf(child.getName(), key));
        return true;
    }
    void leaveObject(ConfigurationObject& /*child*/) override { m_paths.pop_back(); }

private:
    std::vector<std::string> m_paths;
    ItemsByPath& m_lists;
};

ItemsByPath listsOf(const ConfigurationManager& manager) {
    ItemsByPath lists;
    for (const auto& [object, name, key] : manager.getRegistrations()) {
        ListCollector collector(stepOf(name, key), lists);
        visitSettings(*object, collector);
    }
    return lists;
}

} // namespace

std::vector<ExplainedSetting> explainAll(const ConfigurationCatalogue& catalogue,
                                         ConfigurationManager& manager) {
    const DefaultEntries defaultEntries(catalogue, manager, false);
    ItemsByPath lists = listsOf(manager);
    std::unordered_map<std::string, std::size_t> positions;
    for (const ConfigurationCatalogueEntry& entry : catalogue.getEntries())
        positions.emplace(entry.object.name, positions.size());
    std::vector<ExplainedSetting> settings;
    for (ConfigurationOrigin& origin : manager.explain()) {
        std::vector<std::string> items = std::move(lists[origin.path]);
        origin.path = defaultEntries.pathOf(origin.path);
        origin.lockedBy = defaultEntries.pathOf(origin.lockedBy);
        settings.push_back({std::move(origin), std::move(items)});
    }
    return orderedBy(std::move(settings), [&](const ExplainedSetting& setting) {
        const std::string& path = setting.origin.path;
        return positions[path.substr(0, path.find_first_of("[/"))];
    });
}

} // namespace Orvant::Tool
