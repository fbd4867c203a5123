#pragma once

#include <ConfigurationFramework/ConfigurationProblem.h>
#include <ConfigurationFramework/ConfigurationSaveReport.h>
#include <ConfigurationFramework/Export.h>
#include <FileHandling/FileName.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvant {

/// An element among those around it.
struct ConfigurationElementStep {
    std::string name; ///< tag, UTF-8
    /// Attribute key, UTF-8. Nothing, or an empty one: the first element of the name that has no
    /// key, or an empty one.
    std::optional<std::string> key = {};

    /// @return whether both have the same name and key
    bool operator==(const ConfigurationElementStep& other) const = default;
};

/// The way to an element, from below the root. An empty path leads to the root.
using ConfigurationElementPath = std::vector<ConfigurationElementStep>;

/// A file that is there cannot be edited. what() is `FILE:LINE:COLUMN: TEXT`, without the numbers
/// where they are not known.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationFileError : public std::runtime_error {
public:
    /// @param problem what is wrong, and where
    explicit ConfigurationFileError(const ConfigurationProblem& problem);
    /// Copies what is wrong.
    /// @{
    ConfigurationFileError(const ConfigurationFileError&) = default;
    ConfigurationFileError& operator=(const ConfigurationFileError&) = default;
    /// @}
    ~ConfigurationFileError() override;

    /// @return Unreadable or Damaged, the file, and the place, where that is known
    const ConfigurationProblem& problem() const { return *m_problem; }

private:
    std::shared_ptr<const ConfigurationProblem> m_problem;
};

