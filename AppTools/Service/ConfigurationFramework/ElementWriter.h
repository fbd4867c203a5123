#pragma once

#include <ConfigurationFramework/WriterTarget.h>
#include <ConfigurationFramework/writing/WrittenElement.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace Orvant {

/// Writes elements that are compared, and printed only if an object asks for it: a DOM takes
/// several times as long to fill.
class ElementWriter : public WriterTarget {
public:
    ElementWriter();

    /// @return the root, with what was written
    const WrittenElement& root() const { return m_root; }
    /// @return all that was written into the root, which is empty and current then
    std::vector<WrittenElement> takeAll();

    void createNode(const std::string& name, const std::string& comment) override;
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment) override;
    void enterLastChild() override;
    ConfigurationAccessResult makeCurrent(const ChildSelection& selection) override;
    void deleteChildren(const ChildSelection& selection) override;

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

protected:
    using Children = std::vector<WrittenElement>;

    /// Which children an element may have, so that most that are asked for need not be looked for;
    /// perhaps also some that are gone.
    class Index;

    /// An element that is written to. It stays where it is as long as it is the current one, or one
    /// of those around that: only they get children.
    struct Place {
        explicit Place(WrittenElement& current);

        WrittenElement* element;
        std::shared_ptr<Index> index; ///< shared with those who return here
    };

    /// @return the current element
    const Place& place() const { return m_current; }
    /// Makes an element around the current one the current one.
    void setPlace(const Place& place) { m_current = place; }
    /// Gives the current element, which is empty, its children.
    void setChildren(Children children);
    /// @return the names whose first element among elements and what is below them is not one of
    ///         them
    static std::set<std::string> hiddenNames(std::span<const WrittenElement> children,
                                             const std::vector<std::string>& names);

private:
    void replace(ChildSelection replaced, std::optional<XmlString> key, const std::string& name,
                 const std::string& comment);
    Children::iterator findChild(const ChildSelection& selection);

    XercesSession m_session;
    WrittenElement m_root{{u"Configuration", {}}};
    Place m_current{m_root};
};

} // namespace Orvant
