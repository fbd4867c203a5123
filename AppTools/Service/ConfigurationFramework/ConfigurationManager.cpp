#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ChangeHold.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManagerChanges.h>
#include <ConfigurationFramework/ConfigurationManagerChecking.h>
#include <ConfigurationFramework/ConfigurationManagerExplaining.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationManagerReloading.h>
#include <ConfigurationFramework/ConfigurationManagerSaving.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ElementAddress.h>
#include <ConfigurationFramework/files/FileLinks.h>

#include <FileHandling/FileUtilities.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <ranges>
#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

std::vector<std::shared_ptr<ConfigurationObject>>
objectsOf(const std::vector<ConfigurationRegistration>& registrations) {
    std::vector<std::shared_ptr<ConfigurationObject>> objects;
    objects.reserve(registrations.size());
    for (const ConfigurationRegistration& registration : registrations)
        objects.push_back(registration.object);
    return objects;
}

const Logging s_log("ConfigurationManager");

void logProblem(const ConfigurationRegistration& registration, const std::string& problem) {
    s_log.logERROR("The object \"" + registration.name + "\" is left out: " + problem, __FILE__,
                   __func__, __LINE__);
}

/// Keeps names that XML cannot hold, for which Xerces throws an exception of its own, from the
/// application.
template <typename Action>
void guardUnwritable(const ConfigurationRegistration& registration, Action action) {
    try {
        action();
    } catch (const std::exception&) {
        throw;
    } catch (...) {
        logProblem(registration, "it cannot be written as XML");
    }
}

/// Keeps what fails for one object from the others.
template <typename Action>
void guard(const ConfigurationRegistration& registration, Action action) {
    try {
        guardUnwritable(registration, action);
    } catch (const std::exception& e) {
        logProblem(registration, e.what());
    }
}

const ConfigurationManagerLayers&
orNone(const std::shared_ptr<const ConfigurationManagerLayers>& layers) {
    static const ConfigurationManagerLayers none;
    return layers == nullptr ? none : *layers;
}

} // namespace

ConfigurationManager ConfigurationManager::s_instance;

ConfigurationManager::ConfigurationManager() = default;

ConfigurationManager::ConfigurationManager(const ConfigurationManager&) = default;

ConfigurationManager& ConfigurationManager::operator=(const ConfigurationManager&) = default;

ConfigurationManager::~ConfigurationManager() = default;

ConfigurationManager& ConfigurationManager::getInstance() {
    return s_instance;
}

void ConfigurationManager::setConfigurationFile(const FileName& file) {
    const FileName former = targetFile();
    m_configurationFile = file;
    m_fileMode = SingleFile;
    finishFileChange(former);
}

void ConfigurationManager::setSystemAndUserConfigurationFile(const FileName& systemFile,
                                                             const FileName& userFile) {
    const FileName former = targetFile();
    m_systemFile = systemFile;
    m_userFile = userFile;
    m_fileMode = SystemAndUserFile;
    finishFileChange(former);
}

void ConfigurationManager::finishFileChange(const FileName& formerTarget) {
    // What was removed is not to be dropped from other files.
    if (!isSameFile(formerTarget, targetFile()))
        m_removed.clear();
    ++m_revision;
}

void ConfigurationManager::setValidVersionList(const std::list<std::string>& versions) {
    m_validVersions = versions;
    ++m_revision;
}

void ConfigurationManager::setSystemFileRequired(bool required) {
    m_systemFileRequired = required;
    ++m_revision;
}

