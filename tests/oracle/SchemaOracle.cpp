#include "SchemaOracle.h"

#include <ConfigurationFramework/ConfigException.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <GeneralServices/XmlErrorHandler.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

namespace Orvant::Support {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using Names = SchemaOracle::Names;

const std::string readerNamespace = "http://www.orvant.com/OV_XsdReader";

// --- lines

std::string replacedOnce(std::string line, const std::string& from, const std::string& to) {
    if (const auto at = line.find(from); at != std::string::npos)
        line.replace(at, from.size(), to);
    return line;
}

/// @return where the tag that starts here is closed; npos when not on this line
std::size_t endOfTag(const std::string& line, std::size_t at) {
    for (char quote = '\0'; at < line.size(); ++at) {
        const char c = line[at];
        if (quote != '\0')
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>')
            return at;
    }
    return std::string::npos;
}

/// @return where the next tag opens; npos when there is none on this line. Comments, processing
///         instructions and CDATA sections hold no tags.
std::size_t nextTag(const std::string& line, std::size_t at) {
    for (at = line.find('<', at); at != std::string::npos; at = line.find('<', at)) {
        if (line.compare(at, 4, "<!--") == 0)
            at = line.find("-->", at);
        else if (line.compare(at, 9, "<![CDATA[") == 0)
            at = line.find("]]>", at);
        else if (line.compare(at, 2, "<?") == 0)
            at = line.find("?>", at);
        else
            break;
    }
    return at;
}

/// @return where the tags of a line open
std::vector<std::size_t> tagsOf(const std::string& line) {
    std::vector<std::size_t> tags;
    for (auto at = nextTag(line, 0); at != std::string::npos;) {
        tags.push_back(at);
        const auto end = endOfTag(line, at);
        at = end == std::string::npos ? end : nextTag(line, end);
    }
    return tags;
}

/// @return the line with the first prefix replaced, and with both tags of a text-only element as
///         alike as before: the end tag changes with the start tag or, when it is the line's only
///         tag, instead of the text before it
std::string withOtherPrefix(const std::string& line, const std::string& from,
                            const std::string& to) {
    const auto tags = tagsOf(line);
    const auto opens = [&line, &tags](std::size_t tag, const std::string& text) {
        return line.compare(tags[tag], text.size(), text) == 0;
    };
    if (tags.size() == 1 && opens(0, "</" + from))
        return line.substr(0, tags[0]) + replacedOnce(line.substr(tags[0]), from, to);
    const bool startsAnElement = tags.size() == 2 && opens(0, '<' + from) &&
                                 line.find(from) == tags[0] + 1 &&
                                 line[endOfTag(line, tags[0]) - 1] != '/';
    if (!startsAnElement)
        return replacedOnce(line, from, to);
    const auto nameOf = [&line](std::size_t at) {
        return line.substr(at, line.find_first_of(" \t\r/>", at) - at);
    };
    if (!opens(1, "</" + from) || nameOf(tags[0] + 1) != nameOf(tags[1] + 2))
        return replacedOnce(line, from, to);
    return replacedOnce(line.substr(0, tags[1]), from, to) +
           replacedOnce(line.substr(tags[1]), from, to);
}

std::string rewritten(const std::string& text,
                      const std::function<std::string(const std::string&)>& rewrite) {
    std::istringstream in(text);
    std::string result;
    for (std::string line; std::getline(in, line);)
        result += rewrite(line) + '\n';
    return result;
}

std::string header(const std::string& name, const std::string& attributes,
                   const std::string& schemaNamespace) {
    return '<' + name + " xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"" + attributes +
           " xmlns=\"" + schemaNamespace + "\" targetNamespace=\"" + schemaNamespace +
           "\" elementFormDefault=\"qualified\">";
}

const std::string suiteNamespace = "http://www.orvant.com/OV_QLV100";
const std::string suiteHeader =
    header("xs:schema", " xmlns:ov=\"" + suiteNamespace + '"', suiteNamespace);
const std::string suiteHeaderWithoutPrefix = header("xs:schema", "", suiteNamespace);
const std::string readerHeader =
    header("schema", " xmlns:ov=\"" + readerNamespace + '"', readerNamespace);

std::string lineForInput(std::string line) {
    line = replacedOnce(line, suiteHeader, readerHeader);
    line = replacedOnce(line, suiteHeaderWithoutPrefix, readerHeader);
    line = replacedOnce(line, "<xs:import/>", "");
    line = withOtherPrefix(line, "xs:", "");
    return withOtherPrefix(line, "ov:", "");
}

std::string lineForOutput(std::string line) {
    line = replacedOnce(line, "<p1:schema xmlns:p1=\"" + readerNamespace + "\">", suiteHeader);
    line = withOtherPrefix(line, "p1:", "xs:");
    line = replacedOnce(line, "type=\"int\"", "type=\"xs:int\"");
    line = replacedOnce(line, "type=\"double\"", "type=\"xs:double\"");
    line = replacedOnce(line, "type=\"string\"", "type=\"xs:string\"");
    line = replacedOnce(line, "base=\"anyType\"", "base=\"xs:anyType\"");
    return replacedOnce(line, "base=\"string\"", "base=\"xs:string\"");
}

// --- documents

/// Xerces-C++ from the first document to the program's end: starting it for each takes longer than
/// all the rest.
struct Xerces {
    Xerces() { xercesc::XMLPlatformUtils::Initialize(); }
    Xerces(const Xerces&) = delete;
    Xerces& operator=(const Xerces&) = delete;
    ~Xerces() { xercesc::XMLPlatformUtils::Terminate(); }
};

/// A document for as long as it is looked at.
class Document {
public:
    /// @throws ConfigException of type SourceNotFound when it is not well-formed
    explicit Document(const std::string& bytes) {
        static const Xerces xerces;
        m_parser = std::make_unique<xercesc::XercesDOMParser>();
        m_parser->setDoNamespaces(true);
        m_parser->setLoadExternalDTD(false);
        XmlErrorHandler errors;
        m_parser->setErrorHandler(&errors);
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes.data()),
                                                bytes.size(), "document");
        bool parsed = false;
        try {
            m_parser->parse(source);
            parsed = !errors.getSawErrors();
        } catch (const xercesc::XMLException&) {
        } catch (const xercesc::SAXException&) {
        } catch (const xercesc::DOMException&) {
        }
        m_parser->setErrorHandler(nullptr);
        if (!parsed)
            throw ConfigException(ConfigException::SourceNotFound);
    }

    const DOMElement& root() const { return *m_parser->getDocument()->getDocumentElement(); }

