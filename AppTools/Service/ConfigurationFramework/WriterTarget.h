#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Orvant {

class ConfigWriter;
class FileName;

/// What a ConfigWriter writes to. It has a current element; the operations are those of the writer.
class WriterTarget {
public:
    WriterTarget() = default;
    WriterTarget(const WriterTarget&) = delete;
    WriterTarget& operator=(const WriterTarget&) = delete;
    virtual ~WriterTarget();

    /// @return a writer to a target
    static std::unique_ptr<ConfigWriter> makeWriter(std::unique_ptr<WriterTarget> target);
    /// @return what a writer writes to
    static WriterTarget& of(const ConfigWriter& writer);

    virtual void createNode(const std::string& name, const std::string& comment) = 0;
    virtual void createKeyedNode(const std::string& name, const std::string& key,
                                 const std::string& comment) = 0;
    /// Makes the child that was created last the current element.
    virtual void enterLastChild() = 0;
    /// Makes the first of the selected children the current element.
    /// @return Failure when there is none
    virtual ConfigurationAccessResult makeCurrent(const ChildSelection& selection) = 0;
    /// Deletes children, with their comments, and the text of the current element.
    virtual void deleteChildren(const ChildSelection& selection) = 0;

    virtual void putText(const std::string& name, const std::string& text,
                         const std::string& comment) = 0;
    virtual void putString(const std::string& value) = 0;
    virtual void putStringVector(const std::string& name, const std::vector<std::string>& values,
                                 const std::string& comment) = 0;
    virtual void putElementUnlessEmpty(const std::string& name,
                                       const std::optional<std::string>& key,
                                       const std::string& comment,
                                       const std::function<void()>& writeContents) = 0;
    /// Calls back, and has the current element be the same afterwards, even after an exception.
    virtual void keepPlace(const std::function<void()>& action) = 0;

    virtual std::set<std::string>
    namesHiddenByDescendants(const std::vector<std::string>& names) = 0;
    /// Moves the first child of that name, with its comment, before all others.
    /// @return Failure when there is none
    virtual ConfigurationAccessResult moveToFront(const std::string& name) = 0;

    virtual PrintedDocument print() = 0;
    bool saveToFile(const FileName& file);
    const std::string& saveProblem() const { return m_saveProblem; }

private:
    std::string m_saveProblem;
};

/// The children with a tag, whatever their key.
ChildSelection named(const std::string& name);

/// The children with a tag and a key.
ChildSelection keyed(const std::string& name, const std::string& key);

/// The tag of a new element.
/// @throws xercesc::DOMException for an invalid name
XmlString toTag(const std::string& name);

/// A text or comment made fit for the document; what had to be replaced is logged.
/// @{
XmlString toText(const std::string& text, const std::string& elementName);
XmlString toComment(const std::string& comment, const std::string& elementName);
/// @}

} // namespace Orvant