void ConfigurationManager::addConfigurationObjects(
    const std::vector<ConfigurationRegistration>& registrations) {
    std::optional<AdvancedConfigReader> reader;
    unsigned int readRevision = 0;
    bool hasSource = false;
    std::shared_ptr<const ConfigurationManagerLayers> layers;
    const auto addAndLoad = [&](const ConfigurationRegistration& registration) {
        const bool isRegistered = registerObject(registration);
        // An object may set other files, or save, while it is loaded.
        if (!reader || readRevision != m_revision.number()) {
            readRevision = m_revision.number();
            hasSource = addSourceToConfigReader(reader.emplace());
            layers = m_known.layers;
        }
        if (hasSource)
            ElementAddress(registration).load(*reader, *registration.object);
        if (isRegistered && layers != nullptr)
            setKnown(registration,
                     {.loaded = layers, .layers = layers, .isLoadRefused = !layers->mayLoad()});
    };
    tellAfterLoad(objectsOf(registrations), [&] {
        for (const ConfigurationRegistration& registration : registrations)
            addAndLoad(registration);
    });
}

void ConfigurationManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                                  const std::string& name) {
    addConfigurationObjects({{std::move(object), name}});
}

void ConfigurationManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                                  const std::string& name, const std::string& key) {
    addConfigurationObjects({{std::move(object), name, key}});
}

/// @return true when the object is registered, now or since earlier
bool ConfigurationManager::registerObject(const ConfigurationRegistration& registration) {
    const auto& [object, name, key] = registration;
    if (object == nullptr)
        throw std::invalid_argument("a null object cannot be registered as " + name);
    // An object without a key is loaded from the first element of its name and saved in place of
    // all of them, so it has no siblings with keys.
    const auto namesake = m_objects.find(name);
    const bool mayJoin = namesake == m_objects.end() || (key && namesake->second.key);
    if (mayJoin && m_known.objects.emplace(Address(name, key), nullptr).second) {
        m_objects.emplace(name, registration);
        m_removed.erase({name, key});
        return true;
    }
    const auto registered = find(name, key);
    return registered != m_objects.end() && registered->second.object == object;
}

ConfigurationManager::Objects::const_iterator
ConfigurationManager::find(const std::string& name) const {
    const auto found = m_objects.lower_bound(name);
    return found != m_objects.end() && found->first == name ? found : m_objects.end();
}

ConfigurationManager::Objects::const_iterator
ConfigurationManager::find(const std::string& name, const std::optional<std::string>& key) const {
    const auto [first, last] = m_objects.equal_range(name);
    const auto found =
        std::find_if(first, last, [&](const auto& object) { return object.second.key == key; });
    return found == last ? m_objects.end() : found;
}

ConfigurationObject* ConfigurationManager::getConfigurationObject(const std::string& name) const {
    const auto found = find(name);
    return found == m_objects.end() ? nullptr : found->second.object.get();
}

std::vector<ConfigurationRegistration> ConfigurationManager::getRegistrations() const {
    const auto registrations = m_objects | std::views::values;
    return {registrations.begin(), registrations.end()};
}

bool ConfigurationManager::removeConfigurationObject(const std::string& name) {
    return removeObject(find(name));
}

bool ConfigurationManager::removeConfigurationObject(const std::string& name,
                                                     const std::string& key) {
    return removeObject(find(name, key));
}

bool ConfigurationManager::removeObject(Objects::const_iterator found) {
    if (found == m_objects.end())
        return false;
    const auto& [object, name, key] = found->second;
    m_known.objects.erase({name, key});
    // What a class never writes is not its own.
    if (object->writesContent())
        m_removed.emplace(name, key);
    m_objects.erase(found);
    return true;
}

/// @return what is known of a registered object's state in files; null: nothing
const ConfigurationManager::KnownState*
ConfigurationManager::knownOf(const ConfigurationRegistration& registration) const {
    const auto found = m_known.objects.find({registration.name, registration.key});
    return found == m_known.objects.end() ? nullptr : found->second.get();
}

void ConfigurationManager::setKnown(const ConfigurationRegistration& registration,
                                    KnownState state) const {
    const auto taken = m_known.objects.find({registration.name, registration.key});
    if (taken != m_known.objects.end())
        taken->second = std::make_shared<const KnownState>(std::move(state));
}

