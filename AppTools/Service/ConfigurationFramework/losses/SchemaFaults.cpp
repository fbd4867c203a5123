#include <ConfigurationFramework/losses/SchemaFaults.h>

#include <ConfigurationFramework/XsdLoss.h>
#include <ConfigurationFramework/schema/TypeNames.h>

#include <algorithm>
#include <ranges>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Name = WrittenSchema::Name;
using Kind = Name::Kind;

std::vector<Index> writtenChildren(const WrittenSchema& schema, Index element,
                                   ModelClass modelClass) {
    std::vector<Index> found;
    for (const Index child : schema.document().children(element))
        if (schema.modelClass(child) == modelClass)
            found.push_back(child);
    return found;
}

bool isTrue(const std::string& value) {
    return value == "true" || value == "1";
}

} // namespace

SchemaFaults::SchemaFaults(const WrittenSchema& schema)
    : m_schema(schema),
      m_needsContent(schema.document().nodes().size()),
      m_blamedForContent(m_needsContent.size()),
      m_blamedForAttributes(m_needsContent.size()) {
    for (const Index child : schema.document().children(schema.document().root()))
        if (schema.document().isElement(child)) {
            if (schema[child].name == "import")
                m_imports[schema.text(child, "namespace")].push_back(child);
            if (schema[child].name == "notation")
                m_notations[schema.text(child, "name")].push_back(child);
        }
    for (Index node = 0; node < schema.document().nodes().size(); ++node) {
        checkNames(node);
        if (schema.modelClass(node) == ModelClass::Element)
            checkOrder(node, ModelClass::ComplexType, ModelClass::Annotation,
                       ModelClass::Annotation);
        if (schema.modelClass(node) != ModelClass::ComplexType)
            continue;
        checkOrder(node, ModelClass::Attribute, ModelClass::Choice, ModelClass::Choice);
        checkMixed(node);
    }
    checkTypes();
    if (m_needsIncludes)
        for (const char* const name : {"include", "redefine", "override"})
            blameLost(schema.document().root(), name);
}

const char* SchemaFaults::effect(Index node, const std::string& attribute) const {
    const auto found = m_effects.find({node, attribute});
    return found == m_effects.end() ? nullptr : found->second;
}

void SchemaFaults::checkNames(Index node) {
    switch (m_schema.modelClass(node)) {
    case ModelClass::Element:
    case ModelClass::RootElement:
    case ModelClass::Attribute:
        checkName(node, "type");
        break;
    case ModelClass::Extension:
        checkName(node, "base");
        break;
    case ModelClass::Restriction:
        checkName(node, "base");
        checkQualifiedValues(node);
        break;
    default:
        break;
    }
}

void SchemaFaults::checkName(Index node, const std::string& attribute) {
    const auto meant = m_schema.meaning(node, attribute);
    const auto written = m_schema.writtenMeaning(node, attribute);
    if (!meant || !written)
        return;
    if (meant->kind == Kind::Other)
        return blamePrefix(node, m_schema.text(node, attribute));
    if (*meant != *written)
        return blame(node, attribute, effectOfOtherName(node, *meant, *written));
    if (meant->kind == Kind::BuiltIn || m_schema.writtenType(*meant) != SourceDocument::none)
        return;
    const Index declared = m_schema.declaredType(*meant);
    if (declared != SourceDocument::none && m_schema.isLost(declared))
        blame(declared, {}, XsdLoss::notValid);
    if (declared != SourceDocument::none)
        return;
    if (m_schema.isReaders()) // it had lost its prefix before
        blame(node, attribute, XsdLoss::notValid);
    m_needsIncludes = true;
}

/// @return what it means that a name means something else
const char* SchemaFaults::effectOfOtherName(Index node, const Name& meant,
                                            const Name& written) const {
    const Index type = m_schema.writtenType(written);
    if (written.kind != Kind::BuiltIn && type == SourceDocument::none)
        return XsdLoss::notValid;
    const bool isSimple = written.kind == Kind::BuiltIn
                              ? written.local != "anyType"
                              : m_schema.modelClass(type) == ModelClass::SimpleType;
    const ModelClass parent = m_schema.parentClass(node);
    const bool wantsComplex = parent == ModelClass::ComplexContent;
    const bool wantsSimple =
        parent == ModelClass::SimpleType || m_schema.modelClass(node) == ModelClass::Attribute;
    if ((wantsComplex && isSimple) || (wantsSimple && !isSimple))
        return XsdLoss::notValid;
    const Index formerType = m_schema.writtenType(meant);
    const bool wasSimple = formerType != SourceDocument::none &&
                           m_schema.modelClass(formerType) == ModelClass::SimpleType;
    return wasSimple && written == Name{Kind::BuiltIn, "string"} ? XsdLoss::acceptsMore
                                                                 : XsdLoss::acceptsLess;
}

