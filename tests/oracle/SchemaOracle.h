#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Orvant::Support {

/// One element of a schema with what the schema service keeps of it.
struct SchemaNode {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::vector<SchemaNode> children;
    std::string text;
};

/// What the schema service must answer, found by the plainest means: the file's lines rewritten as
/// text, a Xerces DOM of them cut down by one table, and filters that walk the whole of it.
class SchemaOracle {
public:
    using Names = std::set<std::string>;

    /// @param file     bytes of a schema file
    /// @param sanitise whether it is one of the suite or one in the reader's namespace
    /// @throws ConfigException as XsdConfigReader::readXSD() does
    SchemaOracle(const std::string& file, bool sanitise);

    void keepElements(const Names& names);
    void keepChildElement(const std::string& typeName, const Names& names);
    void keepChildAttributes(const std::string& typeName, const Names& names);

    /// @return types and root elements, a line for each thing
    std::string tree() const;
    /// @return the file that is written
    std::string written(bool fixOutput) const;

    /// @return names of the declared types
    Names declared() const;
    /// @return those of these types that children, attributes, bases and root elements name
    Names namedOf(const Names& types) const;
    /// @return whether some filter removed the first types, whatever needs them
    bool tookFirstTypes() const { return m_tookFirstTypes; }

private:
    void removeTypesBut(const Names& kept);
    /// Removes optional children and root elements of types that are no longer declared.
    void removeUses(const Names& declaredBefore);

    SchemaNode m_schema;
    bool m_tookFirstTypes = false;
};

/// @return an XML document as a parser that knows namespaces sees it, a line for each element; what
///         indents it is left out
std::string describeDocument(const std::string& bytes);

} // namespace Orvant::Support
