#include <ConfigurationFramework/ConfigurationManagerSaving.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/ConfigurationManagerChanges.h>
#include <ConfigurationFramework/ElementAddress.h>
#include <ConfigurationFramework/SaveFailure.h>
#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileUtilities.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <set>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

namespace {

using Report = ConfigurationSaveReport;

const Logging s_log("ConfigurationManager");

/// Wraps what an object throws while it is written.
class ObjectNotWritten : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string textOf(const XMLCh* message) {
    return XercesHelperFunctions::xmlChToString(message);
}

/// The message of an exception, with the object that it comes from.
std::string describe(const std::exception_ptr& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const ObjectNotWritten& e) {
        const auto& nested = dynamic_cast<const std::nested_exception&>(e);
        return std::string("the object \"").append(e.what()).append("\": ") +
               describe(nested.nested_ptr());
    } catch (const std::exception& e) {
        return e.what();
    } catch (const xercesc::DOMException& e) {
        return textOf(e.getMessage());
    } catch (const xercesc::XMLException& e) {
        return textOf(e.getMessage());
    } catch (...) {
        return "an exception of unknown type";
    }
}

/// What a save that threw reports.
Report reportOf(const std::exception_ptr& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const SaveFailure& e) {
        return {e.reason(), e.error(), e.what()};
    } catch (const ObjectNotWritten&) {
        return {Report::InvalidContent, {}, describe(exception)};
    } catch (...) {
        return {Report::Failed, {}, describe(exception)};
    }
}

Report::Reason reasonOf(ConfigurationProblem::Kind refusal) {
    switch (refusal) {
    case ConfigurationProblem::OtherVersion:
        return Report::OtherVersion;
    case ConfigurationProblem::Unreadable:
        return Report::NotLoaded;
    default:
        return Report::Damaged;
    }
}

/// Why a file that is there is of no use now.
SaveFailure failureOf(const LayerDocument& layer) {
    const auto refusal = layer.refusal();
    const std::string what = refusal == ConfigurationProblem::Unreadable ? layer.error().message()
                             : refusal == ConfigurationProblem::OtherVersion
                                 ? "its version is not accepted"
                                 : "it is not a configuration document";
    return {reasonOf(refusal), quoted(layer.file()) + " cannot be used: " + what, layer.error()};
}

/// Calls back with each registration whose object writes something.
template <typename Objects, typename Write>
void forEachWritten(const Objects& objects, Write write) {
    for (const auto& [name, registration] : objects) {
        try {
            if (registration.object->writesContent())
                write(registration);
        } catch (...) {
            std::throw_with_nested(ObjectNotWritten(name));
        }
    }
}

} // namespace

ConfigurationManager::Saving::Saving(const ConfigurationManager& manager, const FileName& target,
                                     bool differencesOnly)
    : m_manager(manager), m_target(target), m_differencesOnly(differencesOnly) {}

bool ConfigurationManager::Saving::run(const std::string& version) {
    Report report;
    try {
        if (m_differencesOnly && isSameFile(m_manager.m_systemFile, m_target))
            throw SaveFailure(Report::SameFile, "it is also the system file, which is not written");
        if (m_manager.m_saveMode == Merge)
            merge(version);
        else
            write(version);
        return true;
    } catch (...) {
        report = reportOf(std::current_exception());
    }
    report = notSaved(m_target, std::move(report));
    s_log.logERROR(report.text, __FILE__, __func__, __LINE__);
    m_manager.m_saveReport = std::move(report);
    return false;
}

/// Writes the document that holds all objects, over what the file holds for them.
void ConfigurationManager::Saving::write(const std::string& version) {
    checkTarget();
    bool wasTakenOver = true;
    auto writer = openTarget(version, wasTakenOver);
    dropRemoved(ConfigWriterImpl::of(*writer));
    if (m_differencesOnly)
        m_manager.saveUserAndCompareWithSystemConfiguration(writer, m_target);
    else
        m_manager.saveSingleConfiguration(writer, m_target);
    if (wasTakenOver && isLoadedFile())
        m_manager.takeOverSaved();
}

