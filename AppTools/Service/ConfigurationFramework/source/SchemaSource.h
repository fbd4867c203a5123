#pragma once

#include <ConfigurationFramework/schema/SchemaDialect.h>
#include <ConfigurationFramework/source/ModelClass.h>
#include <ConfigurationFramework/source/SchemaReferences.h>
#include <ConfigurationFramework/source/SourceDocument.h>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant {

/// A schema file that was read, beside the schema document model that was made of it: which of its
/// elements the model holds, and as what. Parsed only when somebody asks for more than the bytes.
class SchemaSource {
public:
    using Index = SourceDocument::Index;

    /// @param bytes the file, which the model has been made of
    SchemaSource(std::string bytes, SchemaDialect dialect);

    const std::string& bytes() const { return m_bytes; }
    SchemaDialect dialect() const { return m_dialect; }

    /// Parses the file unless that is done. Call it before the rest.
    /// @return false when the file is well-formed only once it is rewritten
    bool parse() const;
    const SourceDocument& document() const { return *m_document; }
    const SchemaReferences& references() const { return *m_references; }

    /// @return what the model holds an element or its text as; None for what it does not hold
    ModelClass modelClass(Index node) const { return m_classes[node]; }
    /// @return the children of an element that the model holds as this
    std::vector<Index> children(Index element, ModelClass modelClass) const;
    /// @return the first of these, or SourceDocument::none
    Index child(Index element, ModelClass modelClass) const;
    /// @return an attribute as the model has been given it, whether it holds it or not
    std::optional<std::string> attribute(Index element, std::string_view name) const;

private:
    void parseOnce() const;
    bool pairWithRewritten() const;
    void classify() const;
    ModelClass memberOf(Index parent, Index child, std::uint32_t& seen) const;
    bool isForModel(Index element) const;

    std::string m_bytes;
    SchemaDialect m_dialect;
    // Made by the first parse().
    mutable std::once_flag m_parsed;
    mutable std::optional<SourceDocument> m_document;
    mutable std::optional<SchemaReferences> m_references;
    mutable std::optional<SourceDocument> m_rewritten; ///< of a file of the suite
    mutable std::vector<Index> m_inRewritten; ///< the elements there, by those of the document
    mutable std::vector<ModelClass> m_classes;
    mutable std::string m_targetNamespace;
    mutable bool m_isUsable = false;
};

} // namespace Orvant