private:
    std::unique_ptr<xercesc::XercesDOMParser> m_parser;
};

std::string text(const XMLCh* characters) {
    return XercesHelperFunctions::xmlChToString(characters);
}

template <typename Action>
void forEachElement(const DOMElement& parent, Action action) {
    for (const DOMElement* child = parent.getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling())
        action(*child);
}

/// @return the text that is directly in an element
std::string ownText(const DOMNode& element) {
    std::string result;
    for (const DOMNode* child = element.getFirstChild(); child != nullptr;
         child = child->getNextSibling()) {
        const auto type = child->getNodeType();
        if (type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE)
            result += text(child->getNodeValue());
        else if (type == DOMNode::ENTITY_REFERENCE_NODE)
            result += ownText(*child);
    }
    return result;
}

void describe(const DOMElement& element, std::size_t depth, std::string& description) {
    description += std::string(depth * 2, ' ') + '{' + text(element.getNamespaceURI()) + '}' +
                   text(element.getLocalName());
    std::map<std::string, std::string> attributes;
    const xercesc::DOMNamedNodeMap& all = *element.getAttributes();
    for (XMLSize_t i = 0; i < all.getLength(); ++i)
        attributes[text(all.item(i)->getNodeName())] = text(all.item(i)->getNodeValue());
    for (const auto& [name, value] : attributes)
        description += ' ' + name + "=\"" + value + '"';
    if (text(element.getLocalName()) == "documentation")
        description += " [" + ownText(element) + ']';
    description += '\n';
    forEachElement(element,
                   [&](const DOMElement& child) { describe(child, depth + 1, description); });
}

// --- the schema in the document

struct Particle {
    std::string element;
    bool repeats;
    std::string construct;
};

struct Construct {
    std::vector<Particle> particles; ///< in the order in which they are written
    std::vector<std::string> attributes;
};

constexpr bool once = false;
constexpr bool repeated = true;
const Particle annotation = {"annotation", once, "annotation"};
const Particle sequence = {"sequence", once, "sequence"};
const Particle attributes = {"attribute", repeated, "attribute"};
const Particle elements = {"element", repeated, "element"};

