#pragma once

#include <ConfigurationFramework/reading/DocumentTree.h>
#include <ConfigurationFramework/xml/FirstError.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <optional>
#include <string>
#include <vector>

namespace Orvant {

/// A configuration document with what its readers do not need: where each element stands, which
/// attribute `editable` it really has, and what is wrong with a document that readers refuse. It
/// is parsed like theirs, but apart from them, so that loads do not pay for it.
class LocatedDocument {
public:
    /// An element, or a reference to an entity with elements.
    struct Item {
        std::string tag; ///< empty for a reference
        DocumentTree::Element parent = DocumentTree::none;
        /// Of the '<'. What comes from an entity stands at the reference in the document.
        DocumentPlace place = {};
        std::optional<std::string> editable = {}; ///< the attribute's text; nothing: there is none
        /// All text of the element, without that of the elements in it, but with what stands after
        /// comments, in CDATA sections and in entities: readers see none of these.
        XmlString text = {};
    };
    /// Why readers refuse the document, whatever its version.
    using Error = DocumentError;

    /// Xerces must be initialised.
    explicit LocatedDocument(const std::string& bytes);

    /// @return the first error; nothing for a configuration document
    const std::optional<Error>& error() const { return m_error; }
    /// @return what readers see of the document; empty if there was an error
    DocumentTree& tree() { return m_tree; }
    /// @return the items of the tree by their position
    const std::vector<Item>& items() const { return m_items; }
    /// @return the tag of an element, with its key, if it has one, in brackets
    std::string name(DocumentTree::Element element) const;
    /// @return the names from below the root to an element, joined by slashes
    std::string path(DocumentTree::Element element) const;
    /// @return the text of an element that readers do not see because markup cuts it off; empty if
    ///         there is none but white space, or if they see no text at all
    std::string textCutOff(DocumentTree::Element element) const;
    /// @return version attribute of the root, empty when there is none
    const std::string& version() const { return m_version; }

private:
    DocumentTree m_tree;
    std::vector<Item> m_items;
    std::string m_version;
    std::optional<Error> m_error;
};

} // namespace Orvant
