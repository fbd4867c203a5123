#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct _xmlSchema;

namespace Orvant::Support {

/// A schema as libxml2 takes it, which xmllint is made of.
class CompiledSchema {
public:
    /// @param text what the file is to hold, whatever it does
    /// @return nothing when it is no valid schema
    static std::optional<CompiledSchema> compile(const std::filesystem::path& file,
                                                 const std::string& text);

    bool accepts(const std::string& document) const;

private:
    explicit CompiledSchema(std::shared_ptr<_xmlSchema> schema) : m_schema(std::move(schema)) {}

    std::shared_ptr<_xmlSchema> m_schema;
};

bool isWellFormed(const std::string& document);

/// Local names that a document uses.
struct UsedNames {
    std::string rootNamespace;
    std::string root;
    std::set<std::string> elements;
    std::set<std::string> attributes;
    std::set<std::string> types; ///< what xsi:type names
};
/// @return nothing when it is not well-formed
std::optional<UsedNames> namesUsedBy(const std::string& document);

/// @return the document with one thing changed in each: an element renamed, removed, doubled, with
///         another text, with an attribute more or less
std::vector<std::string> mutantsOf(const std::string& document);

/// @return a well-formed schema as a file of the suite: each tag on a line of its own, the prefix
///         xs:, names of its own types without one, nothing of what annotates it
std::string inSuiteDialect(const std::string& schema);

} // namespace Orvant::Support