/// The prefix of a name is declared where the file that is written does not have it, and what it
/// stands for is imported.
void SchemaFaults::blamePrefix(Index node, const std::string& name) {
    const auto prefix = TypeNames::parts(name).prefix;
    const std::string declaration = prefix.empty() ? "xmlns" : std::string("xmlns:").append(prefix);
    const auto& document = m_schema.document();
    const auto nameSpace = document.nameSpaceOf(prefix, node);
    for (Index scope = node; scope != SourceDocument::none; scope = document[scope].parent)
        if (document.attribute(scope, declaration) != nullptr) {
            blame(scope, declaration, XsdLoss::notValid);
            break;
        }
    if (nameSpace)
        blameAll(m_imports, std::string(*nameSpace));
}

/// Values that are names in a namespace have prefixes, and notations are declared.
void SchemaFaults::checkQualifiedValues(Index restriction) {
    if (m_schema.parentClass(restriction) != ModelClass::SimpleType)
        return;
    const Index type = m_schema[restriction].parent;
    const bool isNotation = m_schema.derivesFrom(type, "NOTATION");
    if (!isNotation && !m_schema.derivesFrom(type, "QName"))
        return;
    for (const Index value : writtenChildren(m_schema, restriction, ModelClass::Enumeration)) {
        const std::string name = m_schema.text(value, "value");
        const auto [prefix, local] = TypeNames::parts(name);
        if (!prefix.empty() && prefix != "ov" && prefix != "xs")
            blamePrefix(value, name);
        if (isNotation)
            blameAll(m_notations, std::string(local));
    }
}

/// The model writes its members in an order that XML Schema does not always allow.
void SchemaFaults::checkOrder(Index element, ModelClass earlier, ModelClass later,
                              ModelClass blamed) {
    if (m_schema.child(element, earlier) != SourceDocument::none &&
        m_schema.child(element, later) != SourceDocument::none)
        blame(m_schema.child(element, blamed), {}, XsdLoss::notValid);
}

/// Checks types against what they have of their bases.
void SchemaFaults::checkTypes() {
    struct Entered {
        Index type;
        std::size_t attributes;
        AmbiguitySearch::State content;
    };
    std::vector<Entered> entered; // a type with its bases
    for (const Index type : m_schema.typesAfterBases()) {
        for (; !entered.empty() && entered.back().type != m_schema.base(type); entered.pop_back()) {
            m_attributes.takeBack(entered.back().attributes);
            m_content.goBack(entered.back().content);
        }
        entered.push_back({type, m_attributes.changes(), m_content.state()});
        if (m_schema.modelClass(type) == ModelClass::ComplexType)
            checkRestriction(type);
        enterContent(type);
        // The first of a name counts.
        const auto attributes =
            writtenChildren(m_schema, m_schema.holder(type), ModelClass::Attribute);
        for (const Index attribute : attributes | std::views::reverse)
            m_attributes.set(m_schema.text(attribute, "name"), attribute);
    }
}

void SchemaFaults::enterContent(Index type) {
    const Index base = m_schema.base(type);
    const bool isExtended =
        base != SourceDocument::none &&
        m_schema.modelClass(m_schema.holder(type)) != ModelClass::Restriction; // no content stays
    if (!isExtended)
        m_content.begin();
    const auto content = m_schema.ownContent(type);
    m_needsContent[type] = (isExtended && m_needsContent[base]) ||
                           !std::ranges::all_of(content, [](const auto& place) {
                               return WrittenSchema::canBeEmpty(place);
                           });
    for (const Index loss : m_content.add(content))
        blame(loss, {}, XsdLoss::notValid);
}