/// @param isTakenOver set to whether the objects know all that the file holds
std::unique_ptr<ConfigWriter> ConfigurationManager::Saving::openTarget(const std::string& version,
                                                                       bool& isTakenOver) const {
    if (!FileUtilities::exists(m_target)) {
        isTakenOver = m_manager.isTakenOver(m_target, false, "");
        return std::make_unique<ConfigWriter>(version);
    }
    const FileBytes file = readBytes(m_target);
    if (file.error)
        throw failureOf(file.error);
    isTakenOver = m_manager.isTakenOver(m_target, true, *file.bytes);
    try {
        // What the file holds for others survives.
        return ConfigWriterImpl::open(*file.bytes);
    } catch (const ConfigException&) {
        throw SaveFailure(Report::Damaged, "it is there, but cannot be read as a configuration");
    }
}

void ConfigurationManager::Saving::putAll(ConfigWriter& writer) {
    forEachWritten(m_manager.m_objects, [&](const ConfigurationRegistration& registration) {
        ElementAddress(registration).put(writer, *registration.object);
    });
    storeAll(writer);
}

void ConfigurationManager::Saving::putDifferences(ConfigWriter& writer) {
    readSystemFile();
    SystemReader reader;
    m_system.addTo(reader, AdvancedConfigReader::System);
    forEachWritten(m_manager.m_objects, [&](const ConfigurationRegistration& registration) {
        reader.setCompared(registration);
        ElementAddress(registration).putDifferences(writer, *registration.object, reader);
    });
    storeAll(writer);
}

/// Drops the elements of objects that are not registered any more.
/// @return number of elements that were there
std::size_t ConfigurationManager::Saving::dropRemoved(ConfigWriterImpl& document) const {
    std::size_t count = 0;
    if (isLoadedFile())
        for (const auto& [name, key] : m_manager.m_removed)
            count += document.deleteObject(name, key) ? 1 : 0;
    return count;
}

/// Whether objects are loaded from the file.
bool ConfigurationManager::Saving::isLoadedFile() const {
    return isSameFile(m_target, m_manager.targetFile());
}

/// Stores a document that holds all objects.
void ConfigurationManager::Saving::storeAll(const ConfigWriter& writer) {
    const auto layers = store(ConfigWriterImpl::of(writer));
    if (!isLoadedFile())
        return;
    const auto known = setSeen(layers);
    for (const auto& [name, registration] : m_manager.m_objects)
        if (registration.object->writesContent())
            setSaved(registration, known, nullptr);
}

/// Keeps what the files hold after a save.
/// @return that, with the system file as it was read last
std::shared_ptr<const ConfigurationManagerLayers> ConfigurationManager::Saving::setSeen(
    const std::shared_ptr<const ConfigurationManagerLayers>& saved) const {
    m_manager.setSeen(saved);
    m_manager.m_removed.clear();
    return m_differencesOnly ? saved : m_manager.m_known.layers;
}

/// Keeps what was saved of an object, beside what is known of its load.
void ConfigurationManager::Saving::setSaved(
    const ConfigurationRegistration& registration,
    std::shared_ptr<const ConfigurationManagerLayers> layers,
    std::shared_ptr<const WrittenElement> written) const {
    const KnownState* const known = m_manager.knownOf(registration);
    const auto loaded =
        known == nullptr ? std::make_shared<const ConfigurationManagerLayers>() : known->loaded;
    m_manager.setKnown(registration, {loaded, std::move(layers), std::move(written)});
}

/// Calls back with what was known at the load of the objects that write something: once for all
/// that knew the same.
template <typename Check>
void ConfigurationManager::Saving::forEachKnown(Check check) const {
    std::set<std::pair<const ConfigurationManagerLayers*, bool>> checked;
    for (const auto& [name, registration] : m_manager.m_objects) {
        const KnownState* const known = m_manager.knownOf(registration);
        if (known != nullptr && registration.object->writesContent() &&
            checked.emplace(known->loaded.get(), known->isLoadRefused).second)
            check(name, *known);
    }
}

