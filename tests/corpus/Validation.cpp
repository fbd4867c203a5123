#include "Validation.h"

#include "Packages.h"
#include "SchemaText.h"

#include <TestSupport.h>

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include <algorithm>
#include <functional>
#include <string_view>

namespace Orvant::Support {

namespace {

using std::filesystem::path;
using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

constexpr int parsing = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

/// What stands in place of a file while libxml2 reads schemas.
struct Replaced {
    path file;
    std::string text;
};
const Replaced* replaced = nullptr;

void ignore(void*, const char*, ...) {}

std::string text(const xmlChar* characters) {
    return characters ? reinterpret_cast<const char*>(characters) : "";
}
const xmlChar* characters(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// Finds what schemas import, beside them or in another package, and nothing in the Web.
xmlParserInputPtr load(const char* url, const char*, xmlParserCtxtPtr parser) {
    const std::string location = url ? url : "";
    const path file =
        location == replaced->file ? replaced->file : schemaAt(replaced->file, location);
    if (file.empty())
        return nullptr;
    if (file != replaced->file)
        return xmlNewInputFromFile(parser, file.c_str());
    const xmlParserInputPtr input = xmlNewStringInputStream(parser, characters(replaced->text));
    if (input)
        input->filename = reinterpret_cast<char*>(xmlStrdup(characters(file)));
    return input;
}

/// Makes libxml2 read this text for a file, and keep silent.
class Replacing {
public:
    explicit Replacing(const Replaced& replacement) : m_former(xmlGetExternalEntityLoader()) {
        replaced = &replacement;
        xmlSetExternalEntityLoader(load);
        xmlSetGenericErrorFunc(nullptr, ignore);
    }
    Replacing(const Replacing&) = delete;
    Replacing& operator=(const Replacing&) = delete;
    ~Replacing() {
        xmlSetExternalEntityLoader(m_former);
        xmlSetGenericErrorFunc(nullptr, nullptr);
        replaced = nullptr;
    }

private:
    xmlExternalEntityLoader m_former;
};

Document parse(const std::string& document, int options = parsing) {
    return {xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                          options),
            xmlFreeDoc};
}

std::string bytesOf(xmlDoc& document) {
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpMemory(&document, &bytes, &size);
    const std::unique_ptr<xmlChar, void (*)(xmlChar*)> owner(
        bytes, [](xmlChar* memory) { xmlFree(memory); });
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

void forEachElement(xmlNode* node, const std::function<void(xmlNode&)>& visit) {
    for (; node; node = node->next) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        visit(*node);
        forEachElement(node->children, visit);
    }
}

std::string valueOf(const xmlAttr& attribute) {
    const std::unique_ptr<xmlChar, void (*)(xmlChar*)> value(
        xmlNodeListGetString(attribute.doc, attribute.children, 1),
        [](xmlChar* memory) { xmlFree(memory); });
    return text(value.get());
}

std::string namespaceOf(const xmlNs* declaration) {
    return declaration ? text(declaration->href) : "";
}

// --- mutants

void rename(xmlNode& element) {
    xmlNodeSetName(&element, characters("zz"));
}
void remove(xmlNode& element) {
    if (element.parent->type != XML_ELEMENT_NODE)
        return;
    xmlUnlinkNode(&element);
    xmlFreeNode(&element);
}
void twice(xmlNode& element) {
    if (element.parent->type == XML_ELEMENT_NODE)
        xmlAddNextSibling(&element, xmlCopyNode(&element, 1));
}
void retext(xmlNode& element) {
    if (!xmlFirstElementChild(&element))
        xmlNodeSetContent(&element, characters("@ @"));
}
void addAttribute(xmlNode& element) {
    xmlNewProp(&element, characters("zz"), characters("1"));
}
void removeAttribute(xmlNode& element) {
    if (element.properties)
        xmlRemoveProp(element.properties);
}

// --- dialect

const std::string schemaNamespace = "http://www.w3.org/2001/XMLSchema";

bool isOfSchema(const xmlNode& node) {
    return node.type == XML_ELEMENT_NODE && namespaceOf(node.ns) == schemaNamespace;
}

/// Writes a schema in the suite's dialect.
class Dialect {
public:
    explicit Dialect(xmlDoc& document) : m_document(document) {
        xmlNode* const schema = xmlDocGetRootElement(&document);
        for (const xmlAttr* attribute = schema->properties; attribute;
             attribute = attribute->next) {
            if (text(attribute->name) == "targetNamespace")
                m_target = valueOf(*attribute);
        }
        m_written = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
                    "xmlns:ov=\"http://www.orvant.com/OV_QLV100\" "
                    "xmlns=\"http://www.orvant.com/OV_QLV100\" "
                    "targetNamespace=\"http://www.orvant.com/OV_QLV100\" "
                    "elementFormDefault=\"qualified\">\n";
        writeChildren(*schema);
        m_written += "</xs:schema>\n";
    }

