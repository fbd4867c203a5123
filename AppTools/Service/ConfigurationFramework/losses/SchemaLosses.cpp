#include <ConfigurationFramework/losses/SchemaLosses.h>

#include <ConfigurationFramework/losses/LossEffects.h>
#include <ConfigurationFramework/losses/SchemaFaults.h>
#include <ConfigurationFramework/losses/WrittenSchema.h>
#include <ConfigurationFramework/schema/SchemaNamespaces.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Kind = SourceDocument::Kind;

constexpr std::string_view whiteSpace = " \t\r\n";

std::size_t lineBreaksIn(std::string_view text) {
    std::size_t breaks = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\n' || (text[i] == '\r' && !text.substr(i + 1).starts_with('\n')))
            ++breaks;
    return breaks;
}

/// @param text begins with a start tag
/// @return lines between its begin and that of an attribute; 0 when it does not have it
std::size_t linesBefore(std::string_view text, std::string_view attribute) {
    std::size_t begin = std::min(text.find_first_of(" \t\r\n/>"), text.size());
    while (true) {
        begin = text.find_first_not_of(whiteSpace, begin);
        if (begin == std::string_view::npos || text[begin] == '>' || text[begin] == '/')
            return 0;
        const auto nameEnd = text.find_first_of(" \t\r\n=", begin);
        if (text.substr(begin, nameEnd - begin) == attribute)
            return lineBreaksIn(text.substr(0, begin));
        const auto quote = text.find_first_of("\"'", begin);
        if (quote == std::string_view::npos)
            return 0;
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
        for (Index node = 0; node < m_schema.document().nodes().size(); ++node) {
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
            add(node, "xs:" + lost.name, fault != nullptr ? fault : m_effects.ofElement(node));
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
        for (const auto& attribute : m_schema.document().attributes(element))
            if (const char* const effect = effectOf(element, attribute))
                addAttribute(element, attribute.name, effect);
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

    void addAttribute(Index element, const std::string& attribute, const char* effect) {
        add(element, attribute, effect);
        const auto& node = m_schema[element];
        if (!node.inEntity && m_hasByteText)
            m_losses.back().line +=
                static_cast<unsigned int>(linesBefore(m_bytes.substr(node.begin), attribute));
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
