#pragma once

#include <ConfigurationFramework/ConfigReader.h>
#include <FileHandling/FileName.h>

#include <cstdint>
#include <list>
#include <memory>

namespace Orvant {

class SimpleConfigReader;

/// Reads several configuration documents as one, layered by priority.
///
/// @code
/// AdvancedConfigReader reader;
/// reader.addFileSource("system.xml", {}, AdvancedConfigReader::System, {"1.0"});
/// reader.addFileSource("user.xml", {}, AdvancedConfigReader::User, {"1.0"});
/// reader.getClassContents("ViewSettings", viewSettings);
/// @endcode
///
/// Values are read from every source in ascending priority, so the highest-priority source that
/// holds the element decides. An object is loaded from the system document and then from the
/// user's, which cannot change what the system document locks.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT AdvancedConfigReader : public ConfigReader {
public:
    /// Rank of a source. There is at most one source of each rank.
    enum Priority : std::int32_t {
        Default = 0, ///< consulted first
        System = 1,  ///< the administrator's document
        User = 2     ///< the user's document, consulted last
    };

    AdvancedConfigReader();
    ~AdvancedConfigReader() override;

    /// Adds a file as a source, replacing the one that has the same priority.
    /// @param file          file to read
    /// @param nodePath      names of the elements that lead down from the root to the source's
    ///                      first current node; empty: the root
    /// @param priority      rank of the source
    /// @param validVersions versions of the document that are accepted
    /// @return Failure when there is no such file or path or the document is refused; the sources
    ///         are then unchanged
    ConfigurationAccessResult addFileSource(const FileName& file,
                                            const std::list<std::string>& nodePath,
                                            Priority priority,
                                            const std::list<std::string>& validVersions);
    /// Adds a document in memory as a source. Otherwise like addFileSource().
    ConfigurationAccessResult addStringSource(const std::string& content,
                                              const std::list<std::string>& nodePath,
                                              Priority priority,
                                              const std::list<std::string>& validVersions);

    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      const std::string& key,
                                                      ConfigurationObject& object) override;
    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      ConfigurationObject& object) override;
    /// Loads an object from the current node of the highest-priority source only.
    ConfigurationAccessResult getClassContents(ConfigurationObject& object) override;
    /// @copydoc ConfigReader::getClassContents(const std::string&, const std::vector<std::string>&,
    /// std::vector<ConfigurationObject*>&) Each object is loaded as by getClassContents() with its
    /// key. Keys without an object count as not found.
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
    /// @copydoc ConfigReader::getStringVector
    /// Every source clears the outputs: a list that the highest-priority source lacks reads as
    /// empty.
    ConfigurationAccessResult getStringVector(const std::string& name,
                                              std::vector<std::string>& values, bool& editable,
                                              std::map<std::string, bool>& itemEditable) override;
    /// Moves the current node of every source that holds the element.
    ConfigurationAccessResult tagExists(const std::string& name) override;
    /// Asks the sources Default and System only: a user's document locks nothing.
    ConfigurationAccessResult getEditable(bool& editable) override;
    /// Adds the keys of all sources.
    ConfigurationAccessResult getKeys(const std::string& name,
                                      std::set<std::string>& keys) override;
    /// Calls back for the keys of every source: a key that two of them hold is reported twice.
    ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               std::function<void(std::string)> callback) override;

private:
    friend class LayerDocument; // which keeps what the sources hold

    ConfigurationAccessResult addSource(const FileName& file, const std::string& content,
                                        const std::list<std::string>& nodePath, Priority priority,
                                        const std::list<std::string>& validVersions);
    template <typename Operation>
    ConfigurationAccessResult askAll(Operation operation);
    template <typename Find>
    ConfigurationAccessResult loadLayered(ConfigurationObject& object, Find find);
    template <typename Find>
    bool isInUserDocument(Find find) const;
    void integerateUserWithSystemConfig(Priority priority, ConfigurationObject& object,
                                        std::unique_ptr<ConfigurationObject>& systemCopy);

    std::map<Priority, std::shared_ptr<SimpleConfigReader>> m_sources;
};

} // namespace Orvant
