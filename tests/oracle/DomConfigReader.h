#pragma once

#include <ConfigurationFramework/ConfigReader.h>

#include <memory>

namespace Orvant::Support {

/// A reader over a plain Xerces DOM that does what readers promise in the most literal way, to
/// compare the library's own reader with.
class DomConfigReader : public ConfigReader {
public:
    /// @throws std::runtime_error when the parser reports an error
    explicit DomConfigReader(const std::string& document);
    ~DomConfigReader() override;

    ConfigurationAccessResult setCurrentNode(const std::string& name);
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);
    ConfigurationAccessResult getString(std::string& value, bool& editable);
    std::string version() const;

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
    struct Dom;
    std::unique_ptr<Dom> m_dom;
};

} // namespace Orvant::Support
