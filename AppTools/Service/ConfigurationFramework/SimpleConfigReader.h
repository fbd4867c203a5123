#pragma once

#include <ConfigurationFramework/ConfigReader.h>
#include <FileHandling/FileName.h>

#include <list>
#include <memory>

namespace Orvant {

struct ParsedDocument;
class SimpleConfigReaderImpl;

/// Reader of one XML configuration document, from a file or from a string.
///
/// @code
/// SimpleConfigReader reader("settings.xml", "", {"1.0", "1.1"});
/// reader.setCurrentNode("ViewSettings");
/// double zoom = 1.0;
/// bool editable = true;
/// reader.getDouble("Zoom", zoom, editable);
/// @endcode
///
/// The document: the root element is Configuration, with a version attribute. It holds an element
/// for each object, which holds one for each value and each child object. Objects with the same tag
/// are told apart by the key attribute; one without a key is the default entry of its tag. Values
/// are the text of their elements; lists of strings are "item" elements. The attribute
/// editable="false" locks an element.
///
/// Opening a document opens nothing else: external entities and DTDs resolve to nothing.
///
/// A document may be nested to any depth, but one designed to exhaust memory is a parse error, for
/// readers and ConfigWriter alike: neither takes more than 64 MiB plus 16 times the document's size
/// to open it. The limits, which no application's settings come near:
///   - 10,000 entity references, nested at most 32 deep; 10 million characters that they expand to
///     in content, and half a million in attributes and a DTD, where each counts as the longest
///     entity and the last does not count;
///   - 1,000 attributes per element, given or declared; 50,000 different tags, and as many
///     attribute names; 10,000 attributes of type ID; ten million name comparisons plus ten per
///     byte, which only names chosen to have the same hash reach;
///   - 4 MiB plus four times the document's size for a DTD: a few thousand declarations;
///   - 52 MiB plus 14 times the document's size for a DOM of the document. An element counts as 208
///     bytes, an attribute as 304 (a default attribute twice), a text, comment or instruction as
///     160, a level of depth as 400, a new tag as 560, a character as two.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT SimpleConfigReader : public ConfigReader {
public:
    /// Parses and checks a document; the current node is then its root.
    /// @param file          file to read; if empty, `content` is the document
    /// @param content       document in memory, up to its first NUL; ignored when there is a file
    /// @param validVersions accepted values of the root's version attribute (an absent one is "")
    /// @throws ConfigException of type
    ///   - SourceNotFound: no such file, or neither file nor content;
    ///   - InvalidDocument: not a readable file, an XML version other than 1.0 and 1.1, a document
    ///     type whose name has two colons, or the root is not Configuration;
    ///   - ParserReportedErrors: not well-formed, or beyond the limits above;
    ///   - InvalidVersion: the version is not accepted
    SimpleConfigReader(const FileName& file, const std::string& content,
                       const std::list<std::string>& validVersions);
    ~SimpleConfigReader() override;

    /// Makes the first child of that name the current node. There is no way back up.
    /// @return Failure when there is none; the current node is then unchanged
    ConfigurationAccessResult setCurrentNode(const std::string& name);
    /// Makes the first child of that name and key the current node; if no child has the key, the
    /// last one of that name without a key, the default entry.
    /// @return Failure when there is neither; the current node is then unchanged
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);
    /// Reads the text of the current node itself.
    ConfigurationAccessResult getString(std::string& value, bool& editable);

    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      const std::string& key,
                                                      ConfigurationObject& object) override;
    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      ConfigurationObject& object) override;
    ConfigurationAccessResult getClassContents(ConfigurationObject& object) override;
    /// @copydoc ConfigReader::getClassContents(const std::string&, const std::vector<std::string>&,
    /// std::vector<ConfigurationObject*>&) Keys are matched exactly: the default entry stands in
    /// for none of them. Keys without an object count as not found.
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
    ConfigurationAccessResult getStrings(const std::string& name, std::vector<std::string>& values,
                                         bool& editable) override;

private:
    friend class AdvancedConfigReader; // which looks for an element before it loads from it
    friend class LayerDocument;        // which reads a document again without parsing it again

    /// @param bytes receives those of the file
    SimpleConfigReader(const FileName& file, const std::list<std::string>& validVersions,
                       std::string& bytes);
    explicit SimpleConfigReader(std::shared_ptr<ParsedDocument> document);

    std::unique_ptr<SimpleConfigReaderImpl> m_impl;
};

} // namespace Orvant
