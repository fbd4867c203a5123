#pragma once

#include "generating/Markup.h"

#include <ConfigurationFramework/ConfigurationDescription.h>

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Orvant::Tool {

/// The types of texts in an XML Schema: those that a load takes whole.
class SchemaTypes {
public:
    /// Adds the types that every schema has.
    /// @param markup the schema, which must outlive this
    explicit SchemaTypes(MarkupText& markup);

    /// Attribute that locks, and one where a lock has no effect.
    /// @{
    static constexpr const char* lock = "Lock";
    static constexpr const char* noLock = "NoLock";
    /// @}

    /// Adds the type of a value's text, of a list that of an item's, unless there is one.
    /// @return its name
    std::string add(const ConfigurationValueDescription& value);

private:
    MarkupText& m_markup;
    std::unordered_map<std::string, std::string> m_names; ///< of types that values have, by facets
    std::unordered_set<std::string> m_taken;
};

} // namespace Orvant::Tool