/// Keeps what a save left in the files. The system file stays known as it was loaded, so that a
/// change of it is noticed.
void ConfigurationManager::setSeen(
    const std::shared_ptr<const ConfigurationManagerLayers>& saved) const {
    LayerDocument user = saved->user;
    user.setAcceptedVersions(m_validVersions);
    if (m_known.layers == nullptr)
        m_known.layers = saved;
    if (m_fileMode == SystemAndUserFile && m_known.layers->system.file().empty()) {
        // Nothing was loaded, and a save by name does not look at it.
        AdvancedConfigReader unused;
        m_known.layers = m_known.layers->withSystem(readSystemFile(unused));
    }
    m_known.layers = m_known.layers->withUser(user);
}

/// Has the objects know all that was saved.
void ConfigurationManager::takeOverSaved() const {
    m_known.takenOver = m_known.takenOver == nullptr
                            ? m_known.layers
                            : m_known.takenOver->withUser(m_known.layers->user);
}

/// Whether the objects know all that a file holds, if it is there.
bool ConfigurationManager::isTakenOver(const FileName& file, bool exists,
                                       const std::string& bytes) const {
    if (m_known.takenOver == nullptr)
        return true;
    const LayerDocument& user = m_known.takenOver->user;
    return isSameFile(user.file(), file) ? user.exists() == exists && user.bytes() == bytes
                                         : !exists;
}

bool ConfigurationManager::isAccepted(const std::string& version) const {
    return std::ranges::find(m_validVersions, version) != m_validVersions.end();
}

/// @return the file that saves go to; empty: none
FileName ConfigurationManager::targetFile() const {
    return m_fileMode == SingleFile          ? m_configurationFile
           : m_fileMode == SystemAndUserFile ? m_userFile
                                             : FileName();
}

LayerDocument ConfigurationManager::readSystemFile(AdvancedConfigReader& reader) const {
    return {reader, m_systemFile, AdvancedConfigReader::System, m_validVersions,
            orNone(m_known.layers).system};
}

/// @param file the user's, or another that is saved to
LayerDocument ConfigurationManager::readUserFile(AdvancedConfigReader& reader,
                                                 const FileName& file) const {
    return {reader, file, AdvancedConfigReader::User, m_validVersions, orNone(m_known.layers).user};
}

/// Adds the files to a reader and keeps what they hold.
ConfigurationManagerLayers ConfigurationManager::readLayers(AdvancedConfigReader& reader) const {
    ConfigurationManagerLayers layers;
    layers.isSystemRequired = m_systemFileRequired && m_fileMode == SystemAndUserFile;
    if (m_fileMode == SystemAndUserFile)
        layers.system = readSystemFile(reader);
    if (m_fileMode != NoFiles)
        layers.user = readUserFile(reader, targetFile());
    return layers;
}

std::set<std::string> ConfigurationManager::getKeys(const std::string& name,
                                                    bool thatMayLock) const {
    std::set<std::string> keys;
    AdvancedConfigReader both;
    const ConfigurationManagerLayers layers = readLayers(both);
    if (!layers.mayLoad())
        return keys;
    if (m_fileMode != SystemAndUserFile || !thatMayLock) {
        both.getKeys(name, keys);
    } else {
        AdvancedConfigReader system;
        layers.system.addTo(system, AdvancedConfigReader::System);
        system.getKeys(name, keys);
    }
    return keys;
}

bool ConfigurationManager::addSourceToConfigReader(AdvancedConfigReader& reader) {
    ConfigurationManagerLayers layers = readLayers(reader);
    if (m_fileMode == NoFiles)
        m_known.layers = nullptr;
    else if (m_known.layers == nullptr ||
             !m_known.layers->areSame(layers)) // one copy for many loads
        m_known.layers = std::make_shared<const ConfigurationManagerLayers>(std::move(layers));
    // A later registration does not show the others what changed since theirs.
    if (m_known.takenOver == nullptr)
        m_known.takenOver = m_known.layers;
    return m_known.layers != nullptr && m_known.layers->mayLoad() &&
           (m_known.layers->system.isAccepted() || m_known.layers->user.isAccepted());
}

