#pragma once

#include <ConfigurationFramework/losses/WrittenSchema.h>
#include <ConfigurationFramework/source/SchemaReferences.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvant {

/// What it means for documents that an element or attribute of a schema is not written.
class LossEffects {
public:
    using Index = SourceDocument::Index;

    explicit LossEffects(const WrittenSchema& schema);

    /// @return one of the effects of XsdLoss
    const char* ofElement(Index element) const;
    const char* ofAttribute(Index element, std::string_view attribute) const;

    /// @return what it means that the schema has no such attribute, but the one that is written
    ///         has; null when it means nothing
    const char* ofAbsence(std::string_view attribute) const;

private:
    const char* inSchema(Index element) const;
    const char* ofAttributes(Index element) const;
    const char* ofFacet(Index facet) const;
    const char* ofInlineType(Index type) const;
    bool isRivalOfRoot(Index element) const;
    const char* ofDefinition(Index definition, const char* effect) const;
    bool isAnyType(Index element) const;
    void findRivals();
    void findInherited();
    bool losesAttributes(Index type) const;
    bool takesEmpty(Index type) const;
    bool normalisesListed(Index whiteSpace) const;

    const char* ofSchemaAttribute(std::string_view attribute, const std::string& value) const;
    const char* ofElementAttribute(Index element, std::string_view attribute,
                                   const std::string& value) const;
    const char* ofOccurrence(Index group, std::string_view attribute,
                             const std::string& value) const;
    const char* ofFixedOrDefault(Index element, const char* otherwise) const;
    const char* ofSubstitution(Index element) const;
    bool hasNamed(ModelClass modelClass) const;

    const WrittenSchema& m_schema;
    const SchemaReferences& m_references;
    /// Elements by their own name and that in their ref.
    std::map<std::pair<std::string, std::string>, std::vector<Index>> m_referring;
    std::map<std::string, std::string> m_rootTypes; ///< of the root elements that are written
    bool m_hasAnyType = false;                      ///< some element is that, see isAnyType()
    // By nodes:
    std::vector<bool> m_takesRivals;     ///< see findRivals()
    std::vector<bool> m_lists;           ///< a restriction has values that are written
    std::vector<bool> m_losesAttributes; ///< a type or a base of it does
    std::vector<bool> m_refusesEmpty;    ///< likewise
    std::vector<bool> m_listed;          ///< see findInherited()
};

} // namespace Orvant