const std::map<std::string, Construct> constructs = {
    {"schema",
     {{{"complexType", repeated, "complexType"},
       {"simpleType", repeated, "simpleType"},
       {"element", repeated, "rootElement"}},
      {}}},
    {"complexType",
     {{annotation,
       sequence,
       attributes,
       {"choice", once, "choice"},
       {"complexContent", once, "complexContent"}},
      {"name"}}},
    {"sequence", {{elements}, {}}},
    {"choice", {{elements}, {}}},
    {"element",
     {{{"complexType", once, "complexType"}, annotation},
      {"name", "type", "minOccurs", "maxOccurs"}}},
    {"attribute", {{annotation}, {"name", "use", "type"}}},
    {"complexContent",
     {{{"extension", once, "extension"}, {"restriction", once, "restriction"}}, {}}},
    {"extension", {{sequence, attributes}, {"base"}}},
    {"restriction", {{{"enumeration", repeated, "enumeration"}, attributes}, {"base"}}},
    {"enumeration", {{}, {"value"}}},
    {"annotation", {{{"documentation", once, "documentation"}}, {}}},
    {"documentation", {}},
    {"rootElement", {{}, {"name", "type"}}},
    {"simpleType", {{annotation, {"restriction", once, "restriction"}}, {"name"}}},
};

/// @return the decimal text of the 32-bit number that an attribute holds
/// @throws ConfigException of type SourceNotFound when it holds none
std::string numberText(const std::string& value) {
    const auto first = value.find_first_not_of(" \t\r\n");
    const auto last = value.find_last_not_of(" \t\r\n");
    std::string digits = first == std::string::npos ? "" : value.substr(first, last - first + 1);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-')
        digits.erase(0, 1);
    std::int32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        throw ConfigException(ConfigException::SourceNotFound);
    return std::to_string(number);
}

SchemaNode modelOf(const DOMElement& element, const std::string& construct) {
    SchemaNode node;
    node.name = text(element.getLocalName());
    for (const std::string& name : constructs.at(construct).attributes) {
        const auto* const attribute =
            element.getAttributeNodeNS(nullptr, XercesHelperFunctions::stringToXmlCh(name).c_str());
        if (attribute == nullptr)
            continue;
        const std::string value = text(attribute->getValue());
        node.attributes[name] = name == "minOccurs" ? numberText(value) : value;
    }
    for (const Particle& particle : constructs.at(construct).particles) {
        std::vector<SchemaNode> found;
        forEachElement(element, [&](const DOMElement& child) {
            if (text(child.getNamespaceURI()) == readerNamespace &&
                text(child.getLocalName()) == particle.element)
                found.push_back(modelOf(child, particle.construct));
        });
        if (!particle.repeats && found.size() > 1)
            found.resize(1);
        std::ranges::move(found, std::back_inserter(node.children));
    }
    if (construct == "documentation")
        node.text = ownText(element);
    return node;
}

std::string escaped(const std::string& value, bool inAttribute) {
    std::string result;
    for (const char c : value) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '\r' || (inAttribute && (c == '"' || c == '\n' || c == '\t')))
            result += "&#" + std::to_string(static_cast<int>(c)) + ';';
        else
            result += c;
    }
    return result;
}

void write(const SchemaNode& node, const std::string& declarations, std::string& out) {
    out += "<p1:" + node.name + declarations;
    for (const auto& [name, value] : node.attributes)
        out += ' ' + name + "=\"" + escaped(value, true) + '"';
    out += '>';
    if (!node.children.empty())
        out += '\n';
    for (const SchemaNode& child : node.children)
        write(child, "", out);
    out += escaped(node.text, false) + "</p1:" + node.name + ">\n";
}

// --- walks

using Nodes = std::vector<const SchemaNode*>;
using Value = std::optional<std::string>;

Value valueOf(const SchemaNode& node, const std::string& attribute) {
    const auto found = node.attributes.find(attribute);
    return found == node.attributes.end() ? Value() : found->second;
}

std::string textOf(const SchemaNode& node, const std::string& attribute) {
    return valueOf(node, attribute).value_or("");
}

bool isIn(const Names& names, const Value& value) {
    return value && names.contains(*value);
}

Nodes childrenOf(const SchemaNode& node, const std::string& name) {
    Nodes found;
    for (const SchemaNode& child : node.children)
        if (child.name == name)
            found.push_back(&child);
    return found;
}

/// @return what is found by a path of names, all of its branches in document order
Nodes at(const SchemaNode& node, const std::vector<std::string>& path) {
    Nodes found = {&node};
    for (const std::string& name : path) {
        Nodes next;
        for (const SchemaNode* parent : found)
            std::ranges::copy(childrenOf(*parent, name), std::back_inserter(next));
        found = std::move(next);
    }
    return found;
}

bool isType(const SchemaNode& node) {
    return node.name == "complexType" || node.name == "simpleType";
}

bool isOptional(const SchemaNode& element) {
    return valueOf(element, "minOccurs") == "0";
}

