#include <ConfigurationFramework/source/SchemaSource.h>

#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/TypeNames.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <Logging/Logging.h>

#include <algorithm>
#include <source_location>
#include <utility>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Namespace = SourceDocument::Namespace;

const Logging s_log("SchemaSource");

/// @return where the rewriting has removed an import, or the text of one: only the first of a line
std::vector<std::size_t> removedImports(std::string_view bytes) {
    std::vector<std::size_t> places;
    for (auto at = bytes.find(LineRewriting::removedImport); at != std::string_view::npos;) {
        places.push_back(at);
        const auto lineBreak = bytes.find('\n', at);
        at = lineBreak == std::string_view::npos
                 ? lineBreak
                 : bytes.find(LineRewriting::removedImport, lineBreak);
    }
    return places;
}

} // namespace

SchemaSource::SchemaSource(std::string bytes, SchemaDialect dialect)
    : m_bytes(std::move(bytes)), m_dialect(dialect) {}

bool SchemaSource::parse() const {
    std::call_once(m_parsed, [this] { parseOnce(); });
    return m_isUsable;
}

void SchemaSource::parseOnce() const {
    const XercesSession session(s_log, std::source_location::current());
    m_document = SourceDocument::parse(m_bytes);
    if (!m_document)
        return;
    if (m_dialect == SchemaDialect::Suite && !pairWithRewritten())
        return;
    if (const std::string* const target =
            m_document->attribute(m_document->root(), "targetNamespace"))
        m_targetNamespace = *target;
    classify();
    m_references.emplace(*m_document);
    m_isUsable = true;
}

/// Finds each element in the rewritten file, where they stand in the same order.
bool SchemaSource::pairWithRewritten() const {
    m_rewritten = SourceDocument::parse(LineRewriting::rewrittenForReader(m_bytes));
    if (!m_rewritten)
        return false;
    m_inRewritten.assign(m_document->nodes().size(), SourceDocument::none);
    const std::vector<std::size_t> imports = removedImports(m_bytes);
    Index next = 0;
    for (Index node = 0; node < m_document->nodes().size(); ++node) {
        if (!(*m_document)[node].inEntity &&
            std::ranges::binary_search(imports, (*m_document)[node].begin))
            continue;
        if (next == m_rewritten->nodes().size() ||
            (*m_rewritten)[next].kind != (*m_document)[node].kind)
            return false;
        m_inRewritten[node] = next++;
    }
    return next == m_rewritten->nodes().size();
}

void SchemaSource::classify() const {
    const auto& nodes = m_document->nodes();
    m_classes.assign(nodes.size(), ModelClass::None);
    if (isForModel(m_document->root()))
        m_classes[m_document->root()] = ModelClass::Schema;
    for (Index parent = m_document->root(); parent < nodes.size(); ++parent) {
        if (m_classes[parent] == ModelClass::None || !m_document->isElement(parent))
            continue;
        std::uint32_t seen = 0;
        for (const Index child : m_document->children(parent))
            m_classes[child] = memberOf(parent, child, seen);
    }
}

/// @param seen the members of the parent of which there has been one: a bit each
ModelClass SchemaSource::memberOf(Index parent, Index child, std::uint32_t& seen) const {
    if (!m_document->isElement(child) || !isForModel(child))
        return ModelClass::None;
    std::uint32_t bit = 1;
    for (const ModelMember& member : membersOf(m_classes[parent])) {
        if (member.name == (*m_document)[child].name) {
            const bool isHeld = member.isMany || (seen & bit) == 0;
            seen |= bit;
            return isHeld ? member.modelClass : ModelClass::None;
        }
        bit <<= 1U;
    }
    return ModelClass::None;
}

bool SchemaSource::isForModel(Index element) const {
    switch (m_dialect) {
    case SchemaDialect::Suite:
        return m_inRewritten[element] != SourceDocument::none &&
               (*m_rewritten)[m_inRewritten[element]].nameSpace == Namespace::Reader;
    case SchemaDialect::Reader:
        return (*m_document)[element].nameSpace == Namespace::Reader;
    case SchemaDialect::Any:
        break;
    }
    return (*m_document)[element].nameSpace == Namespace::Reader ||
           (*m_document)[element].nameSpace == Namespace::XmlSchema;
}

std::vector<Index> SchemaSource::children(Index element, ModelClass modelClass) const {
    std::vector<Index> found;
    for (const Index child : m_document->children(element))
        if (m_classes[child] == modelClass)
            found.push_back(child);
    return found;
}

Index SchemaSource::child(Index element, ModelClass modelClass) const {
    for (const Index child : m_document->children(element))
        if (m_classes[child] == modelClass)
            return child;
    return SourceDocument::none;
}

std::optional<std::string> SchemaSource::attribute(Index element, std::string_view name) const {
    const std::string* const value =
        m_dialect == SchemaDialect::Suite && m_inRewritten[element] != SourceDocument::none
            ? m_rewritten->attribute(m_inRewritten[element], name)
            : m_document->attribute(element, name);
    if (value == nullptr)
        return std::nullopt;
    if (m_dialect != SchemaDialect::Any || name == "value" ||
        (*m_document)[element].nameSpace != Namespace::XmlSchema)
        return *value;
    std::string collapsed = TypeNames::collapsed(*value);
    if (!TypeNames::isTypeName(name))
        return collapsed;
    return TypeNames::inSuite(collapsed, m_targetNamespace, [&](std::string_view prefix) {
        return m_document->nameSpaceOf(prefix, element);
    });
}

} // namespace Orvant
