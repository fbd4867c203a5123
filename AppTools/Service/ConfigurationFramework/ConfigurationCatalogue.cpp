#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <ConfigurationFramework/ConfigurationCatalogueReading.h>
#include <ConfigurationFramework/ConfigurationCatalogueWriting.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/files/HomeFolder.h>
#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <ios>
#include <memory>
#include <ostream>
#include <set>
#include <string_view>
#include <utility>

namespace Orvant {

namespace {

using Object = ConfigurationObjectDescription;

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string placeText(const FileName& file, unsigned int line, unsigned int column) {
    return file.toString() + ':' +
           (line == 0 ? "" : std::to_string(line) + ':' + std::to_string(column) + ':') + ' ';
}

/// What has a path in an element.
enum class Found { Nothing, AnObject, AValue };

Found find(const Object& object, std::string_view path) {
    const std::size_t slash = path.find('/');
    const std::string_view name = path.substr(0, slash);
    const bool isLast = slash == std::string_view::npos;
    for (const ConfigurationValueDescription& value : object.values)
        if (isLast && value.name == name)
            return Found::AValue;
    for (const Object::Child& child : object.children) {
        Found found = Found::Nothing;
        if (child.object.name.empty())
            found = find(child.object, path);
        else if (child.object.name == name)
            found = isLast ? Found::AnObject : find(child.object, path.substr(slash + 1));
        if (found != Found::Nothing)
            return found;
    }
    return Found::Nothing;
}

Found find(const std::vector<ConfigurationCatalogueEntry>& entries, std::string_view path) {
    const std::size_t slash = path.find('/');
    for (const auto& [object, isKeyed] : entries)
        if (object.name == path.substr(0, slash))
            return slash == std::string_view::npos ? Found::AnObject
                                                   : find(object, path.substr(slash + 1));
    return Found::Nothing;
}

} // namespace

ConfigurationCatalogueError::ConfigurationCatalogueError(const FileName& file, unsigned int line,
                                                         unsigned int column,
                                                         const std::string& reason)
    : std::runtime_error(placeText(file, line, column) + reason), m_line(line), m_column(column) {}

ConfigurationCatalogue::ConfigurationCatalogue(const std::string& application,
                                               const std::list<std::string>& acceptedVersions,
                                               const std::string& writtenVersion)
    : m_application(application),
      m_acceptedVersions(acceptedVersions),
      m_writtenVersion(writtenVersion) {
    (void)standardConfigurationFiles(application); // refuses what cannot be the name of a file
}

void ConfigurationCatalogue::setFiles(const FileName& system, const FileName& user) {
    m_files = {system, user};
}

void ConfigurationCatalogue::add(const ConfigurationObject& object, const std::string& name,
                                 bool keyed) {
    add({describeConfiguration(object), keyed}, name);
}

void ConfigurationCatalogue::add(ConfigurationCatalogueEntry entry, const std::string& name) {
    if (!isXmlName(name))
        throw std::invalid_argument(quoted(name) + " cannot be the name of an element");
    if (find(m_entries, name) != Found::Nothing)
        throw std::invalid_argument("there are two objects " + quoted(name));
    entry.object.name = name;
    m_entries.push_back(std::move(entry));
}

void ConfigurationCatalogue::addFormerPath(const std::string& formerPath, const std::string& path) {
    if (find(m_entries, path) == Found::Nothing)
        throw std::invalid_argument("there is no " + quoted(path) + " that had another name");
    m_formerPaths.push_back({formerPath, path});
}

void ConfigurationCatalogue::addFormerText(const std::string& path, const std::string& formerText,
                                           const std::string& text) {
    if (find(m_entries, path) != Found::AValue)
        throw std::invalid_argument("there is no value " + quoted(path) + " that had other texts");
    m_formerTexts.push_back({path, formerText, text});
}

void ConfigurationCatalogue::write(std::ostream& stream) const {
    stream << writeCatalogue(*this) << std::flush;
    if (!stream)
        throw std::ios_base::failure("the catalogue could not be written");
}

ConfigurationCatalogue ConfigurationCatalogue::read(const FileName& file) {
    const FileBytes content = readBytes(file);
    if (!content.bytes)
        throw ConfigurationCatalogueError(file, 0, 0, content.error.message());
    return readCatalogue(file, *content.bytes);
}

StandardConfigurationFiles ConfigurationCatalogue::findFiles() const {
    if (!m_files)
        return standardConfigurationFiles(m_application);
    constexpr std::string_view inHome = "~/";
    StandardConfigurationFiles files = *m_files;
    const std::string user = files.user.toString();
    if (!user.starts_with(inHome))
        return files;
    const std::string home = homeFolder();
    files.user = home.empty() ? FileName() : FileName(home + user.substr(inHome.size() - 1));
    return files;
}

void ConfigurationCatalogue::registerObjects(ConfigurationManager& manager) const {
    const std::string noKey;
    manager.setValidVersionList(m_acceptedVersions);
    std::vector<ConfigurationRegistration> registrations;
    for (const auto& [object, isKeyed] : m_entries) {
        const std::shared_ptr<ConfigurationObject> made = object.makeObject();
        std::set<std::string> keys = isKeyed ? manager.getKeys(object.name) : std::set{noKey};
        if (keys == std::set{noKey}) {
            registrations.push_back({made, object.name});
            continue;
        }
        keys.erase(noKey); // the default entry is there for the others
        for (const std::string& key : keys)
            registrations.push_back(
                {std::shared_ptr<ConfigurationObject>(made->createConfigurationObject()),
                 object.name, key});
    }
    manager.addConfigurationObjects(registrations);
}

} // namespace Orvant
