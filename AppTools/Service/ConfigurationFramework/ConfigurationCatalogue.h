#pragma once

#include <ConfigurationFramework/ConfigurationDescription.h>
#include <ConfigurationFramework/Export.h>
#include <ConfigurationFramework/StandardConfigurationFiles.h>
#include <FileHandling/FileName.h>

#include <iosfwd>
#include <list>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvant {

class ConfigurationManager;
class ConfigurationObject;

/// A registered object of an application.
struct ConfigurationCatalogueEntry {
    ConfigurationObjectDescription object; ///< its name is the one that it is registered under
    bool isKeyed = false; ///< any number are registered, one for each key in the files
};

/// The name that a setting or object had in files of earlier versions.
struct ConfigurationFormerPath {
    std::string formerPath; ///< names from the registered object's on, joined by slashes
    std::string path;       ///< the same of today; without keys, which stay
};

/// A text that files of earlier versions have for a value of today.
struct ConfigurationFormerText {
    std::string path;       ///< names from the registered object's on, joined by slashes
    std::string formerText; ///< what such files hold; of a list, one item
    std::string text;       ///< what it means today
};

/// A file that is not a catalogue.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationCatalogueError : public std::runtime_error {
public:
    /// @param file   the file
    /// @param line   line of the error, from 1; 0: it has no place
    /// @param column column there, from 1, in UTF-16 code units; 0: it has no place
    /// @param reason what is wrong, in English
    ConfigurationCatalogueError(const FileName& file, unsigned int line, unsigned int column,
                                const std::string& reason);

    /// @return line of the error; 0: it has no place
    unsigned int getLine() const { return m_line; }
    /// @return column of the error; 0: it has no place
    unsigned int getColumn() const { return m_column; }

private:
    unsigned int m_line;
    unsigned int m_column;
};

/// The settings of an application, in a file that tools read without the application: names, types,
/// defaults and rules. Objects made of it load, merge and lock as those of the application do.
///
/// @code
/// ConfigurationCatalogue catalogue("planner", {"1.0", "2.0"}, "2.0");
/// catalogue.add(ViewSettings(), "View");
/// catalogue.add(Plotter(), "Plotter", true);
/// std::ofstream file("planner.xml");
/// catalogue.write(file);
/// @endcode
///
/// What is not in a catalogue: a condition is there in words only, so objects made of a catalogue
/// that was read allow what breaks it. Nor is what a class does when it is loaded, such as reading
/// old names.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationCatalogue {
public:
    /// @param application      name of the application, which is that of the catalogue's file, too
    /// @param acceptedVersions as for ConfigurationManager::setValidVersionList()
    /// @param writtenVersion   as for ConfigurationManager::saveConfiguration()
    /// @throws std::invalid_argument for a name that cannot be that of a file
    ConfigurationCatalogue(const std::string& application,
                           const std::list<std::string>& acceptedVersions,
                           const std::string& writtenVersion);

    /// Says where the application's files are, unless they are standardConfigurationFiles().
    /// @param system the administrator's; empty: the application has one file only
    /// @param user   the user's or the only one; what begins with "~/" is in the user's home folder
    void setFiles(const FileName& system, const FileName& user);
    /// Adds a registered object.
    /// @param object any object of the class; the description is that of a new one
    /// @param name   name that it is registered under
    /// @param keyed  whether there are several under the name, told apart by keys
    /// @throws std::invalid_argument when there is one of the name, or XML does not allow the name;
    ///         std::logic_error and what the object throws like describeConfiguration()
    void add(const ConfigurationObject& object, const std::string& name, bool keyed = false);
    /// Adds a registered object that is only described.
    /// @param entry its name does not matter
    /// @param name  name that it is registered under
    /// @throws std::invalid_argument like add() of an object
    void add(ConfigurationCatalogueEntry entry, const std::string& name);
    /// Says which name a setting or object had in files of earlier versions.
    /// @throws std::invalid_argument when nothing has the path today
    void addFormerPath(const std::string& formerPath, const std::string& path);
    /// Says which text a value had in files of earlier versions.
    /// @throws std::invalid_argument when no value has the path today
    void addFormerText(const std::string& path, const std::string& formerText,
                       const std::string& text);

    /// Writes the catalogue, in UTF-8. Characters that XML does not allow are replaced, as in saved
    /// settings.
    /// @throws std::ios_base::failure when the stream does not take it
    void write(std::ostream& stream) const;
    /// @param file UTF-8
    /// @return the catalogue that a file holds
    /// @throws ConfigurationCatalogueError when it cannot be read or is not a catalogue; what()
    /// says
    ///         why, and begins with "FILE:LINE:COLUMN: " where a place is known, else with "FILE: "
    static ConfigurationCatalogue read(const FileName& file);

    /// @return name of the application
    const std::string& getApplication() const { return m_application; }
    /// @return the versions that it loads
    const std::list<std::string>& getAcceptedVersions() const { return m_acceptedVersions; }
    /// @return the version that it saves
    const std::string& getWrittenVersion() const { return m_writtenVersion; }
    /// @return what setFiles() was given; nothing: the files are standardConfigurationFiles()
    const std::optional<StandardConfigurationFiles>& getFiles() const { return m_files; }
    /// @return the files as the application finds them when it is started now by this user, so that
    ///         "~/" is a home folder; empty: it has no system file, or the user no home folder
    StandardConfigurationFiles findFiles() const;
    /// @return the registered objects, in the order in which they were added
    const std::vector<ConfigurationCatalogueEntry>& getEntries() const { return m_entries; }
    /// @return names of earlier versions
    const std::vector<ConfigurationFormerPath>& getFormerPaths() const { return m_formerPaths; }
    /// @return texts of earlier versions
    const std::vector<ConfigurationFormerText>& getFormerTexts() const { return m_formerTexts; }

    /// Makes objects of the entries and registers them with a manager, as the application does: of
    /// several with keys, one for each key in the files. Sets the accepted versions before.
    /// @param manager with files but without objects
    /// @throws like ConfigurationObjectDescription::makeObject()
    void registerObjects(ConfigurationManager& manager) const;

private:
    std::string m_application;
    std::list<std::string> m_acceptedVersions;
    std::string m_writtenVersion;
    std::optional<StandardConfigurationFiles> m_files;
    std::vector<ConfigurationCatalogueEntry> m_entries;
    std::vector<ConfigurationFormerPath> m_formerPaths;
    std::vector<ConfigurationFormerText> m_formerTexts;
};

} // namespace Orvant
