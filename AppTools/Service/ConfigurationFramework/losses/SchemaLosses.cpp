#include <ConfigurationFramework/losses/SchemaLosses.h>

#include <ConfigurationFramework/losses/LossEffects.h>
#include <ConfigurationFramework/losses/SchemaFaults.h>
#include <ConfigurationFramework/losses/WrittenSchema.h>
#include <ConfigurationFramework/schema/SchemaNamespaces.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Kind = SourceDocument::Kind;

constexpr std::string_view whiteSpace = " \t\r\n";

unsigned int lineBreaksIn(std::string_view text) {
    return static_cast<unsigned int>(std::ranges::count_if(text, [&](const char& character) {
        const auto rest = text.substr(static_cast<std::size_t>(&character - text.data()) + 1);
        return character == '\n' || (character == '\r' && !rest.starts_with('\n'));
    }));
}

using Lines = std::unordered_map<std::string_view, unsigned int>;

/// @param text begins with a start tag
/// @return lines between its begin and those of its attributes
Lines attributeLines(std::string_view text) {
    Lines lines;
    unsigned int breaks = 0;
    std::size_t counted = 0;
    std::size_t begin = std::min(text.find_first_of(" \t\r\n/>"), text.size());
    while (true) {
        begin = text.find_first_not_of(whiteSpace, begin);
        if (begin == std::string_view::npos || text[begin] == '>' || text[begin] == '/')
            return lines;
        breaks += lineBreaksIn(text.substr(counted, begin - counted));
        counted = begin;
        const auto nameEnd = text.find_first_of(" \t\r\n=", begin);
        lines.emplace(text.substr(begin, nameEnd - begin), breaks);
        const auto quote = text.find_first_of("\"'", begin);
        if (quote == std::string_view::npos)
            return lines;
        begin = text.find(text[quote], quote + 1);
        begin += begin == std::string_view::npos ? 0 : 1;
    }
}

/// Walks through a file and lists what is not written as it is.
class LossSearch {
public:
    explicit LossSearch(const WrittenSchema& schema)
        : m_schema(schema), m_effects(schema), m_faults(schema) {}

    std::vector<XsdLoss> run() {
        const auto& doctype = m_schema.document().doctype();
        for (Index node = 0; node < m_schema.document().nodes().size(); ++node) {
            if (doctype && doctype->next == node)
                m_losses.push_back(
                    {"document type declaration", {}, doctype->line, XsdLoss::documentationOnly});
            if (m_schema.isLost(node))
                addNode(node);
            else if (m_schema.isWritten(node))
                addPartsOf(node);
        }
        return std::move(m_losses);
    }

private:
    void addNode(Index node) {
        const auto& lost = m_schema[node];
        if (lost.kind == Kind::Comment)
            add(node, "comment", XsdLoss::documentationOnly);
        else if (lost.kind == Kind::Instruction)
            add(node, "processing instruction", XsdLoss::documentationOnly);
        else {
            const char* const fault = m_faults.effect(node);
            add(node, m_schema.isOfSchemas(node) ? "xs:" + lost.name : lost.name,
                fault != nullptr ? fault : m_effects.ofElement(node));
        }
    }

    /// Adds what is lost of an element that is written.
    void addPartsOf(Index element) {
        if (const char* const fault = m_faults.effect(element))
            add(element, "xs:" + m_schema[element].name, fault);
        if (element == m_schema.document().root())
            for (const char* const attribute : {"targetNamespace", "elementFormDefault"})
                if (const char* const effect = m_effects.ofAbsence(attribute))
                    add(element, attribute, effect);
        std::optional<Lines> lines; // most elements lose nothing
        for (const auto& attribute : m_schema.document().attributes(element))
            if (const char* const effect = effectOf(element, attribute)) {
                if (!lines)
                    lines = linesOfAttributes(element);
                add(element, attribute.name, effect);
                if (const auto found = lines->find(attribute.name); found != lines->end())
                    m_losses.back().line += found->second;
            }
    }

    /// @return null when the attribute is written
    const char* effectOf(Index element, const SourceDocument::Attribute& attribute) const {
        if (const char* const fault = m_faults.effect(element, attribute.name))
            return fault;
        if (attribute.isDeclaration)
            return nullptr; // names are written without it
        if (attribute.isQualified)
            return XsdLoss::documentationOnly;
        const auto held = attributesOf(m_schema.modelClass(element));
        if (std::ranges::find(held, attribute.name) == held.end())
            return isOfHeader(element, attribute) ? nullptr
                                                  : m_effects.ofAttribute(element, attribute.name);
        return attribute.name == "value" &&
                       m_schema.source().attribute(element, attribute.name) != attribute.value
                   ? XsdLoss::acceptsLess
                   : nullptr;
    }

    bool isOfHeader(Index element, const SourceDocument::Attribute& attribute) const {
        if (element != m_schema.document().root())
            return false;
        return (attribute.name == "targetNamespace" &&
                (attribute.value == SchemaNamespaces::suite ||
                 attribute.value == SchemaNamespaces::reader)) ||
               (attribute.name == "elementFormDefault" && attribute.value == "qualified");
    }

    Lines linesOfAttributes(Index element) const {
        const auto& node = m_schema[element];
        return node.inEntity || !m_hasByteText ? Lines()
                                               : attributeLines(m_bytes.substr(node.begin));
    }

    void add(Index node, std::string construct, const char* effect) {
        m_losses.push_back({std::move(construct), ownerOf(node), m_schema[node].line, effect});
    }

    /// @return the name of the declaration in the schema that a node is or is in
    std::string ownerOf(Index node) const {
        const Index root = m_schema.document().root();
        while (m_schema[node].parent != SourceDocument::none && m_schema[node].parent != root)
            node = m_schema[node].parent;
        return node != root && m_schema.document().isElement(node) ? m_schema.text(node, "name")
                                                                   : std::string();
    }

    const WrittenSchema& m_schema;
    const LossEffects m_effects;
    const SchemaFaults m_faults;
    std::string_view m_bytes = m_schema.source().bytes();
    bool m_hasByteText =
        m_bytes.substr(0, 4).find('\0') == std::string_view::npos; ///< other text is not searched
    std::vector<XsdLoss> m_losses;
};

} // namespace

std::vector<XsdLoss> findLosses(const SchemaSource& source, const std::vector<Index>& removed) {
    const WrittenSchema schema(source, removed);
    return LossSearch(schema).run();
}

} // namespace Orvant