/// What extends xs:anyType by elements must be mixed as that is.
void SchemaFaults::checkMixed(Index type) {
    const Index holder = m_schema.derivation(type);
    if (holder == SourceDocument::none || m_schema.modelClass(holder) != ModelClass::Extension)
        return;
    const Index sequence = m_schema.child(holder, ModelClass::Sequence);
    if (sequence == SourceDocument::none ||
        m_schema.child(sequence, ModelClass::Element) == SourceDocument::none)
        return;
    if (m_schema.writtenMeaning(holder, "base") != Name{Kind::BuiltIn, "anyType"})
        return;
    for (const Index element : {type, m_schema[holder].parent})
        if (isTrue(m_schema.text(element, "mixed")))
            blame(element, "mixed", XsdLoss::notValid);
}

void SchemaFaults::checkRestriction(Index type) {
    const Index restriction = m_schema.derivation(type);
    if (restriction == SourceDocument::none ||
        m_schema.modelClass(restriction) != ModelClass::Restriction)
        return;
    const Index base = m_schema.base(type);
    if (base == SourceDocument::none)
        return;
    if (m_needsContent[base])
        checkRestrictedContent(restriction, base);
    for (const Index attribute : writtenChildren(m_schema, restriction, ModelClass::Attribute))
        if (m_schema.text(attribute, "use") != "prohibited")
            checkRestrictedAttribute(attribute, base);
}

/// What is written of a restriction has no content, which its base does not allow.
void SchemaFaults::checkRestrictedContent(Index restriction, Index base) {
    const auto content = {"sequence", "choice", "all", "group"};
    const auto isContent = [&](Index child) {
        return m_schema.document().isElement(child) && m_schema.isLost(child) &&
               std::ranges::find(content, m_schema[child].name) != content.end();
    };
    bool hadContent = false;
    for (const Index child : m_schema.document().children(restriction))
        if (isContent(child)) {
            blame(child, {}, XsdLoss::notValid);
            hadContent = true;
        }
    if (hadContent)
        return;
    for (Index type = base; type != SourceDocument::none && !m_blamedForContent[type];
         type = m_schema.base(type)) {
        m_blamedForContent[type] = true;
        for (const Index group : m_schema.document().children(m_schema.holder(type)))
            if (m_schema.isWritten(group))
                blameOptional(group);
    }
}

/// Blames what allowed a sequence or choice to be empty.
void SchemaFaults::blameOptional(Index group) {
    if (m_schema.text(group, "minOccurs") == "0")
        blame(group, "minOccurs", XsdLoss::notValid);
    if (m_schema.modelClass(group) != ModelClass::Choice)
        return;
    for (const char* const lost : {"element", "any", "group", "choice", "sequence"})
        blameLost(group, lost);
}

/// An attribute of a restriction is one of its base, with a type derived from that one's.
void SchemaFaults::checkRestrictedAttribute(Index attribute, Index base) {
    if (const auto restricted = m_attributes.find(m_schema.text(attribute, "name"))) {
        const auto type = m_schema.writtenMeaning(static_cast<Index>(*restricted), "type");
        if (type && *type != Name{Kind::BuiltIn, "anySimpleType"})
            blameLost(attribute, "simpleType");
        return;
    }
    if (m_schema.derivesFrom(base, "anyType"))
        return;
    for (Index type = base; type != SourceDocument::none && !m_blamedForAttributes[type];
         type = m_schema.base(type)) {
        m_blamedForAttributes[type] = true;
        for (const char* const lost :
             {"attribute", "attributeGroup", "anyAttribute", "simpleContent", "complexContent"})
            blameLost(m_schema.holder(type), lost);
    }
}

void SchemaFaults::blame(Index node, const std::string& attribute, const char* effect) {
    const auto [fault, isNew] = m_effects.try_emplace({node, attribute}, effect);
    if (!isNew && effect == XsdLoss::notValid)
        fault->second = effect;
}

/// Blames the nodes of a name; they need not be looked at again.
void SchemaFaults::blameAll(ByName& nodes, const std::string& name) {
    const auto named = nodes.extract(name);
    if (named.empty())
        return;
    for (const Index node : named.mapped())
        blame(node, {}, XsdLoss::notValid);
}

void SchemaFaults::blameLost(Index element, std::string_view name) {
    for (const Index child : m_schema.document().children(element))
        if (m_schema.isLost(child) && m_schema.document().isElement(child) &&
            m_schema[child].name == name)
            blame(child, {}, XsdLoss::notValid);
}

} // namespace Orvant
