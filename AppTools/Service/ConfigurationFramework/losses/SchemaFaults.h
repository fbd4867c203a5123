#pragma once

#include <ConfigurationFramework/losses/WrittenSchema.h>

#include <map>
#include <string>
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
    void checkNames(Index node);
    void checkName(Index node, const std::string& attribute);
    const char* effectOfOtherName(Index node, const WrittenSchema::Name& meant,
                                  const WrittenSchema::Name& written) const;
    void blamePrefix(Index node, const std::string& name);
    void checkQualifiedValues(Index restriction);
    void checkOrder(Index element, ModelClass earlier, ModelClass later, ModelClass blamed);
    void checkContent(Index type);
    void checkMixed(Index type);
    void checkRestriction(Index type);
    void checkRestrictedContent(Index restriction, Index base);
    void blameOptional(Index group);
    void checkRestrictedAttribute(Index attribute, const std::vector<Index>& bases);
    void blame(Index node, const std::string& attribute, const char* effect);
    void blameLost(Index element, std::string_view name);

    const WrittenSchema& m_schema;
    std::vector<Index> m_imports;
    std::vector<Index> m_notations;
    bool m_needsIncludes = false; ///< a type that is named is not in the file
    std::map<std::pair<Index, std::string>, const char*> m_effects;
};

} // namespace Orvant