/// @return the elements of a type's sequence, then those of its extension's
Nodes sequenceElements(const SchemaNode& type) {
    Nodes found = at(type, {"sequence", "element"});
    std::ranges::copy(at(type, {"complexContent", "extension", "sequence", "element"}),
                      std::back_inserter(found));
    return found;
}

SchemaNode* firstComplexType(SchemaNode& schema, const std::string& name) {
    for (SchemaNode& type : schema.children)
        if (type.name == "complexType" && valueOf(type, "name") == name)
            return &type;
    return nullptr;
}

/// @return the declared type that a text names; nothing when it names none. A text that kept the
///         suite's prefix names the type without it.
Value declaredType(const Value& text, const Names& declared) {
    for (const std::string prefix : {"", "ov:"})
        if (text && text->starts_with(prefix) && declared.contains(text->substr(prefix.size())))
            return text->substr(prefix.size());
    return {};
}

enum class Children { Remaining, All };

/// Adds the declared types that something names to `found`. Of optional children, either all count
/// or those that remain when only `found` is declared.
void addNamedTypes(const SchemaNode& node, Children which, const Names& declared, Names& found) {
    for (const SchemaNode& child : node.children) {
        const bool derives = child.name == "extension" || child.name == "restriction";
        const Value type = declaredType(valueOf(child, derives ? "base" : "type"), declared);
        if (which == Children::Remaining && node.name == "sequence" && isOptional(child) && type &&
            !found.contains(*type))
            continue;
        if (type)
            found.insert(*type);
        addNamedTypes(child, which, declared, found);
    }
}

/// @return the declared ones of these types, and all that they and what is in `holders` need
Names closure(const SchemaNode& schema, const Names& types, const Nodes& holders, Children which,
              const Names& declared) {
    Names kept;
    std::ranges::set_intersection(types, declared, std::inserter(kept, kept.end()));
    for (std::size_t former = kept.size() + 1; former != kept.size();) {
        former = kept.size();
        for (const SchemaNode* holder : holders)
            addNamedTypes(*holder, which, declared, kept);
        for (const SchemaNode& type : schema.children)
            if (isType(type) && isIn(kept, valueOf(type, "name")))
                addNamedTypes(type, which, declared, kept);
    }
    return kept;
}

template <typename Predicate>
void removeChildren(SchemaNode& node, Predicate predicate) {
    std::erase_if(node.children, predicate);
}

void removeOptionalChildren(SchemaNode& node, const Names& types) {
    if (node.name == "sequence")
        removeChildren(node, [&](const SchemaNode& child) {
            return isOptional(child) && declaredType(valueOf(child, "type"), types);
        });
    for (SchemaNode& child : node.children)
        removeOptionalChildren(child, types);
}

template <typename Action>
void forChild(SchemaNode& node, const std::string& name, Action action) {
    for (SchemaNode& child : node.children)
        if (child.name == name)
            action(child);
}

/// Calls the action with the type and with its extension.
template <typename Action>
void forTypeAndExtension(SchemaNode& type, Action action) {
    action(type);
    forChild(type, "complexContent",
             [&](SchemaNode& content) { forChild(content, "extension", action); });
}

} // namespace

SchemaOracle::SchemaOracle(const std::string& file, bool sanitise) {
    const Document document(sanitise ? rewritten(file, lineForInput) : file);
    const DOMElement& root = document.root();
    if (text(root.getNamespaceURI()) != readerNamespace || text(root.getLocalName()) != "schema")
        throw ConfigException(ConfigException::ParserReportedErrors);
    m_schema = modelOf(root, "schema");
}

void SchemaOracle::keepElements(const Names& names) {
    const Names before = declared();
    Names kept;
    for (const std::string& name : names)
        if (const Value type = declaredType(name, before))
            kept.insert(*type);
    Nodes required;
    for (const SchemaNode* root : childrenOf(m_schema, "element")) {
        const Value rootType = declaredType(valueOf(*root, "type"), before);
        const auto type = std::ranges::find_if(m_schema.children, [&](const SchemaNode& node) {
            return isType(node) && valueOf(node, "name") == rootType;
        });
        if (!rootType || type == m_schema.children.end())
            continue;
        for (const SchemaNode* child : sequenceElements(*type)) {
            if (isOptional(*child))
                continue;
            required.push_back(child);
            if (const Value name = declaredType(valueOf(*child, "type"), before))
                kept.insert(*name);
        }
    }
    if (!names.empty() || !required.empty()) {
        removeTypesBut(closure(m_schema, kept, required, Children::Remaining, before));
        return;
    }
    m_tookFirstTypes = true;
    for (const std::string kind : {"complexType", "simpleType"}) {
        const auto first = std::ranges::find(m_schema.children, kind, &SchemaNode::name);
        if (first != m_schema.children.end())
            m_schema.children.erase(first);
    }
    removeUses(before);
}

