#pragma once

#include <ConfigurationFramework/WriterTarget.h>
#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

class ConfigWriter;
class FileName;

/// A document that is written, and edited if it existed.
class ConfigWriterImpl : public WriterTarget {
public:
    explicit ConfigWriterImpl(const std::string& version);
    ConfigWriterImpl(const FileName& file, const std::string& content);
    /// Opens an existing document for editing.
    /// @param bytes the document, all of it
    /// @throws ConfigException like ConfigWriter for a document that is not opened
    static std::unique_ptr<ConfigWriterImpl> openBytes(const std::string& bytes);

    /// @return a writer of such a document
    static std::unique_ptr<ConfigWriter> open(const std::string& bytes);

    /// @return the document of a writer of one
    static ConfigWriterImpl& of(const ConfigWriter& writer);

    /// @return the root of the document
    xercesc::DOMElement& root() { return *m_document->getDocumentElement(); }
    /// @return attribute version of the root
    std::string version() const;
    void setVersion(const std::string& version);

    void createNode(const std::string& name, const std::string& comment) override;
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment) override;
    void enterLastChild() override;
    ConfigurationAccessResult makeCurrent(const ChildSelection& selection) override;
    void deleteChildren(const ChildSelection& selection) override;
    /// Deletes the children that a registered object is saved in place of.
    /// @return false when there is none
    bool deleteObject(const std::string& name, const std::optional<std::string>& key);

    void putText(const std::string& name, const std::string& text,
                 const std::string& comment) override;
    void putString(const std::string& value) override;
    void putStringVector(const std::string& name, const std::vector<std::string>& values,
                         const std::string& comment) override;
    void putElementUnlessEmpty(const std::string& name, const std::optional<std::string>& key,
                               const std::string& comment,
                               const std::function<void()>& writeContents) override;
    void keepPlace(const std::function<void()>& action) override;

    std::set<std::string> namesHiddenByDescendants(const std::vector<std::string>& names) override;
    ConfigurationAccessResult moveToFront(const std::string& name) override;

    PrintedDocument print() override;

private:
    struct DocumentRelease {
        void operator()(xercesc::DOMDocument* document) const { document->release(); }
    };

    ConfigWriterImpl();

    template <typename Parse>
    void load(Parse parse);
    xercesc::DOMElement& createElement(const std::string& name);
    xercesc::DOMElement& appendElement(const std::string& name, const std::string& comment);
    void appendElement(xercesc::DOMElement& element, const std::string& comment);
    void appendKeyedElement(xercesc::DOMElement& element, const std::string& key,
                            const std::string& comment);
    void replaceBy(xercesc::DOMElement& element, const ChildSelection& replaced,
                   const std::string& comment);
    void deleteElement(xercesc::DOMElement& element);
    xercesc::DOMElement* findChild(const ChildSelection& selection);
    ChildElements* currentIndex();
    void appendText(xercesc::DOMElement& element, const std::string& text);

    // In order of construction; they are released in reverse order.
    XercesSession m_session;
    ParserConfinement m_confinement{ParserConfinement::configurations};
    std::unique_ptr<ConfinedParser> m_parser; ///< of a loaded document, which it owns
    std::unique_ptr<xercesc::DOMDocument, DocumentRelease> m_newDocument; ///< of a new document
    xercesc::DOMDocument* m_document = nullptr;
    xercesc::DOMElement* m_current = nullptr;
    /// For elements with many children and no text.
    std::unordered_map<const xercesc::DOMElement*, ChildElements> m_indexes;
};

} // namespace Orvant