/// @throws SaveFailure where what the target holds would be lost because an object does not know it
void ConfigurationManager::Saving::checkTarget() {
    forEachKnown([&](const std::string& name, const KnownState& known) {
        for (const LayerDocument* atLoad : {&known.loaded->system, &known.loaded->user})
            if (isSameFile(atLoad->file(), m_target))
                checkTarget(name, known, *atLoad);
    });
}

void ConfigurationManager::Saving::checkTarget(const std::string& name, const KnownState& known,
                                               const LayerDocument& atLoad) {
    if (known.isLoadRefused)
        throw SaveFailure(Report::NotLoaded, "the object \"" + name +
                                                 "\" was not loaded, for want of " +
                                                 quoted(m_manager.m_systemFile));
    // An empty file is what a crash leaves, but also one that is just being written: it only counts
    // as missing where nothing is overwritten.
    const bool countsAsMissing = m_manager.m_saveMode == Merge && atLoad.isEmptyFile();
    if (!atLoad.isRefused() || countsAsMissing)
        return;
    if (m_user.file().empty())
        m_user = readUserFile();
    checkLayer(atLoad, m_user, name);
}

/// @throws SaveFailure where what the system file says and locks would be ignored
void ConfigurationManager::Saving::checkSystemFile() const {
    if (m_manager.m_systemFileRequired && !m_system.isAccepted())
        throw m_system.exists() ? failureOf(m_system)
                                : SaveFailure(Report::NotLoaded, quoted(m_manager.m_systemFile) +
                                                                     " is required but missing");
    forEachKnown([&](const std::string& name, const KnownState& known) {
        const LayerDocument& atLoad = known.loaded->system;
        if (!isSameFile(atLoad.file(), m_manager.m_systemFile))
            return;
        if (atLoad.isAccepted() && m_system.isRefused())
            throw failureOf(m_system);
        checkLayer(atLoad, m_system, name);
    });
}

/// @throws SaveFailure for a file that was not accepted when the object was loaded, but is now
void ConfigurationManager::Saving::checkLayer(const LayerDocument& atLoad, const LayerDocument& now,
                                              const std::string& name) {
    if (atLoad.isRefused() && now.isAccepted())
        throw SaveFailure(Report::NotLoaded,
                          quoted(now.file()) + " could not be read when the object \"" + name +
                              "\" was loaded, and what it holds would be lost",
                          atLoad.error());
}

/// The name that the target is known by: a link may lead to the file that objects are loaded from.
FileName ConfigurationManager::Saving::knownTarget() const {
    return isLoadedFile() ? m_manager.targetFile() : m_target;
}

LayerDocument ConfigurationManager::Saving::readUserFile() const {
    AdvancedConfigReader unused;
    return m_manager.readUserFile(unused, knownTarget());
}

/// Merges what changed into what the file holds now.
void ConfigurationManager::Saving::merge(const std::string& version) {
    const SaveLock lock(m_target, m_manager.m_lockTimeout);
    m_user = readUserFile();
    if (m_user.isEmptyFile())
        s_log.logERROR(quoted(m_target) + " is empty and counts as missing", __FILE__, __func__,
                       __LINE__);
    else if (m_user.isRefused())
        throw m_user.error() ? failureOf(m_user.error()) : failureOf(m_user);
    checkTarget();
    if (m_differencesOnly)
        readSystemFile();
    if (!m_user.isAccepted() && !m_manager.isAccepted(version))
        throw SaveFailure(Report::OtherVersion, "the version \"" + version + "\" is not accepted");
    ConfigurationManagerChanges changes(m_differencesOnly ? &m_system : nullptr, m_user,
                                        lockingSystem());
    findChanges(changes);
    m_manager.m_saveReport = {};
    const auto layers = mergeInto(changes, version);
    const auto states = changes.takeStates(); // as long as what the changes refer to is known
    if (isLoadedFile()) {
        const bool wasTakenOver = m_manager.isTakenOver(m_target, m_user.exists(), m_user.bytes());
        const auto known = setSeen(layers);
        if (wasTakenOver) // else it holds what others wrote meanwhile
            m_manager.takeOverSaved();
        for (const auto& state : states)
            setSaved(state.registration, known, state.written);
    }
    lock.tellIfNotMade(m_manager.m_saveReport);
}

