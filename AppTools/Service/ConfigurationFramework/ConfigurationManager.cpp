#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileUtilities.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

namespace {

const Logging s_log("ConfigurationManager");

/// The element that an object is loaded from and saved to.
struct ElementAddress {
    const std::string& name;
    const std::optional<std::string>& key; ///< tells elements of one name apart

    explicit ElementAddress(const ConfigurationRegistration& registration)
        : name(registration.name), key(registration.key) {}

    ConfigurationAccessResult load(AdvancedConfigReader& reader,
                                   ConfigurationObject& object) const {
        // Bypasses SystemReader's override, which calls this.
        return key ? reader.AdvancedConfigReader::getClassContents(name, *key, object)
                   : reader.AdvancedConfigReader::getClassContents(name, object);
    }
    void put(ConfigWriter& writer, const ConfigurationObject& object) const {
        if (key)
            writer.putClassContents(name, *key, object, "");
        else
            writer.putClassContents(name, object, "");
    }
    void putDifferences(ConfigWriter& writer, const ConfigurationObject& object,
                        ConfigReader& reference) const {
        if (key)
            writer.putOnlyDifferentClassContents(name, *key, object, reference, "");
        else
            writer.putOnlyDifferentClassContents(name, object, reference, "");
    }
};

/// The system file as objects that are compared with it see it: each asks for itself by its own
/// name, but the file has it at its registered address.
class SystemReader : public AdvancedConfigReader {
public:
    using AdvancedConfigReader::getClassContents;

    /// Sets the object that is compared from now on.
    void setCompared(const ConfigurationRegistration& registration) { m_compared = &registration; }

    ConfigurationAccessResult getClassContents(const std::string& name,
                                               ConfigurationObject& object) override {
        return name == m_compared->object->getName()
                   ? ElementAddress(*m_compared).load(*this, object)
                   : AdvancedConfigReader::getClassContents(name, object);
    }

private:
    const ConfigurationRegistration* m_compared = nullptr;
};

std::unique_ptr<ConfigWriter> openForSaving(const FileName& file, const std::string& version) {
    if (!FileUtilities::exists(file))
        return std::make_unique<ConfigWriter>(version);
    try {
        // What the file holds for others survives.
        return std::make_unique<ConfigWriter>(file, "");
    } catch (const ConfigException&) {
        if (const std::error_code problem = checkRegularFile(file))
            throw std::system_error(problem);
        throw std::runtime_error("it is there, but cannot be read as a configuration");
    }
}

/// Wraps what an object throws while it is written.
class ObjectNotWritten : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

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

/// Saves to a file; any exception leaves the file unchanged. A failure is logged in one line.
/// @param save puts the objects into a writer of the file and saves it
/// @return what `save` returns, false for an exception
template <typename Save>
bool saveGuarded(const FileName& file, const std::string& version, Save save) {
    std::string problem;
    try {
        auto writer = openForSaving(file, version);
        if (save(writer))
            return true;
        problem = writer->getSaveProblem();
    } catch (...) {
        problem = describe(std::current_exception());
    }
    std::string line = '"' + file.toString() + "\" was not saved: " + problem;
    std::ranges::replace(line, '\n', ' ');
    s_log.logERROR(line, __FILE__, __func__, __LINE__);
    return false;
}

} // namespace

ConfigurationManager ConfigurationManager::s_instance;

ConfigurationManager::ConfigurationManager() = default;

ConfigurationManager::~ConfigurationManager() = default;

ConfigurationManager& ConfigurationManager::getInstance() {
    return s_instance;
}

void ConfigurationManager::setConfigurationFile(const FileName& file) {
    m_configurationFile = file;
    m_fileMode = SingleFile;
    ++m_revision;
}

void ConfigurationManager::setSystemAndUserConfigurationFile(const FileName& systemFile,
                                                             const FileName& userFile) {
    m_systemFile = systemFile;
    m_userFile = userFile;
    m_fileMode = SystemAndUserFile;
    ++m_revision;
}

void ConfigurationManager::setValidVersionList(const std::list<std::string>& versions) {
    m_validVersions = versions;
    ++m_revision;
}

void ConfigurationManager::addConfigurationObjects(
    const std::vector<ConfigurationRegistration>& registrations) {
    std::optional<AdvancedConfigReader> reader;
    unsigned int readRevision = 0;
    bool hasSource = false;
    for (const ConfigurationRegistration& registration : registrations) {
        registerObject(registration);
        // An object may set other files, or save, while it is loaded.
        if (!reader || readRevision != m_revision.number()) {
            readRevision = m_revision.number();
            hasSource = addSourceToConfigReader(reader.emplace());
        }
        if (hasSource)
            ElementAddress(registration).load(*reader, *registration.object);
    }
}

void ConfigurationManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                                  const std::string& name) {
    addConfigurationObjects({{std::move(object), name}});
}

void ConfigurationManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                                  const std::string& name, const std::string& key) {
    addConfigurationObjects({{std::move(object), name, key}});
}

void ConfigurationManager::registerObject(const ConfigurationRegistration& registration) {
    const auto& [object, name, key] = registration;
    if (object == nullptr)
        throw std::invalid_argument("a null object cannot be registered as " + name);
    // An object without a key is loaded from the first element of its name and saved in place of
    // all of them, so it has no siblings with keys.
    const auto namesake = m_objects.find(name);
    const bool mayJoin = namesake == m_objects.end() || (key && namesake->second.key);
    if (mayJoin && m_taken.emplace(name, key).second)
        m_objects.emplace(name, registration);
}

