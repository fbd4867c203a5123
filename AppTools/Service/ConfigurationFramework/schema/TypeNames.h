#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// The names of types as any schema writes them.
namespace Orvant::TypeNames {

/// @return the namespace that a prefix stands for, empty for none; nothing when it is not declared
using Resolver = std::function<std::optional<std::string_view>(std::string_view prefix)>;

/// @return prefix, without the colon, empty if there is none; and what follows it
struct Parts {
    std::string_view prefix;
    std::string_view local;
};
Parts parts(std::string_view name);

/// @return the name as the suite writes it: those of the schema's own types without a prefix, those
///         of XML Schema's with xs:, others as they are, but as {NAMESPACE}NAME where they would
///         look like one of these
std::string inSuite(std::string_view name, std::string_view targetNamespace,
                    const Resolver& nameSpaceOf);

/// @return a name without the white space around it, which is not part of names in XML Schema
std::string collapsed(std::string_view name);

/// @return whether the value of an attribute of a schema is the name of a type
bool isTypeName(std::string_view attribute);

} // namespace Orvant::TypeNames
