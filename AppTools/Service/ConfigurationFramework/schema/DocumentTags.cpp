#include <ConfigurationFramework/schema/DocumentTags.h>

#include <ConfigurationFramework/schema/ContentParser.h>
#include <ConfigurationFramework/schema/MeasuringParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/PlaceTracking.h>

#include <GeneralServices/XercesHelperFunctions.h>

namespace Orvant {

namespace {

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

/// Records the tags.
template <typename Parser>
class TagParser : public PlaceTracking<Parser> {
    using Base = PlaceTracking<Parser>;

public:
    TagParser(ParserConfinement& confinement, const std::string& bytes,
              std::optional<std::size_t> wanted, DocumentTags& tags)
        : Base(confinement), m_bytes(bytes), m_wanted(wanted), m_tags(tags) {
        this->setCalculateSrcOfs(true);
    }

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override {
        const DocumentPlace place = Base::last();
        if (isRoot)
            m_tags.root = rootTag(place, declaration, attributes, attributeCount);
        if (m_elements++ == m_wanted)
            m_tags.element = place;
        if (!isEmpty)
            m_tags.open.push_back({toString(declaration.getFullName()), place});
        Base::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty, isRoot);
    }
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override {
        m_tags.open.pop_back();
        Base::endElement(declaration, uri, isRoot, prefix);
    }

private:
    RootTag rootTag(const DocumentPlace& place, const xercesc::XMLElementDecl& declaration,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount) const {
        RootTag tag{place, toString(declaration.getFullName()), {}, {}};
        for (XMLSize_t i = 0; i < attributeCount; ++i)
            tag.attributes.emplace_back(toString(attributes.elementAt(i)->getName()),
                                        toString(attributes.elementAt(i)->getValue()));
        // The scanner stands after the tag, which holds no other '<'.
        const auto end = static_cast<std::size_t>(this->getScanner()->getSrcOffset());
        if (const auto begin = m_bytes.rfind('<', end); begin != std::string::npos)
            tag.text = m_bytes.substr(begin, end - begin);
        return tag;
    }

    const std::string& m_bytes;
    std::optional<std::size_t> m_wanted;
    std::size_t m_elements = 0;
    DocumentTags& m_tags;
};

template <typename Parser>
void parse(const std::string& bytes, bool withNamespaces, std::optional<std::size_t> wanted,
           DocumentTags& tags) {
    ParserConfinement confinement(ParserConfinement::schemas);
    TagParser<Parser> parser(confinement, bytes, wanted, tags);
    parser.setDoNamespaces(withNamespaces);
    tags.error = findFirstError(confinement, parser, bytes);
    tags.last = parser.last();
    if (tags.error && confinement.exceeded() != nullptr)
        tags.error = {tags.last, std::string("a limit is exceeded: ") + confinement.exceeded()};
}

} // namespace

std::string RootTag::localName() const {
    return name.substr(name.find(':') + 1);
}

std::string RootTag::nameSpace() const {
    const auto colon = name.find(':');
    const std::string declaration =
        colon == std::string::npos ? "xmlns" : "xmlns:" + name.substr(0, colon);
    for (const auto& [attribute, value] : attributes)
        if (attribute == declaration)
            return value;
    return {};
}

DocumentTags::DocumentTags(const std::string& bytes, Pass pass, std::optional<std::size_t> wanted) {
    if (pass == Pass::Measuring)
        parse<MeasuringParser>(bytes, false, wanted, *this);
    else
        parse<ContentParser>(bytes, true, wanted, *this);
}

} // namespace Orvant