bool ConfigurationManager::hasSystemConfigFileErrors() {
    AdvancedConfigReader unused;
    return isOneOfTwo(m_systemFile) && !readSystemFile(unused).isAccepted();
}

bool ConfigurationManager::hasUserConfigFileErrors() {
    AdvancedConfigReader unused;
    return isOneOfTwo(m_userFile) &&
           !LayerDocument(unused, m_userFile, AdvancedConfigReader::System, m_validVersions,
                          orNone(m_known.layers).user)
                .isAccepted();
}

/// Whether there are two files, and one of that name.
bool ConfigurationManager::isOneOfTwo(const FileName& file) const {
    return m_fileMode == SystemAndUserFile && FileUtilities::exists(file);
}

void ConfigurationManager::reset() {
    m_objects.clear();
    m_removed.clear();
    m_known = {};
    m_fileMode = NoFiles;
    m_configurationFile = FileName();
    m_systemFile = FileName();
    m_userFile = FileName();
    ++m_revision;
    ++m_resets;
}

void ConfigurationManager::releaseMemory() {
    m_known.releaseTrees();
}

void ConfigurationManager::resetConfigurationObject(const std::string& name, bool fromUserFile) {
    resetObject(find(name), fromUserFile);
}

void ConfigurationManager::resetConfigurationObject(const std::string& name, const std::string& key,
                                                    bool fromUserFile) {
    resetObject(find(name, key), fromUserFile);
}

void ConfigurationManager::resetObject(Objects::const_iterator found, bool fromUserFile) {
    if (found == m_objects.end())
        return;
    const ConfigurationRegistration registration = found->second; // callbacks may unregister it
    tellAfterLoad(*registration.object, [&] { resetObject(registration, fromUserFile); });
}

void ConfigurationManager::resetObject(const ConfigurationRegistration& registration,
                                       bool fromUserFile) {
    const bool fromSystemFile = m_fileMode == SystemAndUserFile && !fromUserFile;
    AdvancedConfigReader unused;
    if (m_systemFileRequired && !readLayers(unused).mayLoad())
        return;
    // The user's file alone neither locks nor unlocks.
    const bool keepsLocks = m_fileMode == SystemAndUserFile && fromUserFile;
    const std::shared_ptr<ConfigurationObject> former(keepsLocks ? registration.object->clone()
                                                                 : nullptr);
    registration.object->setDefaultValues();

    if (m_fileMode == NoFiles)
        return;
    AdvancedConfigReader reader;
    const LayerDocument document =
        fromSystemFile ? readSystemFile(reader) : readUserFile(reader, targetFile());
    const auto loaded = document.isAccepted()
                            ? ElementAddress(registration).load(reader, *registration.object)
                            : ConfigurationAccessResult::Success;
    const auto withDocument = [&](const ConfigurationManagerLayers& layers) {
        return fromSystemFile ? layers.withSystem(document) : layers.withUser(document);
    };
    const KnownState* const known = knownOf(registration);
    // What the user's file says stays known after a reset from the system's: the reset is a change.
    setKnown(registration,
             {.loaded = withDocument(orNone(known == nullptr ? nullptr : known->loaded)),
              .layers = withDocument(orNone(m_known.layers)),
              .keptLocks = former});
    m_known.layers = withDocument(orNone(m_known.layers));
    if (m_known.takenOver == nullptr)
        m_known.takenOver = m_known.layers;
    // Even when no file was read: a class may unlock itself when it sets its defaults.
    if (keepsLocks)
        registration.object->restoreLocks(*former);
    // A load that succeeds tells the observers itself; after one that finds nothing, they are told
    // of the defaults here.
    if (loaded == ConfigurationAccessResult::Failure)
        registration.object->emitSignalsAfterConfigLoading();
}

