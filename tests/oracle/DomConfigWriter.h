#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A writer on a plain Xerces DOM that does what the writer promises in the most literal way, to
/// compare the library's own with. As that one can only be asked by objects, it walks them itself.
class DomConfigWriter {
public:
    enum class From { Version, Document };

    /// @param text version of a new document, or the document
    DomConfigWriter(From from, const std::string& text);
    DomConfigWriter(const DomConfigWriter&) = delete;
    DomConfigWriter& operator=(const DomConfigWriter&) = delete;
    ~DomConfigWriter();

    void createNode(const std::string& name, const std::string& comment);
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment);
    void createNodeAndMakeCurrent(const std::string& name, const std::string& comment);
    void createKeyedNodeAndMakeCurrent(const std::string& name, const std::string& key,
                                       const std::string& comment);
    ConfigurationAccessResult setCurrentNode(const std::string& name);
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);
    void deleteNodes(const std::string& name, const std::string& key);

    void putString(const std::string& name, const std::string& value, const std::string& comment);
    void putString(const std::string& value);
    void putInt(const std::string& name, int value, const std::string& comment);
    void putUnsignedInt(const std::string& name, unsigned int value, const std::string& comment);
    void putFloat(const std::string& name, float value, const std::string& comment);
    void putDouble(const std::string& name, double value, const std::string& comment);
    void putBool(const std::string& name, bool value, const std::string& comment);
    void putStringVector(const std::string& name, const std::vector<std::string>& values,
                         const std::string& comment);
    void putValue(const std::string& name, float value, int format, const std::string& comment);
    void putValue(const std::string& name, double value, int format, const std::string& comment);

    void putClassContents(const ConfigurationObject& object);
    void putClassContents(const std::string& name, const ConfigurationObject& object,
                          const std::string& comment);
    void putClassContents(const std::string& name, const std::string& key,
                          const ConfigurationObject& object, const std::string& comment);
    void putOnlyDifferentClassContents(const std::string& name, const ConfigurationObject& object,
                                       ConfigReader& reader, const std::string& comment);
    void putOnlyDifferentClassContents(const std::string& name, const std::string& key,
                                       const ConfigurationObject& object, ConfigReader& reader,
                                       const std::string& comment);

    std::string getAsString();

private:
    struct Dom;

    void put(const ConfigurationValueBase& value);
    void putDifferences(const ConfigurationObject& object, const ConfigurationObject* reference);
    void putChildDifferences(const ConfigurationObject& child,
                             const ConfigurationObject* reference);
    void keepListsReadable(const ConfigurationObject& object);

    std::unique_ptr<Dom> m_dom;
};

/// @return an XML document as a parser sees it, a line for each node. What indents it is left out:
///         in an element that holds elements or instructions, the line break at the end of each
///         text with the blanks around it.
std::string describeConfiguration(const std::string& document);

} // namespace Orvant::Support