/// Edits a configuration file element by element, as an administrator's tool does: without the
/// application and its classes. Nothing is checked but what XML allows.
///
/// @code
/// ConfigurationFileEditor editor(FileName("/etc/xdg/planner/planner.xml"), "1.0");
/// editor.setText({{"View3D"}, {"LengthUnit"}}, "inch", "Unit of lengths");
/// editor.setText({{"Machine", "Hall 1"}, {"MaxFeed"}}, "5000");
/// editor.setLocked({{"View3D"}, {"LengthUnit"}}, true);
/// const ConfigurationSaveReport report = editor.save();
/// if (report.reason != ConfigurationSaveReport::Saved)
///     std::cerr << report.text << '\n';
/// @endcode
///
/// What is not edited stays: elements, attributes, comments, their order. The document is laid out
/// anew, as in every save; a DTD and the XML declaration are not written. Unlike in saves of an
/// application, comments and processing instructions above and below the root stay.
///
/// Where several elements have the same path, readers see the first. Texts are read from and set in
/// that one; the others are removed and moved with it, so that none of them comes to light.
///
/// Where a list would no longer be found because readers take an element of the same name deeper
/// in the document for it, it goes to the front of what is beside it.
///
/// All texts are UTF-8. Each operation with a path throws std::invalid_argument for a name that XML
/// does not allow and for a key that it cannot hold; one that changes something, for an empty path
/// as well. What throws has changed nothing. Not thread-safe.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationFileEditor {
public:
    /// Opens a file, or starts a new document where there is none; it is made by save().
    /// @param file         links are followed
    /// @param versionOfNew version of a new document
    /// @throws ConfigurationFileError for a file that is there but is not a configuration document:
    ///         it cannot be read, is no regular file, is damaged or empty, has another root
    /// @throws std::invalid_argument for a version that XML cannot hold
    /// @throws FileNameException for a name that no file system could hold
    ConfigurationFileEditor(const FileName& file, const std::string& versionOfNew);
    /// The source may only be destroyed or assigned to afterwards.
    /// @{
    ConfigurationFileEditor(ConfigurationFileEditor&& other) noexcept;
    ConfigurationFileEditor& operator=(ConfigurationFileEditor&& other) noexcept;
    /// @}
    ~ConfigurationFileEditor();

    /// @name The document
    /// @{

    /// @return the file
    const FileName& file() const;
    /// @return whether there was no such file
    bool isNew() const;
    /// @return whether anything was changed since the file was opened or saved
    bool isChanged() const;
    /// @return attribute version of the root, empty when there is none
    std::string version() const;
    /// Sets the attribute version of the root.
    /// @throws std::invalid_argument for a version that XML cannot hold
    void setVersion(const std::string& version);
    /// @return the document as it would be saved
    /// @throws std::runtime_error for one that cannot be printed, as nested too deeply
    std::string asString() const;
    /// @}

    /// @name Elements as they are
    /// @{

    /// @return whether there is such an element
    bool exists(const ConfigurationElementPath& path) const;
    /// @return the text that readers see: empty in an empty element; nothing where there is no such
    ///         element, or it begins with another element, a comment or a CDATA section
    std::optional<std::string> text(const ConfigurationElementPath& path) const;
    /// @return the texts of the elements `item` in the element, up to one whose text readers do not
    ///         see; nothing where there is no such element
    std::optional<std::vector<std::string>> items(const ConfigurationElementPath& path) const;
    /// @return what the attribute editable says, which locks if it is "false"; nothing where there
    ///         is no such element, or no such attribute
    std::optional<std::string> editable(const ConfigurationElementPath& path) const;
    /// Calls back with the path of each element below another, at any depth, in document order:
    /// once for elements with the same path. The items of lists are left out.
    /// @param path  the element around those
    /// @param visit must not change the document
    /// @throws what the callback throws
    void visitElements(const ConfigurationElementPath& path,
                       const std::function<void(const ConfigurationElementPath&)>& visit) const;
    /// @}

    /// @name Changes
    /// @{

    /// Sets the text of an element; other elements in it go, comments in it stay. An element that
    /// is missing is made after all that is beside it, and so are those around it.
    /// @param path    the element
    /// @param text    its new text
    /// @param comment right before the element if that is made; empty: none
    /// @throws std::invalid_argument for a text or comment that XML cannot hold, too
    void setText(const ConfigurationElementPath& path, const std::string& text,
                 const std::string& comment = "");
    /// Sets the items of a list likewise. Items that stay keep their attributes and comments.
    /// @throws std::invalid_argument as setText()
    void setItems(const ConfigurationElementPath& path, const std::vector<std::string>& items,
                  const std::string& comment = "");
    /// Removes an element with everything in it. Those around it stay, even if they are empty now:
    /// they may be locked.
    /// @param path    the element
    /// @param comment goes along where it stands right before the element, as setText() wrote it;
    ///                any other comment stays
    /// @return false when there is no such element
    bool remove(const ConfigurationElementPath& path, const std::string& comment = "");
    /// Locks an element, by the attribute editable, or takes that away, whatever it says. What is
    /// missing is made to be locked: that is good for an object; a value is to be set before.
    void setLocked(const ConfigurationElementPath& path, bool locked);
    /// Moves an element with everything in it and the comment right before it. Where only name or
    /// key change, it stays in its place; else it goes to the end of the other element, which is
    /// made if it is missing.
    /// @param from the element
    /// @param to   its new path
    /// @return false when there is no such element, or there is one of the new path already:
    ///         nothing is done
    /// @throws std::invalid_argument for a new path within the element, too
    bool move(const ConfigurationElementPath& from, const ConfigurationElementPath& to);
    /// @}

    /// @name Saving
    /// @{

    /// Replaces the file by one with the changes, or makes it, with its folder. The new file gets
    /// owner, group, mode and access list of the old one; where a new file cannot be made, it is
    /// written in place. Nothing is written when nothing was changed. The save takes the lock that
    /// ConfigurationManager::Merge takes, too.
    /// @param patience longest time to wait for the lock
    /// @return Saved, NothingToSave when nothing was changed, or why it failed: Failed with the
    ///         error std::errc::resource_unavailable_try_again, for one, where the file is not what
    ///         it was when it was opened or last saved. After a failure, the file is as it was.
    ConfigurationSaveReport save(std::chrono::milliseconds patience = std::chrono::seconds(5));
    /// Writes the document, changed or not, to a new file, and makes its folder. The editor's own
    /// file stays as it is, and so does what has the name already, be that a link to nothing: that
    /// is a failure with the error std::errc::file_exists.
    /// @return Saved, or why it failed
    ConfigurationSaveReport saveAs(const FileName& file) const;
    /// @}

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace Orvant
