#pragma once

#include <ConfigurationFramework/Export.h>
#include <FileHandling/FileName.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

class AdvancedConfigReader;
class ConfigurationObject;
class ConfigWriter;

/// An object to be registered, with the element that it is loaded from and saved to.
struct ConfigurationRegistration {
    std::shared_ptr<ConfigurationObject> object; ///< shared with the manager, not null
    std::string name;                            ///< tag of the element
    std::optional<std::string> key = {};         ///< key of the element, if it has one
};

/// The process-wide registry of configuration objects. It loads them when they are registered, and
/// saves them.
///
/// @code
/// auto& manager = ConfigurationManager::getInstance();
/// manager.setValidVersionList({"1.0"});
/// manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
/// manager.addConfigurationObjects({{std::make_shared<ViewSettings>(), "ViewSettings"},
///                                  {std::make_shared<Plotter>(), "Plotter", "Hall 1"}});
/// manager.saveConfiguration("1.0");
/// @endcode
///
/// With one file, a save writes every object in full. With a system and a user file, a save writes
/// to the user file what differs from the system file, which is never written. What the manager
/// does not own stays in the file. Use it from one thread.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationManager {
public:
    /// Copies files, versions and registrations; the objects themselves are shared.
    /// @{
    ConfigurationManager(const ConfigurationManager&) = default;
    ConfigurationManager& operator=(const ConfigurationManager&) = default;
    /// @}
    virtual ~ConfigurationManager();

    /// @return the one instance of the process
    static ConfigurationManager& getInstance();

    /// From now on, loads and saves use one file. Nothing is loaded by this call.
    /// @param file need not exist: the first save creates it
    void setConfigurationFile(const FileName& file);
    /// From now on, loads use both files and saves go to the user file. Nothing is loaded by this
    /// call.
    /// @param systemFile the administrator's file, never written; need not exist
    /// @param userFile   need not exist: the first save creates it
    void setSystemAndUserConfigurationFile(const FileName& systemFile, const FileName& userFile);
    /// Sets the document versions that loading accepts. A file of another version is not loaded;
    /// with an empty list, the initial state, none is.
    /// @param versions accepted values of the root's version attribute
    void setValidVersionList(const std::list<std::string>& versions);
    /// @return the document versions that loading accepts
    const std::list<std::string>& getValidVersions() const { return m_validVersions; }

    /// Registers and loads objects like addConfigurationObject() for one after the other, but opens
    /// each file only once: use it to register an application's objects at start. What an object
    /// does to the manager while it is loaded (sets other files or versions, resets, saves) takes
    /// effect on the objects after it; what it writes to the files in other ways they may not see.
    /// @param registrations objects with the names and keys of their elements
    /// @throws std::invalid_argument for a null object, and whatever an object throws while it is
    ///         loaded; those before it are registered, those after it are not
    void addConfigurationObjects(const std::vector<ConfigurationRegistration>& registrations);
    /// Registers an object and loads it from the element of that name. Opens the files again.
    /// @param object shared with the caller; if the files do not have its element, it keeps its
    ///               values. When the name is taken, the earlier object stays registered, and this
    ///               one is only loaded.
    /// @param name   tag of the object's element; the object is also saved there
    /// @throws std::invalid_argument for a null object
    void addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                const std::string& name);
    /// Registers an object and loads it from the element of that name and key or, if no element has
    /// the key, from the one without a key. It is saved in the element with the key.
    ///
    /// Objects with the same name and different keys are registered side by side, each once, so
    /// that all are saved; look-ups and resets by name find the first. An object without a key
    /// cannot join them.
    /// @param object shared with the caller
    /// @param name   tag of the object's element
    /// @param key    key of the object's element
    /// @throws std::invalid_argument for a null object
    void addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                const std::string& name, const std::string& key);
    /// @param name name that an object is registered under
    /// @return the object that was first registered under the name, owned by the manager; null when
    ///         there is none
    ConfigurationObject* getConfigurationObject(const std::string& name) const;

    /// @return true when there are two files and the system file is there but cannot be loaded
    /// @throws FileNameException for a name that no file system could hold
    bool hasSystemConfigFileErrors();
    /// @return true when there are two files and the user file is there but cannot be loaded
    /// @throws FileNameException for a name that no file system could hold
    bool hasUserConfigFileErrors();

    /// Forgets objects and files; the accepted versions stay.
    void reset();
    /// Sets an object to its defaults, except locked values, and loads it again from one file.
    /// @param name         name that it is registered under; of several, the first is reset
    /// @param fromUserFile with two files: true loads only the user file (what only the system file
    ///                     sets then has its default), false only the system file
    /// @throws std::logic_error with the user file, before anything is reset, when the object
    ///         cannot be cloned because its factory returns null
    void resetConfigurationObject(const std::string& name, bool fromUserFile);

    /// Writes the objects to the file, or to the user file. Their elements are replaced even in a
    /// file whose version loading does not accept.
    /// @param version version of a new document; an existing file keeps its own
    /// @return false when it could not be written or the file is not a configuration; the file is
    ///         then unchanged. True without doing anything when no file is set.
    bool saveConfiguration(const std::string& version) const;
    /// Writes all objects in full to a file.
    /// @param fileName UTF-8; empty: nothing is written, which counts as success
    /// @param version  version of a new document
    /// @return false when it could not be written or the file is not a configuration; the file is
    ///         then unchanged
    bool saveConfigurationToFile(const std::string& fileName, const std::string& version) const;

private:
    enum FileMode : std::int32_t { NoFiles = 0, SingleFile = 1, SystemAndUserFile = 2 };

    /// Reads the number of resets.
    friend class DisableFeaturesConfiguration;

    /// Counts changes; an assignment counts as one. May be read from any thread.
    class Revision {
    public:
        Revision() = default;
        Revision(const Revision& /*other*/) {}
        Revision& operator=(const Revision& /*other*/) {
            ++m_number;
            return *this;
        }
        void operator++() { ++m_number; }
        unsigned int number() const { return m_number; }

    private:
        std::atomic<unsigned int> m_number = 0;
    };

    ConfigurationManager();

    void registerObject(const ConfigurationRegistration& registration);
    bool addSourceToConfigReader(AdvancedConfigReader& reader);
    bool hasErrors(const FileName& file) const;
    bool saveSingleConfiguration(std::unique_ptr<ConfigWriter>& writer, const FileName& file) const;
    bool saveUserAndCompareWithSystemConfiguration(std::unique_ptr<ConfigWriter>& writer,
                                                   const FileName& file) const;

    static ConfigurationManager s_instance;

    FileMode m_fileMode = NoFiles;
    FileName m_configurationFile;
    FileName m_systemFile;
    FileName m_userFile;
    /// By name; objects of the same name in order of registration.
    std::multimap<std::string, ConfigurationRegistration> m_objects;
    /// Names and keys that are taken.
    std::set<std::pair<std::string, std::optional<std::string>>> m_taken;
    std::list<std::string> m_validVersions;
    mutable Revision m_revision; ///< of files, their contents and versions
    Revision m_resets;           ///< of the registrations
};

} // namespace Orvant