bool ConfigurationManager::haveFilesChanged() const {
    if (m_known.takenOver == nullptr)
        return false;
    AdvancedConfigReader reader;
    return !m_known.takenOver->holdSame(readLayers(reader));
}

bool ConfigurationManager::reloadConfiguration() {
    AdvancedConfigReader reader;
    const auto layers = std::make_shared<const ConfigurationManagerLayers>(readLayers(reader));
    if (layers->system.isRefused() || layers->user.isRefused() || !layers->mayLoad())
        return false;
    // Loaded is what a save would make of the user's file, so that unsaved changes stay.
    ConfigurationManagerChanges changes(m_fileMode == SystemAndUserFile ? &layers->system : nullptr,
                                        layers->user);
    for (const ConfigurationRegistration& registration : getRegistrations())
        guard(registration, [&] {
            if (registration.object->writesContent())
                changes.add(registration, knownOf(registration));
        });
    changes.addTo(reader);
    m_known.layers = layers;
    m_known.takenOver = layers;
    // A copy: an object may register others, or reset the manager, while it is loaded.
    const std::vector<ConfigurationRegistration> registrations = getRegistrations();
    tellAfterLoad(objectsOf(registrations), [&] {
        for (const ConfigurationRegistration& registration : registrations)
            guard(registration, [&] {
                if (!isUpToDate(registration, reader))
                    loadAnew(registration, reader);
                setKnown(registration, {.loaded = layers, .layers = layers});
            });
    });
    return true;
}

std::vector<ConfigurationProblem> ConfigurationManager::getLoadProblems() const {
    // Copies here and below: an object may register others, or save, while it is loaded.
    const auto layers = m_known.layers;
    if (layers == nullptr)
        return {};
    ConfigurationManagerChecking checking(*layers);
    for (const ConfigurationRegistration& registration : getRegistrations())
        guardUnwritable(registration, [&] { checking.add(registration); });
    return checking.problems();
}

std::vector<ConfigurationOrigin> ConfigurationManager::explain() const {
    const auto layers = m_known.layers == nullptr
                            ? std::make_shared<const ConfigurationManagerLayers>()
                            : m_known.layers;
    ConfigurationManagerExplaining explaining;
    for (const ConfigurationRegistration& registration : getRegistrations()) {
        const auto found = m_known.objects.find({registration.name, registration.key});
        const auto known = found == m_known.objects.end() ? nullptr : found->second;
        // Other files may be set by now.
        const bool isLoaded = known != nullptr && !known->isLoadRefused &&
                              isSameFile(known->layers->user.file(), layers->user.file());
        guardUnwritable(registration, [&] {
            if (isLoaded)
                explaining.add(registration, {known->layers, known->loaded});
            else
                explaining.addUnloaded(registration, layers);
        });
    }
    return explaining.takeOrigins();
}

bool ConfigurationManager::saveConfiguration(const std::string& version) const {
    return save(targetFile(), version, m_fileMode == SystemAndUserFile);
}

bool ConfigurationManager::saveConfigurationToFile(const std::string& fileName,
                                                   const std::string& version) const {
    return save(FileName(fileName), version, false);
}

bool ConfigurationManager::save(const FileName& target, const std::string& version,
                                bool differencesOnly) const {
    m_saveReport = {};
    if (target.empty())
        return true;
    ++m_revision;
    return Saving(*this, target, differencesOnly).run(version);
}

bool ConfigurationManager::saveSingleConfiguration(std::unique_ptr<ConfigWriter>& writer,
                                                   const FileName& file) const {
    Saving(*this, file, false).putAll(*writer);
    return true;
}

bool ConfigurationManager::saveUserAndCompareWithSystemConfiguration(
    std::unique_ptr<ConfigWriter>& writer, const FileName& file) const {
    Saving(*this, file, true).putDifferences(*writer);
    return true;
}

} // namespace Orvant
