#pragma once

#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// The attribute that locks an element by the text "false".
constexpr const XMLCh* lockAttribute = u"editable";

/// @return the text that readers see: empty in an empty element; nothing where the element begins
///         with something else
std::optional<XmlString> textOf(const xercesc::DOMElement& element);

/// @return the texts of the items of a list, up to one that readers stop at
std::vector<XmlString> itemsOf(const xercesc::DOMElement& list);

/// Edits the elements of a document one by one, each found by its path. Of several that have the
/// same path readers see the first; they are removed and moved together, so that none of them
/// comes to light. What is not edited stays as it is.
class DocumentEditor {
public:
    /// Elements from below the root; none is the root. One without a key is the first that has
    /// none, or an empty one.
    using Path = std::vector<ElementId>;

    explicit DocumentEditor(xercesc::DOMElement& root) : m_root(root) {}

    /// @return null when there is none
    xercesc::DOMElement* find(const Path& path);

    /// Calls back with each element below another that can be found by a path, in document order,
    /// and its depth below that one, from 1. Items of lists are left out.
    void forEachBelow(const Path& path,
                      const std::function<void(const ElementId&, std::size_t)>& visit);

    /// Each makes the element if it is missing, with a comment if that is not empty, and those
    /// around it. Attributes of an element that is there stay, and so do comments in it.
    /// @return false when nothing had to be done
    /// @{
    bool setText(const Path& path, const XmlString& text, const XmlString& comment);
    bool setItems(const Path& path, const std::vector<XmlString>& items, const XmlString& comment);
    bool lock(const Path& path);
    /// @}

    /// @return false when nothing had to be done
    bool unlock(const Path& path);

    /// @param comment goes along where it stands right before the element; any other stays
    /// @return false when there is none
    bool remove(const Path& path, const XmlString& comment);

    /// Moves elements with what is in them and the comments right before them.
    /// @param to not below `from`
    /// @return false when there is none, or one is there already
    bool move(const Path& from, const Path& to);

private:
    xercesc::DOMElement* findChild(xercesc::DOMElement& parent, const ElementId& id);
    std::vector<xercesc::DOMElement*> take(xercesc::DOMElement& parent, const ElementId& id);
    ChildElements& makeIndex(xercesc::DOMElement& parent);
    void addToIndex(const xercesc::DOMElement& parent, xercesc::DOMElement& child);
    xercesc::DOMElement& make(const Path& path, const XmlString& comment, bool& isNew);
    bool keepListsReadable(const Path& path, const xercesc::DOMElement* written = nullptr);

    xercesc::DOMElement& m_root;
    /// Of elements with many children. What is removed is not released, so that no new element is
    /// taken for one that had an index.
    std::unordered_map<const xercesc::DOMElement*, ChildElements> m_indexes;
};

} // namespace Orvant