ConfigurationObject* ConfigurationManager::getConfigurationObject(const std::string& name) const {
    const auto found = m_objects.lower_bound(name);
    return found != m_objects.end() && found->first == name ? found->second.object.get() : nullptr;
}

bool ConfigurationManager::addSourceToConfigReader(AdvancedConfigReader& reader) {
    const auto add = [&](const FileName& file, AdvancedConfigReader::Priority priority) {
        return reader.addFileSource(file, {}, priority, m_validVersions) ==
               ConfigurationAccessResult::Success;
    };
    switch (m_fileMode) {
    case SystemAndUserFile: {
        const bool systemAdded = add(m_systemFile, AdvancedConfigReader::Priority::System);
        const bool userAdded = add(m_userFile, AdvancedConfigReader::Priority::User);
        return systemAdded || userAdded;
    }
    case SingleFile:
        return add(m_configurationFile, AdvancedConfigReader::Priority::User);
    case NoFiles:
        break;
    }
    return false;
}

bool ConfigurationManager::hasSystemConfigFileErrors() {
    return hasErrors(m_systemFile);
}

bool ConfigurationManager::hasUserConfigFileErrors() {
    return hasErrors(m_userFile);
}

bool ConfigurationManager::hasErrors(const FileName& file) const {
    if (m_fileMode != SystemAndUserFile || !FileUtilities::exists(file))
        return false;
    AdvancedConfigReader reader;
    return reader.addFileSource(file, {}, AdvancedConfigReader::Priority::System,
                                m_validVersions) == ConfigurationAccessResult::Failure;
}

void ConfigurationManager::reset() {
    m_objects.clear();
    m_taken.clear();
    m_fileMode = NoFiles;
    m_configurationFile = FileName();
    m_systemFile = FileName();
    m_userFile = FileName();
    ++m_revision;
    ++m_resets;
}

void ConfigurationManager::resetConfigurationObject(const std::string& name, bool fromUserFile) {
    const auto found = m_objects.lower_bound(name);
    if (found == m_objects.end() || found->first != name)
        return;
    const ConfigurationRegistration& registration = found->second;
    const bool fromSystemFile = m_fileMode == SystemAndUserFile && !fromUserFile;
    // The user's file alone neither locks nor unlocks.
    const bool keepsLocks = m_fileMode == SystemAndUserFile && fromUserFile;
    const std::unique_ptr<ConfigurationObject> former(keepsLocks ? registration.object->clone()
                                                                 : nullptr);
    registration.object->setDefaultValues();

    if (m_fileMode == NoFiles)
        return;
    const FileName& file = m_fileMode == SingleFile ? m_configurationFile
                           : fromSystemFile         ? m_systemFile
                                                    : m_userFile;
    AdvancedConfigReader reader;
    const auto added = reader.addFileSource(file, {},
                                            fromSystemFile ? AdvancedConfigReader::Priority::System
                                                           : AdvancedConfigReader::Priority::User,
                                            m_validVersions);
    const bool isAdded = added == ConfigurationAccessResult::Success;
    const auto loaded = isAdded ? ElementAddress(registration).load(reader, *registration.object)
                                : ConfigurationAccessResult::Success;
    // Even when no file was read: a class may unlock itself when it sets its defaults.
    if (keepsLocks)
        registration.object->restoreLocks(*former);
    // A load that succeeds tells the observers itself; after one that finds nothing, they are told
    // of the defaults here.
    if (loaded == ConfigurationAccessResult::Failure)
        registration.object->emitSignalsAfterConfigLoading();
}

bool ConfigurationManager::saveConfiguration(const std::string& version) const {
    const FileName target = m_fileMode == SingleFile          ? m_configurationFile
                            : m_fileMode == SystemAndUserFile ? m_userFile
                                                              : FileName();
    if (target.empty())
        return true;
    ++m_revision;
    return saveGuarded(target, version, [&](std::unique_ptr<ConfigWriter>& writer) {
        return m_fileMode == SystemAndUserFile
                   ? saveUserAndCompareWithSystemConfiguration(writer, target)
                   : saveSingleConfiguration(writer, target);
    });
}

bool ConfigurationManager::saveConfigurationToFile(const std::string& fileName,
                                                   const std::string& version) const {
    if (fileName.empty())
        return true;
    ++m_revision;
    const FileName file(fileName);
    return saveGuarded(file, version, [&](std::unique_ptr<ConfigWriter>& writer) {
        return saveSingleConfiguration(writer, file);
    });
}

bool ConfigurationManager::saveSingleConfiguration(std::unique_ptr<ConfigWriter>& writer,
                                                   const FileName& file) const {
    forEachWritten(m_objects, [&](const ConfigurationRegistration& registration) {
        ElementAddress(registration).put(*writer, *registration.object);
    });
    return writer->saveToFile(file);
}

bool ConfigurationManager::saveUserAndCompareWithSystemConfiguration(
    std::unique_ptr<ConfigWriter>& writer, const FileName& file) const {
    SystemReader reader;
    reader.addFileSource(m_systemFile, {}, AdvancedConfigReader::Priority::System, m_validVersions);
    forEachWritten(m_objects, [&](const ConfigurationRegistration& registration) {
        reader.setCompared(registration);
        ElementAddress(registration).putDifferences(*writer, *registration.object, reader);
    });
    return writer->saveToFile(file);
}

} // namespace Orvant
