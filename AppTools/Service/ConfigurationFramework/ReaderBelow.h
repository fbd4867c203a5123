#pragma once

#include <ConfigurationFramework/ConfigReader.h>

#include <optional>

namespace Orvant {

/// What a child object asks for its reference in a difference save: a reader, perhaps of several
/// documents, positioned on the element of the child's parent. It also holds the child's reference,
/// which was loaded with the parent's.
///
/// Every operation runs while the outer reader loads an object from the parent's element, so that
/// documents are layered as in every load; if there is no such element, every operation fails.
class ReaderBelow : public ConfigReader {
public:
    /// @param outer     reader that the parent is compared with
    /// @param element   name under which the outer reader has the parent
    /// @param child     child that is to be saved
    /// @param reference what the child is compared with; null: everything differs
    ReaderBelow(ConfigReader& outer, const std::string& element, const ConfigurationObject& child,
                const ConfigurationObject* reference);
    /// For a child of a nameless object, which shares the element of its parent.
    ReaderBelow(const ReaderBelow& parent, const ConfigurationObject& child,
                const ConfigurationObject* reference);

    /// @return the reader as a ReaderBelow if it was made for the object, else null
    static const ReaderBelow* madeFor(const ConfigurationObject& object,
                                      const ConfigReader& reader);
    const ConfigurationObject* reference() const { return m_reference; }

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
    /// Moves only this reader: the outer one stays in place for what is saved after the child.
    ConfigurationAccessResult tagExists(const std::string& name) override;
    ConfigurationAccessResult getEditable(bool& editable) override;
    ConfigurationAccessResult getKeys(const std::string& name,
                                      std::set<std::string>& keys) override;
    ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               std::function<void(std::string)> callback) override;

private:
    using Operation = std::function<ConfigurationAccessResult(ConfigReader&)>;

    ConfigurationAccessResult ask(ConfigurationObject& object, const Operation& operation);
    ConfigurationAccessResult ask(const Operation& operation);

    ConfigReader& m_outer;
    std::string m_element;
    const ConfigurationObject& m_child;
    const ConfigurationObject* m_reference;
    std::optional<std::string> m_found; ///< what tagExists() moved to
    ConfigReader* m_source = nullptr;   ///< on the element, while an operation runs on it
};

} // namespace Orvant
