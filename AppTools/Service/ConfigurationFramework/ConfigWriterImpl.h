#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>

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

/// The document of a ConfigWriter and its current element. The operations are those of the writer.
class ConfigWriterImpl {
public:
    explicit ConfigWriterImpl(const std::string& version);
    ConfigWriterImpl(const FileName& file, const std::string& content);
    /// Opens an existing document for editing.
    /// @param bytes the document, all of it
    /// @throws ConfigException like ConfigWriter for a document that is not opened
    static std::unique_ptr<ConfigWriterImpl> openBytes(const std::string& bytes);

    /// @return a writer of such a document
    static std::unique_ptr<ConfigWriter> open(const std::string& bytes);

    /// @return what is in a writer
    static ConfigWriterImpl& of(const ConfigWriter& writer);

    /// @return the root of the document
    xercesc::DOMElement& root() { return *m_document->getDocumentElement(); }
    /// @return attribute version of the root
    std::string version() const;
    /// Removes all that is in the root, and makes the root the current element.
    void clear();
    void setVersion(const std::string& version);

    /// Makes an element that is not in the tree yet.
    /// @throws xercesc::DOMException for an invalid name
    xercesc::DOMElement& createElement(const std::string& name);
    /// Appends such an element as createNode() does.
    void appendElement(xercesc::DOMElement& element, const std::string& comment);

    void createNode(const std::string& name, const std::string& comment);
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment);
    ConfigurationAccessResult setCurrentNode(const std::string& name);
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);
    void deleteNodes(const std::string& name, const std::string& key);
    /// Deletes the child that createKeyedNode() would replace.
    void deleteKeyedNode(const std::string& name, const std::string& key);
    /// Deletes the children that a registered object is saved in place of.
    /// @return false when there is none
    bool deleteObject(const std::string& name, const std::optional<std::string>& key);

    std::set<std::string> namesHiddenByDescendants(const std::vector<std::string>& names) const;
    /// Moves the first child of that name, with its comment, before all others.
    /// @return Failure when there is none
    ConfigurationAccessResult moveToFront(const std::string& name);

    void putText(const std::string& name, const std::string& text, const std::string& comment);
    void putString(const std::string& value);
    void putStringVector(const std::string& name, const std::vector<std::string>& values,
                         const std::string& comment);

    PrintedDocument print() const;
    bool saveToFile(const FileName& file);
    const std::string& saveProblem() const { return m_saveProblem; }

    /// @return the current element, which callers may set
    xercesc::DOMElement*& currentElement() { return m_current; }

private:
    struct DocumentRelease {
        void operator()(xercesc::DOMDocument* document) const { document->release(); }
    };

    ConfigWriterImpl();

    template <typename Parse>
    void load(Parse parse);
    xercesc::DOMElement& appendElement(const std::string& name, const std::string& comment);
    void replaceBy(xercesc::DOMElement& element, const ChildSelection& replaced,
                   const std::string& comment);
    void deleteChildren(const ChildSelection& selection);
    void deleteElement(xercesc::DOMElement& element);
    xercesc::DOMElement* findChild(const ChildSelection& selection);
    ChildElements* currentIndex();
    void appendText(xercesc::DOMElement& element, const std::string& text);
    ConfigurationAccessResult makeCurrent(const ChildSelection& selection);

    // In order of construction; they are released in reverse order.
    XercesSession m_session;
    ParserConfinement m_confinement{ParserConfinement::configurations};
    std::unique_ptr<ConfinedParser> m_parser; ///< of a loaded document, which it owns
    std::unique_ptr<xercesc::DOMDocument, DocumentRelease> m_newDocument; ///< of a new document
    xercesc::DOMDocument* m_document = nullptr;
    xercesc::DOMElement* m_current = nullptr;
    std::string m_saveProblem;
    /// For elements with many children and no text.
    std::unordered_map<const xercesc::DOMElement*, ChildElements> m_indexes;
};

} // namespace Orvant
