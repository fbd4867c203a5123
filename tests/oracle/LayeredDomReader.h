#pragma once

#include "DomConfigReader.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>

namespace Orvant::Support {

/// Readers of a plain DOM in layers, which does what the layered reader promises in the most
/// literal way, to compare the library's own with.
class LayeredDomReader : public ConfigReader {
public:
    /// @param nodePath as for AdvancedConfigReader
    /// @return Failure when there is no such path; the sources are then as they were
    ConfigurationAccessResult addSource(const std::string& document,
                                        const std::list<std::string>& nodePath,
                                        AdvancedConfigReader::Priority priority);

    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      const std::string& key,
                                                      ConfigurationObject& object) override;
    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      ConfigurationObject& object) override;
    ConfigurationAccessResult getClassContents(ConfigurationObject& object) override;
    ConfigurationAccessResult getClassContents(const std::string& name,
                                               const std::vector<std::string>& keys,
                                               std::vector<ConfigurationObject*>& objects) override;
    ConfigurationAccessResult getClassContents(const std::string& name, const std::string& key,
                                               ConfigurationObject& object) override;
    ConfigurationAccessResult getClassContents(const std::string& name,
                                               ConfigurationObject& object) override;
    ConfigurationAccessResult getBool(const std::string& name, bool& value,
                                      bool& editable) override;
    ConfigurationAccessResult getInt(const std::string& name, int& value, bool& editable) override;
    ConfigurationAccessResult getUnsignedInt(const std::string& name, unsigned int& value,
                                             bool& editable) override;
    ConfigurationAccessResult getDouble(const std::string& name, double& value,
                                        bool& editable) override;
    ConfigurationAccessResult getDoubleScientific(const std::string& name, const int& precision,
                                                  double& value, bool& editable) override;
    ConfigurationAccessResult getFloat(const std::string& name, float& value,
                                       bool& editable) override;
    ConfigurationAccessResult getString(const std::string& name, std::string& value,
                                        bool& editable) override;
    ConfigurationAccessResult getStringVector(const std::string& name,
                                              std::vector<std::string>& values, bool& editable,
                                              std::map<std::string, bool>& itemEditable) override;
    ConfigurationAccessResult tagExists(const std::string& name) override;
    ConfigurationAccessResult getEditable(bool& editable) override;
    ConfigurationAccessResult getKeys(const std::string& name,
                                      std::set<std::string>& keys) override;
    ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               std::function<void(std::string)> callback) override;

private:
    template <typename Operation>
    ConfigurationAccessResult askAll(Operation operation);
    template <typename Operation>
    ConfigurationAccessResult load(ConfigurationObject& object, Operation operation);

    std::map<int, std::shared_ptr<DomConfigReader>> m_sources;
};

} // namespace Orvant::Support
