#pragma once

#include <ConfigurationFramework/reading/DocumentTree.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/DocumentMeasure.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

/// The Xerces DOM parser, filling another tree: its scanner, defaults and error handling stay, but
/// what it reports becomes a DocumentTree instead of a DOM, whose nodes take six times as long as
/// the scanning. An empty DOM stays, to refuse what every DOM refuses (XML versions, names of
/// document types), and a DocumentMeasure adds up what a whole DOM would take: whatever is read can
/// then also be edited.
class TreeBuildingParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    /// @return result of the last parse, null when it gave no document
    DocumentTree* getTree() { return m_tree ? &*m_tree : nullptr; }
    /// @return version attribute of the root, empty when there is none
    const std::string& getVersion() const { return m_version; }

    void resetDocument() override;
    void startDocument() override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    DocumentTree::Name nameOf(const xercesc::XMLElementDecl& declaration);
    void checkDefaults(const xercesc::XMLAttDefList& definitions);
    void endOpenElement();
    void endFirstText();
    void addOtherChild();

    DocumentMeasure m_measure;
    std::optional<DocumentTree> m_tree;
    std::string m_version;
    /// The name of what was last declared under each number.
    std::vector<std::pair<const xercesc::XMLElementDecl*, DocumentTree::Name>> m_names;
    XmlString m_firstText; ///< of the open element, in pieces
    bool m_inFirstText = false;
};

} // namespace Orvant
