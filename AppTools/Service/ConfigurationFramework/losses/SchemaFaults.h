#pragma once

#include <ConfigurationFramework/losses/AmbiguitySearch.h>
#include <ConfigurationFramework/losses/RevertibleNames.h>
#include <ConfigurationFramework/losses/WrittenSchema.h>

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvant {

/// What makes a schema that is written another one than was read, beyond what is lost: each fault
/// is laid at the loss, or at the part that is written elsewhere or otherwise, that brings it
/// about.
class SchemaFaults {
public:
    using Index = SourceDocument::Index;

    explicit SchemaFaults(const WrittenSchema& schema);

    /// @param attribute name of an attribute; empty for the node itself
    /// @return one of the effects of XsdLoss; null when there is no fault
    const char* effect(Index node, const std::string& attribute = {}) const;

private:
    using ByName = std::unordered_map<std::string, std::vector<Index>>;

    void checkNames(Index node);
    void checkName(Index node, const std::string& attribute);
    const char* effectOfOtherName(Index node, const WrittenSchema::Name& meant,
                                  const WrittenSchema::Name& written) const;
    void blamePrefix(Index node, const std::string& name);
    void checkQualifiedValues(Index restriction);
    void checkOrder(Index element, ModelClass earlier, ModelClass later, ModelClass blamed);
    void checkTypes();
    void enterContent(Index type);
    void checkMixed(Index type);
    void checkRestriction(Index type);
    void checkRestrictedContent(Index restriction, Index base);
    void blameOptional(Index group);
    void checkRestrictedAttribute(Index attribute, Index base);
    void blame(Index node, const std::string& attribute, const char* effect);
    void blameAll(ByName& nodes, const std::string& name);
    void blameLost(Index element, std::string_view name);

    const WrittenSchema& m_schema;
    ByName m_imports; ///< by namespace
    ByName m_notations;
    AmbiguitySearch m_content;    ///< of the bases of the type that is checked
    RevertibleNames m_attributes; ///< likewise: the nodes
    // Of types, by their nodes:
    std::vector<bool> m_needsContent;        ///< it takes no element without content
    std::vector<bool> m_blamedForContent;    ///< it and its bases were, see blameOptional()
    std::vector<bool> m_blamedForAttributes; ///< likewise, for the attributes they lost
    bool m_needsIncludes = false;            ///< a type that is named is not in the file
    std::map<std::pair<Index, std::string>, const char*> m_effects;
};

} // namespace Orvant
