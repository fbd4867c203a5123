#include <ConfigurationFramework/schema/StartTagProblem.h>

#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaNamespaces.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvant {

namespace {

using Attribute = std::pair<std::string, std::string>;
using Attributes = std::vector<Attribute>;

std::string quoted(std::string_view text) {
    return std::string("\"").append(text).append("\"");
}

std::string schemaOf(std::string_view nameSpace) {
    return "\"schema\" of the namespace " + quoted(nameSpace);
}

/// The element with its namespace, as people are told of it.
std::string elementOf(const RootTag& tag) {
    const std::string nameSpace = tag.nameSpace();
    return "the root element is " + quoted(tag.name) + " of " +
           (nameSpace.empty() ? "no namespace" : "the namespace " + quoted(nameSpace));
}

bool isDraft(const RootTag& tag) {
    const std::string nameSpace = tag.nameSpace();
    return nameSpace == "http://www.w3.org/1999/XMLSchema" ||
           nameSpace == "http://www.w3.org/2000/10/XMLSchema";
}

bool isXmlSchema(const RootTag& tag) {
    return tag.localName() == "schema" && tag.nameSpace() == SchemaNamespaces::xmlSchema;
}

auto find(const Attributes& attributes, const std::string& name) {
    return std::ranges::find(attributes, name, &Attribute::first);
}

/// @return those of the names that the others have, too
std::vector<std::string> commonNames(const Attributes& attributes, const Attributes& others) {
    std::vector<std::string> names;
    for (const auto& [name, value] : attributes)
        if (find(others, name) != others.end())
            names.push_back(name);
    return names;
}

/// What differs from the attributes of a suite file's start tag.
std::vector<std::string> differencesOfAttributes(const Attributes& given) {
    const Attributes wanted =
        LineRewriting::suiteAttributes(find(given, "xmlns:ov") != given.end());
    std::vector<std::string> differences;
    for (const auto& [name, value] : wanted) {
        const auto attribute = find(given, name);
        if (attribute == given.end())
            differences.push_back(name + " is missing");
        else if (attribute->second != value)
            differences.push_back(name + " is " + quoted(attribute->second) + ", not " +
                                  quoted(value));
    }
    for (const auto& [name, value] : given)
        if (find(wanted, name) == wanted.end())
            differences.push_back(name + " must not be there");
    if (commonNames(given, wanted) != commonNames(wanted, given))
        differences.emplace_back("the attributes are in another order");
    return differences;
}

/// What differs in layout from a tag of the same name with the same attributes.
std::vector<std::string> differencesOfLayout(const RootTag& tag) {
    std::vector<std::string> differences;
    const std::string_view text = tag.text;
    const bool isEmpty = text.ends_with("/>");
    const auto has = [&text](std::string_view characters) {
        return text.find_first_of(characters) != std::string_view::npos;
    };
    if (isEmpty)
        differences.emplace_back("it ends with \"/>\", not with \">\"");
    if (has("\r\n"))
        differences.emplace_back("it is not on one line");
    if (has("'"))
        differences.emplace_back("values are not in double quotes");
    if (has("&"))
        differences.emplace_back("values are given by references");
    // In other encodings, what is not ASCII differs from the values.
    const bool isAscii = std::ranges::all_of(text, [](unsigned char c) { return c < 0x80; });
    if (isAscii && !has("\r\n'&") && text != LineRewriting::startTag(tag.name, tag.attributes) &&
        !(isEmpty && text.ends_with("\"/>")))
        differences.emplace_back("blanks are not just one before each attribute");
    return differences;
}

std::string join(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts)
        joined += (joined.empty() ? "" : "; ") + part;
    return joined;
}

std::string describeSuiteTag(const RootTag& tag) {
    std::vector<std::string> differences;
    if (tag.name != "xs:schema")
        differences.push_back("it is <" + tag.name + ">, not <xs:schema>");
    std::ranges::move(differencesOfAttributes(tag.attributes), std::back_inserter(differences));
    std::ranges::move(differencesOfLayout(tag), std::back_inserter(differences));
    if (differences.empty())
        differences.emplace_back("the same text stands before it on its line");
    return "the start tag is not that of a file of the suite: " + join(differences) +
           ". readXSD(true) wants " + LineRewriting::suiteHeader(true) +
           " on one line, or without ov: " + LineRewriting::suiteHeader(false) +
           (isXmlSchema(tag) ? ". readAnyXSD() reads a schema whatever its start tag is" : "");
}

} // namespace

bool isSchemaTag(const RootTag& tag, SchemaDialect dialect) {
    return tag.localName() == "schema" &&
           (tag.nameSpace() == SchemaNamespaces::reader ||
            (dialect == SchemaDialect::Any && tag.nameSpace() == SchemaNamespaces::xmlSchema));
}

std::string describeStartTag(const RootTag& tag, SchemaDialect dialect) {
    if (isDraft(tag))
        return elementOf(tag) + ", an earlier draft of XML Schema, which is not read; wanted is " +
               quoted(SchemaNamespaces::xmlSchema);
    if (dialect == SchemaDialect::Reader)
        return elementOf(tag) + "; readXSD(false) wants " + schemaOf(SchemaNamespaces::reader) +
               (isXmlSchema(tag)
                    ? ". readXSD(true) reads a file of the suite, readAnyXSD() any schema"
                    : "");
    if (dialect == SchemaDialect::Suite && tag.localName() == "schema")
        return describeSuiteTag(tag);
    return elementOf(tag) + ", which is no schema; wanted is " +
           schemaOf(SchemaNamespaces::xmlSchema);
}

} // namespace Orvant