/// @return the system file that was loaded, where its locks hold although it is gone; null: they do
///         not
const LayerDocument* ConfigurationManager::Saving::lockingSystem() const {
    const auto& known = m_manager.m_known.layers;
    return m_differencesOnly && known != nullptr && !m_system.isAccepted() ? &known->system
                                                                           : nullptr;
}

/// Finds what changed in the objects since they were last known.
void ConfigurationManager::Saving::findChanges(ConfigurationManagerChanges& changes) const {
    changes.restoreLostFile();
    forEachWritten(m_manager.m_objects, [&](const ConfigurationRegistration& registration) {
        if (isKnownInTarget(registration))
            changes.add(registration, m_manager.knownOf(registration));
        else
            changes.addAll(registration);
    });
}

/// Stores what the file holds with the changes, if that is something else.
/// @return what the files hold now
std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManager::Saving::mergeInto(const ConfigurationManagerChanges& changes,
                                        const std::string& version) {
    // Of another file than the objects', only a new one gets the version.
    const bool isOtherVersion =
        isLoadedFile() && m_user.version() != version && m_manager.isAccepted(version);
    const bool dropsRemoved = isLoadedFile() && !m_manager.m_removed.empty();
    if (isOtherVersion || dropsRemoved || !changes.empty()) {
        const auto document = m_user.isAccepted() ? ConfigWriterImpl::openBytes(m_user.bytes())
                                                  : std::make_unique<ConfigWriterImpl>(version);
        std::size_t count = dropRemoved(*document);
        count += changes.mergeInto(document->root());
        if (isOtherVersion && document->version() != version) {
            document->setVersion(version);
            ++count;
        }
        if (count != 0)
            return store(*document);
    }
    return std::make_shared<const ConfigurationManagerLayers>(m_system, m_user);
}

void ConfigurationManager::Saving::readSystemFile() {
    AdvancedConfigReader unused;
    m_system = m_manager.readSystemFile(unused);
    checkSystemFile();
}

/// Whether a file is the system's; none is, where there is only one file.
bool ConfigurationManager::Saving::isSystemFile(const FileName& file) const {
    return m_differencesOnly ? isSameFile(file, m_manager.m_systemFile) : file.empty();
}

/// Whether it is known what an object had in the target, and that is still there.
bool ConfigurationManager::Saving::isKnownInTarget(
    const ConfigurationRegistration& registration) const {
    const KnownState* const known = m_manager.knownOf(registration);
    const auto wasItsElement = [&](const Address& removed) {
        return removed.first == registration.name && (!removed.second || !registration.key);
    };
    const bool isInFull = m_manager.m_fileMode == SystemAndUserFile && !m_differencesOnly;
    return !isInFull && known != nullptr && areOfTarget(known->layers) &&
           std::ranges::none_of(m_manager.m_removed, wasItsElement);
}

/// Whether files are those that the save is about.
bool ConfigurationManager::Saving::areOfTarget(
    const std::shared_ptr<const ConfigurationManagerLayers>& layers) const {
    const auto [found, isNew] = m_areOfTarget.try_emplace(layers, false);
    if (isNew)
        found->second =
            isSameFile(layers->user.file(), m_target) && isSystemFile(layers->system.file());
    return found->second;
}

/// Writes a finished document to the file.
/// @return what the files hold now
std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManager::Saving::store(ConfigWriterImpl& document) const {
    PrintedDocument printed = document.print();
    m_manager.m_saveReport = storeDocument(m_target, printed, m_manager.m_saveMode == InPlace);
    const std::string version = document.version();
    return std::make_shared<const ConfigurationManagerLayers>(
        m_system, LayerDocument(knownTarget(), std::move(printed.text), version,
                                m_manager.isAccepted(version)));
}

} // namespace Orvant