    const std::string& written() const { return m_written; }

private:
    void writeChildren(const xmlNode& parent) {
        for (xmlNode* child = parent.children; child; child = child->next) {
            if (isOfSchema(*child) && text(child->name) != "annotation")
                write(*child);
        }
    }

    void write(xmlNode& element) {
        const std::string name = "xs:" + text(element.name);
        m_written += '<' + name;
        for (const xmlAttr* attribute = element.properties; attribute;
             attribute = attribute->next) {
            if (!attribute->ns)
                write(element, text(attribute->name), valueOf(*attribute));
        }
        m_written += ">\n";
        writeChildren(element);
        m_written += "</" + name + ">\n";
    }

    void write(xmlNode& element, const std::string& attribute, const std::string& value) {
        static const std::set<std::string> namesOfTypes = {"base", "type"};
        const std::string mapped =
            namesOfTypes.contains(attribute) ? typeName(element, value) : value;
        const std::unique_ptr<xmlChar, void (*)(xmlChar*)> escaped(
            xmlEncodeSpecialChars(&m_document, characters(mapped)),
            [](xmlChar* memory) { xmlFree(memory); });
        m_written += ' ' + attribute + "=\"" + text(escaped.get()) + '"';
    }

    std::string typeName(xmlNode& element, const std::string& name) const {
        const std::size_t colon = name.find(':');
        const std::string prefix = colon == std::string::npos ? "" : name.substr(0, colon);
        const std::string uri = namespaceOf(
            xmlSearchNs(&m_document, &element, prefix.empty() ? nullptr : characters(prefix)));
        if (uri == m_target)
            return withoutPrefix(name);
        return uri == schemaNamespace ? "xs:" + withoutPrefix(name) : name;
    }

    xmlDoc& m_document;
    std::string m_target;
    std::string m_written;
};

} // namespace

std::optional<CompiledSchema> CompiledSchema::compile(const path& file, const std::string& text) {
    const Replaced replacement{file, text};
    const Replacing replacing(replacement);
    const std::unique_ptr<xmlSchemaParserCtxt, decltype(&xmlSchemaFreeParserCtxt)> parser(
        xmlSchemaNewParserCtxt(file.c_str()), xmlSchemaFreeParserCtxt);
    xmlSchemaSetParserErrors(parser.get(), ignore, ignore, nullptr);
    const std::shared_ptr<xmlSchema> schema(xmlSchemaParse(parser.get()), xmlSchemaFree);
    return schema ? std::optional(CompiledSchema(schema)) : std::nullopt;
}

bool CompiledSchema::accepts(const std::string& document) const {
    const Document parsed = parse(document);
    if (!parsed)
        return false;
    const std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)> validation(
        xmlSchemaNewValidCtxt(m_schema.get()), xmlSchemaFreeValidCtxt);
    xmlSchemaSetValidErrors(validation.get(), ignore, ignore, nullptr);
    return xmlSchemaValidateDoc(validation.get(), parsed.get()) == 0;
}

bool isWellFormed(const std::string& document) {
    return parse(document) != nullptr;
}

std::optional<UsedNames> namesUsedBy(const std::string& document) {
    const Document parsed = parse(document);
    if (!parsed)
        return std::nullopt;
    UsedNames names;
    xmlNode* const root = xmlDocGetRootElement(parsed.get());
    names.root = text(root->name);
    names.rootNamespace = namespaceOf(root->ns);
    forEachElement(root, [&](const xmlNode& element) {
        names.elements.insert(text(element.name));
        for (const xmlAttr* attribute = element.properties; attribute;
             attribute = attribute->next) {
            names.attributes.insert(text(attribute->name));
            if (attribute->ns && text(attribute->name) == "type")
                names.types.insert(withoutPrefix(valueOf(*attribute)));
        }
    });
    return names;
}

std::vector<std::string> mutantsOf(const std::string& document) {
    static const std::vector<void (*)(xmlNode&)> changes = {rename, remove,       twice,
                                                            retext, addAttribute, removeAttribute};
    std::size_t count = 0;
    const Document original = parse(document);
    forEachElement(xmlDocGetRootElement(original.get()), [&](const xmlNode&) { ++count; });

    std::vector<std::string> mutants;
    for (std::size_t i = 0; i < 2 * changes.size(); ++i) {
        const Document mutant(xmlCopyDoc(original.get(), 1), xmlFreeDoc);
        std::vector<xmlNode*> elements;
        forEachElement(xmlDocGetRootElement(mutant.get()),
                       [&](xmlNode& element) { elements.push_back(&element); });
        changes[i % changes.size()](*elements[i * count / (2 * changes.size())]);
        mutants.push_back(bytesOf(*mutant));
    }
    return mutants;
}

std::string inSuiteDialect(const std::string& schema) {
    const Document document = parse(schema, parsing | XML_PARSE_NOENT);
    return Dialect(*document).written();
}

} // namespace Orvant::Support
