#pragma once

#include <ConfigurationFramework/ConfigurationOrigin.h>
#include <ConfigurationFramework/ConfigurationProblem.h>
#include <ConfigurationFramework/ConfigurationSaveReport.h>
#include <ConfigurationFramework/Export.h>
#include <FileHandling/FileName.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvant {

class AdvancedConfigReader;
class ConfigurationObject;
struct ConfigurationManagerLayers;
class LayerDocument;
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
/// manager.setSaveMode(ConfigurationManager::Merge);
/// manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
/// manager.addConfigurationObjects({{std::make_shared<ViewSettings>(), "ViewSettings"},
///                                  {std::make_shared<Plotter>(), "Plotter", "Hall 1"}});
/// if (!manager.saveConfiguration("1.0"))
///     std::cerr << manager.getSaveReport().text << '\n';
/// @endcode
///
/// With one file, a save writes every object in full. With a system and a user file, a save writes
/// to the user file what differs from the system file, which is never written. In the mode Merge it
/// writes only what changed of that. What the manager does not own stays in the file.
///
/// Every load, reset, error query and save reads the files anew. A file that holds the same bytes
/// as before is not parsed again: the manager keeps what it parsed until releaseMemory(). Use a
/// manager from one thread.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationManager {
public:
    /// Copies files, versions and registrations; the objects themselves are shared, parsed files
    /// are not.
    /// @{
    ConfigurationManager(const ConfigurationManager&);
    ConfigurationManager& operator=(const ConfigurationManager&);
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
    ///         loaded; those before it are registered, those after it are not; the first exception
    ///         of a callback of Setting::onChange(), when all are registered and loaded
    void addConfigurationObjects(const std::vector<ConfigurationRegistration>& registrations);
    /// Registers an object and loads it from the element of that name. Reads the files again, and
    /// parses those that changed.
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

    /// Forgets objects and files; accepted versions, save mode, lock timeout and whether the system
    /// file is required stay.
    void reset();
    /// Sets an object to its defaults, except locked values, and loads it again from one file.
    /// @param name         name that it is registered under; of several, the first is reset
    /// @param fromUserFile with two files: true loads only the user file (what only the system file
    ///                     sets then has its default), false only the system file
    /// @throws std::logic_error with the user file, before anything is reset, when the object
    ///         cannot be cloned because its factory returns null
    void resetConfigurationObject(const std::string& name, bool fromUserFile);

    /// Writes the objects to the file, or to the user file, as the save mode has it. Outside
    /// `Merge` their elements are replaced even in a file whose version loading does not accept.
    ///
    /// Nothing is written, in any mode, where settings or locks would be lost:
    /// - a file could not be read when an object was loaded, and can be read now;
    /// - the system file was read when an object was loaded, is there, and cannot be read now;
    /// - system and user file are one and the same file.
    /// @param version version of a new document; an existing file keeps its own except in `Merge`
    /// @return false when it could not be written or the file is not a configuration; the file is
    ///         then unchanged, and getSaveReport() tells why. True without doing anything when no
    ///         file is set.
    bool saveConfiguration(const std::string& version) const;
    /// Writes all objects in full to a file, as the save mode has it.
    /// @param fileName UTF-8; empty: nothing is written, which counts as success
    /// @param version  version of a new document
    /// @return false when it could not be written or the file is not a configuration; the file is
    ///         then unchanged, and getSaveReport() tells why
    bool saveConfigurationToFile(const std::string& fileName, const std::string& version) const;

    /// How a save treats the file and what others wrote to it.
    enum SaveMode : std::int32_t {
        /// Overwrites the file. A crash in the midst of it can lose the file.
        InPlace = 0,
        /// Writes the same document to a new file, which takes the place of the old one when it is
        /// complete and on the disk: after a crash there is the old file or the new one. Owner,
        /// permissions and access lists stay; a link stays, its target is replaced. Where that is
        /// not possible (a folder that may not be written, another hard link, an owner that cannot
        /// be kept), the file is written in place and the report says so.
        Replace = 1,
        /// As Replace, and writes only what this process changed in an object since it last loaded,
        /// reset, reloaded or saved it: what other processes wrote meanwhile stays, value by value,
        /// comments included. Where both changed a value, this process wins.
        ///
        /// All processes that save like this wait for each other, with a lock on the file
        /// "FILE.lock", which is made with the rights of FILE, as far as the process may give it
        /// these, and never deleted. Links lead to one lock, other hard links of a file do not;
        /// where it cannot be made or locked, the save goes on without it and
        /// the report says so. Without a change nothing is written. Missing folders are made. A
        /// file that is damaged or of a version that is not accepted is never overwritten; an empty
        /// one counts as missing. Locked values are not written, not even if the application set
        /// them. The file gets the version that the save is given, provided that loading accepts
        /// it.
        ///
        /// A value that is saved but never loaded (SaveOnly) counts as changed. So does all that a
        /// file held which is missing by now: it may have been lost. A reset to the system file's
        /// values is a change. Objects that were registered before the files were set, or loaded
        /// from others, replace what the file holds for them, as in the other modes. An object that
        /// is loaded from the element without its key is copied to one with the key; with one file,
        /// what is locked there stays as it is and locked. A change that a lock kept out of the
        /// file stays a change.
        Merge = 2
    };
    /// @param mode how saves work from now on; InPlace at first
    void setSaveMode(SaveMode mode) { m_saveMode = mode; }
    /// @return how saves work
    SaveMode getSaveMode() const { return m_saveMode; }
    /// @param timeout how long a save in the mode Merge waits for other processes; five seconds at
    ///                first
    void setLockTimeout(std::chrono::milliseconds timeout) { m_lockTimeout = timeout; }
    /// @return how long a save in the mode Merge waits for other processes
    std::chrono::milliseconds getLockTimeout() const { return m_lockTimeout; }
    /// Decides what happens when there are two files and the system file is missing or unusable, as
    /// when its folder is not mounted.
    /// @param required true: objects keep their values instead of being loaded without locks, and
    ///                 saves fail; false, as at first: only the user's file is used
    void setSystemFileRequired(bool required);
    /// @return true when objects are loaded and saved only with a usable system file
    bool isSystemFileRequired() const { return m_systemFileRequired; }
    /// @return how the last save went; valid until the next
    const ConfigurationSaveReport& getSaveReport() const { return m_saveReport; }

    /// @return true when the files hold something that this process has neither loaded nor saved;
    ///         false when it did neither. A save does not take over what others wrote: this stays
    ///         true until they are reloaded.
    bool haveFilesChanged() const;
    /// Takes over what others wrote to the files. Values that were changed here and not saved stay
    /// unless they are locked by now. Observers of the objects that change are signalled. An object
    /// that cannot be written or loaded stays as it is, with an error in the log. A class that
    /// keeps more than its values resets that in setDefaultValues(). No other thread may read the
    /// objects meanwhile.
    /// @return false when a file is there but cannot be read or is not accepted, or a required
    ///         system file is missing; then nothing is taken over
    /// @throws the first exception of a callback of Setting::onChange(), when everything is taken
    ///         over and all have been called
    bool reloadConfiguration();
    /// Tells what in the files, as they were at the last load or save, does not take effect when
    /// the registered objects are loaded. The files' text is searched by this call; loads do not
    /// become slower.
    ///
    /// Lines and columns are those of an element's '<' (what comes from an entity stands at the
    /// reference) or of the first error in a damaged file. Below an element that nobody declares,
    /// nothing more is reported; neither is what stands below an object without values and
    /// children that writes nothing, since only its class knows what it reads.
    /// @return problems of the system file, then those of the user's, in the order of the text
    /// @throws std::logic_error when createConfigurationObject() of an object returns null, and
    ///         what objects throw when they are loaded or saved; an object that XML cannot
    ///         name is left out, with an error in the log
    std::vector<ConfigurationProblem> getLoadProblems() const;
    /// Tells for every value of every registered object where it comes from, according to the files
    /// as they were when the object was last loaded, reset or saved. Includes values that are never
    /// saved, and what a class saves besides its values.
    ///
    /// A value that is not what the files gave then, or at the load before, was changed by the
    /// application: its layer is the user's, without file and line. What
    /// the system file locks is decided by the system file, or is the default if the text there
    /// does not convert. What a class locks when it is constructed is never loaded: it is the
    /// default, whatever the files say.
    /// @return origins in the order of saving; in an object, values come before children, and these
    ///         before what else the class saves
    /// @throws std::logic_error when createConfigurationObject() of an object returns null, and
    ///         what objects throw when they are loaded or saved; an object that XML cannot
    ///         name is left out, with an error in the log
    std::vector<ConfigurationOrigin> explain() const;

    /// Unregisters an object; the next saveConfiguration() that succeeds drops its element from the
    /// file that saves go to, or all elements of its name when it has no key.
    ///
    /// Nothing is dropped for an object that writes nothing (ConfigurationObject::writesContent()),
    /// nor when, before that save, its name and key are registered again, the manager is reset, or
    /// another file to save to is set, even if the first one is set again.
    /// @param name name that it is registered under; of several, the first is removed
    /// @return false when there is none
    bool removeConfigurationObject(const std::string& name);
    /// Unregisters an object with a key, as above.
    /// @param name name that it is registered under
    /// @param key  its key
    /// @return false when there is none
    bool removeConfigurationObject(const std::string& name, const std::string& key);
    /// resetConfigurationObject() for the object with a key.
    /// @param name         name that it is registered under
    /// @param key          its key
    /// @param fromUserFile which of two files is loaded
    /// @throws std::logic_error like resetConfigurationObject()
    void resetConfigurationObject(const std::string& name, const std::string& key,
                                  bool fromUserFile);
    /// @param name        tag of elements
    /// @param thatMayLock true: only those of the file whose locks count, that is the system file
    ///                    or the only one
    /// @return the keys that elements of that name have in the files, "" for an element without one
    std::set<std::string> getKeys(const std::string& name, bool thatMayLock = false) const;
    /// @return what is registered, in the order of saving: by name, and objects of one name in the
    ///         order of their registration
    std::vector<ConfigurationRegistration> getRegistrations() const;

    /// Gives back the memory of the parsed files, which the manager keeps so that it does not parse
    /// a file again that still holds the same bytes. They are parsed again when they are needed.
    void releaseMemory();

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

    using Address = std::pair<std::string, std::optional<std::string>>; ///< name and key
    struct ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT AddressHash {
        std::size_t operator()(const Address& address) const;
    };
    using Objects = std::multimap<std::string, ConfigurationRegistration>;

    friend class ConfigurationManagerChanges; // which needs what is known of an object
    struct ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT KnownState;
    class ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT Saving;

    /// What is known of the files. A copy shares no parsed documents with its original: they may be
    /// used by one thread only.
    struct ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT Knowledge {
        Knowledge() = default;
        Knowledge(const Knowledge& other);
        Knowledge(Knowledge&&) = default;
        Knowledge& operator=(const Knowledge& other) { return *this = Knowledge(other); }
        Knowledge& operator=(Knowledge&&) = default;
        ~Knowledge() = default;

        void releaseTrees() const;

        /// Names and keys that are taken, with what is known of their objects; null: nothing.
        std::unordered_map<Address, std::shared_ptr<const KnownState>, AddressHash> objects;
        /// What the files held at the last load or save; null: there was none.
        std::shared_ptr<const ConfigurationManagerLayers> layers;
        /// What the files held that all objects know of; null: nothing.
        std::shared_ptr<const ConfigurationManagerLayers> takenOver;
    };

    bool registerObject(const ConfigurationRegistration& registration);
    Objects::const_iterator find(const std::string& name) const;
    Objects::const_iterator find(const std::string& name,
                                 const std::optional<std::string>& key) const;
    bool removeObject(Objects::const_iterator found);
    void resetObject(Objects::const_iterator found, bool fromUserFile);
    void resetObject(const ConfigurationRegistration& registration, bool fromUserFile);

    FileName targetFile() const;
    LayerDocument readSystemFile(AdvancedConfigReader& reader) const;
    LayerDocument readUserFile(AdvancedConfigReader& reader, const FileName& file) const;
    ConfigurationManagerLayers readLayers(AdvancedConfigReader& reader) const;
    const KnownState* knownOf(const ConfigurationRegistration& registration) const;
    void setKnown(const ConfigurationRegistration& registration, KnownState state) const;
    void setSeen(const std::shared_ptr<const ConfigurationManagerLayers>& saved) const;
    void takeOverSaved() const;
    bool isTakenOver(const FileName& file, bool exists, const std::string& bytes) const;
    bool isAccepted(const std::string& version) const;
    void finishFileChange(const FileName& formerTarget);
    bool addSourceToConfigReader(AdvancedConfigReader& reader);
    bool isOneOfTwo(const FileName& file) const;
    bool save(const FileName& target, const std::string& version, bool differencesOnly) const;
    bool saveSingleConfiguration(std::unique_ptr<ConfigWriter>& writer, const FileName& file) const;
    bool saveUserAndCompareWithSystemConfiguration(std::unique_ptr<ConfigWriter>& writer,
                                                   const FileName& file) const;

    static ConfigurationManager s_instance;

    FileMode m_fileMode = NoFiles;
    FileName m_configurationFile;
    FileName m_systemFile;
    FileName m_userFile;
    /// By name; objects of the same name in order of registration.
    Objects m_objects;
    std::list<std::string> m_validVersions;
    mutable Revision m_revision; ///< of files, their contents and versions
    Revision m_resets;           ///< of the registrations
    SaveMode m_saveMode = InPlace;
    std::chrono::milliseconds m_lockTimeout = std::chrono::seconds(5);
    bool m_systemFileRequired = false;
    mutable ConfigurationSaveReport m_saveReport;
    mutable std::set<Address> m_removed; ///< the next save drops their elements
    mutable Knowledge m_known;
};

} // namespace Orvant
