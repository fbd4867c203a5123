#include <ConfigurationFramework/schema/TypeNames.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>

namespace Orvant::TypeNames {

Parts parts(std::string_view name) {
    const auto colon = name.find(':');
    if (colon == std::string_view::npos)
        return {{}, name};
    return {name.substr(0, colon), name.substr(colon + 1)};
}

std::string inSuite(std::string_view name, std::string_view targetNamespace,
                    const Resolver& nameSpaceOf) {
    const auto [prefix, local] = parts(name);
    const auto nameSpace = nameSpaceOf(prefix);
    if (local.empty())
        return std::string(name);
    if (nameSpace == targetNamespace) // which is that of XML Schema in its own schema
        return std::string(local);
    if (nameSpace == SchemaNamespaces::xmlSchema)
        return std::string("xs:").append(local);
    const bool looksOwn = prefix.empty() || prefix == "ov" || prefix == "xs";
    if (looksOwn && nameSpace && !nameSpace->empty())
        return std::string("{").append(*nameSpace).append("}").append(local);
    return std::string(name);
}

std::string collapsed(std::string_view name) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const auto first = name.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return std::string(name.substr(first, name.find_last_not_of(whiteSpace) - first + 1));
}

bool isTypeName(std::string_view attribute) {
    return attribute == "type" || attribute == "base";
}

} // namespace Orvant::TypeNames
