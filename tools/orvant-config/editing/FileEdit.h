#pragma once

#include "Session.h"
#include "common/ExitCode.h"

#include <ConfigurationFramework/ConfigurationFileEditor.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Orvant::Tool {

/// A change of one setting or object in the file that an administrator looks after.
class FileEdit {
public:
    /// Opens the file, or starts a new one where there is none.
    /// @param session must outlive this
    /// @throws Failure(FileError) for a file that is damaged, cannot be read or is of another
    ///         version; Failure(Usage) for a key that no file can hold
    FileEdit(Session& session, FoundItem found);

    const CatalogueItem& item() const { return *m_found.item; }
    /// @return the setting, with its keys
    std::string path() const;
    ConfigurationFileEditor& editor() { return m_editor; }
    const ConfigurationFileEditor& editor() const { return m_editor; }
    /// @return where its element is, or would be made
    const ConfigurationElementPath& place() const { return m_place; }
    /// @return the element that counts: that of the default entry where the file has none of a key
    const ConfigurationElementPath& countingPlace() const { return m_countingPlace; }

    /// Makes the objects around the element, with their descriptions as comments.
    void makeObjectsAround();
    /// Makes the element of an object likewise.
    void makeObject();
    /// Sets what the value's element says.
    /// @param texts as files have them
    void setTexts(const std::vector<std::string>& texts);
    /// Says something besides what was done.
    void note(const std::string& text) { m_notes.push_back(text); }

    /// Saves the file if anything was changed, and prints what was done.
    /// @param sentence what is so now, which begins after the path
    /// @param details  for programs
    /// @throws Failure(FileError) when it cannot be written, or somebody else changed it meanwhile
    void finish(const std::string& sentence, const nlohmann::ordered_json& details);

private:
    void makeObjects(std::size_t depth);
    void noteDefaultEntry(const ConfigurationElementPath& place);
    void noteOwnElements();
    void noteOtherReaders();

    Session& m_session;
    FoundItem m_found;
    ConfigurationFileEditor m_editor;
    ConfigurationElementPath m_place;
    ConfigurationElementPath m_countingPlace;
    std::vector<std::string> m_notes;
};

/// Edits the file. Where somebody else changed it meanwhile, the edit is repeated with what it
/// holds then, so that none of the changes is lost.
/// @param edit to be ended by FileEdit::finish()
/// @return what the edit returned
/// @throws Failure like FileEdit and finish(), when others change it again and again, too
ExitCode editFile(Session& session, const FoundItem& found,
                  const std::function<ExitCode(FileEdit&)>& edit);

/// Opens a file, or starts a new one where there is none.
/// @throws Failure(FileError) for one that is damaged or cannot be read, with the place
ConfigurationFileEditor openToEdit(const FileName& file, const std::string& versionOfNew);

/// @return what an element of a value says, one text or the items of a list; nothing: nothing that
///         is read
std::optional<std::vector<std::string>> textsAt(const ConfigurationFileEditor& editor,
                                                const ConfigurationElementPath& place,
                                                const ConfigurationValueDescription& value);
/// Sets what an element of a value says, which is made if it is missing.
/// @param texts as files have them
void writeTexts(ConfigurationFileEditor& editor, const ConfigurationElementPath& place,
                const ConfigurationValueDescription& value, const std::vector<std::string>& texts);
/// @return whether an element is locked by itself
bool isLocked(const ConfigurationFileEditor& editor, const ConfigurationElementPath& place);
/// @return the outermost object around an element that is locked
std::optional<ConfigurationElementPath> lockAround(const ConfigurationFileEditor& editor,
                                                   const ConfigurationElementPath& place);

/// @param path of the item, as the user gave it
/// @throws Failure(Usage) for what no load takes from a file
void checkTakenFromFiles(const CatalogueItem& item, const std::string& path);

/// @return a path of elements as users write it
std::string textOf(const ConfigurationElementPath& place);

} // namespace Orvant::Tool