void SchemaOracle::removeTypesBut(const Names& kept) {
    const Names before = declared();
    removeChildren(m_schema, [&](const SchemaNode& node) {
        return isType(node) && !isIn(kept, valueOf(node, "name"));
    });
    removeUses(before);
}

void SchemaOracle::removeUses(const Names& declaredBefore) {
    Names gone = declaredBefore;
    for (const std::string& name : declared())
        gone.erase(name);
    removeOptionalChildren(m_schema, gone);
    removeChildren(m_schema, [&](const SchemaNode& node) {
        return node.name == "element" && declaredType(valueOf(node, "type"), gone);
    });
}

void SchemaOracle::keepChildElement(const std::string& typeName, const Names& names) {
    SchemaNode* const type = firstComplexType(m_schema, typeName);
    if (type == nullptr)
        return;
    forTypeAndExtension(*type, [&](SchemaNode& holder) {
        forChild(holder, "sequence", [&](SchemaNode& children) {
            removeChildren(children, [&](const SchemaNode& child) {
                return isOptional(child) && !names.contains(textOf(child, "name"));
            });
        });
    });
    const Names before = declared();
    Names kept = {typeName};
    for (const SchemaNode* root : childrenOf(m_schema, "element"))
        if (const Value name = declaredType(valueOf(*root, "type"), before))
            kept.insert(*name);
    removeTypesBut(closure(m_schema, kept, {}, Children::All, before));
}

void SchemaOracle::keepChildAttributes(const std::string& typeName, const Names& names) {
    SchemaNode* const type = firstComplexType(m_schema, typeName);
    if (type == nullptr)
        return;
    forTypeAndExtension(*type, [&](SchemaNode& holder) {
        removeChildren(holder, [&](const SchemaNode& child) {
            return child.name == "attribute" && valueOf(child, "use") == "optional" &&
                   !isIn(names, valueOf(child, "name"));
        });
    });
}

std::string SchemaOracle::tree() const {
    struct Type {
        std::string name;
        std::string content;
    };
    std::map<std::string, Type> types;
    for (const SchemaNode& node : m_schema.children) {
        if (!isType(node))
            continue;
        Type type;
        if (node.name == "simpleType")
            type.name = textOf(node, "name");
        for (const SchemaNode* child : sequenceElements(node)) {
            const auto value = [&](const std::string& attribute, const std::string& absent) {
                return valueOf(*child, attribute).value_or(absent);
            };
            type.content += "  child " + value("name", "") + ": " + value("type", "") + ' ' +
                            value("minOccurs", "1") + ".." + value("maxOccurs", "Unbounded") + '\n';
        }
        for (const auto& path : {std::vector<std::string>{"complexContent", "extension"}, {}})
            for (const SchemaNode* holder : at(node, path))
                for (const SchemaNode* attribute : childrenOf(*holder, "attribute"))
                    type.content += "  attribute " + textOf(*attribute, "name") + '\n';
        types.emplace(textOf(node, "name"), type);
    }
    std::vector<std::string> roots;
    for (const SchemaNode* root : childrenOf(m_schema, "element")) {
        const auto type = types.find(textOf(*root, "type"));
        if (type == types.end() || !root->attributes.contains("type"))
            continue;
        type->second.name = textOf(*root, "name");
        roots.push_back(type->first);
    }
    std::string result;
    for (const auto& [key, type] : types)
        result += "type " + key + " named " + type.name + '\n' + type.content;
    for (const std::string& type : roots)
        result += "root " + types.at(type).name + ": " + type + '\n';
    return result;
}

std::string SchemaOracle::written(bool fixOutput) const {
    std::string document;
    write(m_schema, " xmlns:p1=\"" + readerNamespace + '"', document);
    return fixOutput ? rewritten(document, lineForOutput) : document;
}

SchemaOracle::Names SchemaOracle::declared() const {
    Names names;
    for (const SchemaNode& node : m_schema.children)
        if (isType(node) && node.attributes.contains("name"))
            names.insert(textOf(node, "name"));
    return names;
}

SchemaOracle::Names SchemaOracle::namedOf(const Names& types) const {
    Names names;
    addNamedTypes(m_schema, Children::All, types, names);
    return names;
}

std::string describeDocument(const std::string& bytes) {
    try {
        std::string description;
        describe(Document(bytes).root(), 0, description);
        return description;
    } catch (const ConfigException&) {
        return "not well-formed";
    }
}

} // namespace Orvant::Support
