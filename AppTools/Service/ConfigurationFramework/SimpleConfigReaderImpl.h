#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/reading/ParsedDocument.h>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant {

class ConfigReader;
class ConfigurationObject;
class FileName;

/// The parsed document of a SimpleConfigReader and its current node. The operations are those of
/// the reader; objects are loaded through `reader`, the reader that owns this.
class SimpleConfigReaderImpl {
public:
    /// @param bytes receives those of a file; null: they are not kept
    SimpleConfigReaderImpl(ConfigReader& reader, const FileName& file, const std::string& content,
                           const std::list<std::string>& validVersions,
                           std::string* bytes = nullptr);
    /// Reads a document once more.
    SimpleConfigReaderImpl(ConfigReader& reader, std::shared_ptr<ParsedDocument> document);

    /// @return the document, to be shared with other readers of the same thread
    const std::shared_ptr<ParsedDocument>& document() const { return m_document; }

    ConfigurationAccessResult setCurrentNode(const std::string& name);
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);

    ConfigurationAccessResult getBool(const std::string& name, bool& value, bool& editable);
    template <typename Number>
    ConfigurationAccessResult getNumber(const std::string& name, Number& value, bool& editable);
    ConfigurationAccessResult getString(std::string& value, bool& editable);
    ConfigurationAccessResult getString(const std::string& name, std::string& value,
                                        bool& editable);
    /// @param itemEditable null: not asked for
    ConfigurationAccessResult getStringVector(const std::string& name,
                                              std::vector<std::string>& values, bool& editable,
                                              std::map<std::string, bool>* itemEditable);

    ConfigurationAccessResult tagExists(const std::string& name);
    ConfigurationAccessResult getEditable(bool& editable);
    ConfigurationAccessResult getKeys(const std::string& name, std::set<std::string>& keys);

    /// What findAndGetClassContents() and getClassContents() load an object from; none: nothing.
    /// @{
    DocumentTree::Element findAnywhere(const std::string& name, const std::string& key);
    DocumentTree::Element findAnywhere(const std::string& name);
    DocumentTree::Element findChild(const std::string& name, const std::string& key);
    DocumentTree::Element findChild(const std::string& name);
    /// @}
    /// @return Failure for no element
    ConfigurationAccessResult loadFrom(DocumentTree::Element element, ConfigurationObject& object);
    ConfigurationAccessResult getClassContents(ConfigurationObject& object);
    ConfigurationAccessResult getClassContents(const std::string& name,
                                               const std::vector<std::string>& keys,
                                               std::vector<ConfigurationObject*>& objects);
    ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               const std::function<void(std::string)>& callback);

private:
    void init(const FileName& file, const std::string& content,
              const std::list<std::string>& validVersions, std::string* bytes);
    ConfigurationAccessResult makeCurrent(DocumentTree::Element element);
    std::optional<std::string_view> requiredText(const std::string& name, bool& editable);

    ConfigReader& m_reader;
    std::shared_ptr<ParsedDocument> m_document;
    DocumentTree* m_tree = nullptr; ///< of the document
    DocumentTree::Element m_current = DocumentTree::none;
};

} // namespace Orvant
