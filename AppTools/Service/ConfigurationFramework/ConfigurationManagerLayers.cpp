#include <ConfigurationFramework/ConfigurationManagerLayers.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <ConfigurationFramework/SimpleConfigReaderImpl.h>
#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/reading/ParsedDocument.h>

#include <FileHandling/FileUtilities.h>

#include <algorithm>
#include <utility>

namespace Orvant {

namespace {

bool isThere(const FileName& file) try {
    return !file.empty() && FileUtilities::exists(file);
} catch (const FileNameException&) {
    return false;
}

bool isAcceptable(const std::string& bytes, const std::list<std::string>& validVersions) try {
    const std::string version = ConfigWriterImpl::openBytes(bytes)->version();
    return std::ranges::find(validVersions, version) != validVersions.end();
} catch (const ConfigException&) {
    return false;
}

} // namespace

LayerDocument::LayerDocument(AdvancedConfigReader& reader, const FileName& file,
                             AdvancedConfigReader::Priority priority,
                             const std::list<std::string>& validVersions,
                             const LayerDocument& former)
    : m_file(file) {
    if (takeOver(former, validVersions)) {
        addTo(reader, priority);
        return;
    }
    m_exists = isThere(file);
    if (!m_exists)
        return;
    m_content = std::make_shared<Content>();
    try {
        const std::shared_ptr<SimpleConfigReader> source(
            new SimpleConfigReader(file, validVersions, m_content->bytes));
        m_content->document = source->m_impl->document();
        m_version = m_content->document->version;
        m_isAccepted = true;
        reader.m_sources[priority] = source;
    } catch (const ConfigException&) {
        FileBytes read = readBytes(file);
        m_content->bytes = std::move(read.bytes).value_or("");
        m_error = read.error;
        if (isAcceptable(m_content->bytes, validVersions)) { // by now
            m_error = std::make_error_code(std::errc::io_error);
            m_content->bytes.clear();
        }
    }
    setAcceptedVersions(validVersions);
}

/// @return true when the file holds what it held earlier, and is accepted
bool LayerDocument::takeOver(const LayerDocument& former,
                             const std::list<std::string>& validVersions) try {
    if (!former.isAccepted() ||
        std::ranges::find(validVersions, former.version()) == validVersions.end() ||
        !fileHolds(m_file, former.bytes()))
        return false;
    m_exists = true;
    m_isAccepted = true;
    m_version = former.m_version;
    m_content = former.m_content;
    return true;
} catch (const FileNameException&) {
    return false;
}

LayerDocument::LayerDocument(const FileName& file, std::string bytes, const std::string& version,
                             bool isAccepted)
    : m_file(file),
      m_exists(true),
      m_isAccepted(isAccepted),
      m_version(version),
      m_content(std::make_shared<Content>(std::move(bytes))) {}

void LayerDocument::setAcceptedVersions(const std::list<std::string>& versions) {
    if (isRefused())
        m_acceptedVersions = versions;
}

std::shared_ptr<ParsedDocument> LayerDocument::document() const {
    if (!m_isAccepted)
        return nullptr;
    if (m_content->document == nullptr)
        m_content->document = parseDocument(m_content->bytes);
    return m_content->document;
}

LayerDocument LayerDocument::withoutTree() const {
    LayerDocument copy(*this);
    if (m_content != nullptr)
        copy.m_content = std::make_shared<Content>(m_content->bytes);
    return copy;
}

void LayerDocument::releaseTree() const {
    if (m_content != nullptr)
        m_content->document.reset();
}

void LayerDocument::addTo(AdvancedConfigReader& reader,
                          AdvancedConfigReader::Priority priority) const {
    if (const auto parsed = document())
        reader.m_sources[priority].reset(new SimpleConfigReader(parsed));
}

const std::string& LayerDocument::bytes() const {
    static const std::string none;
    return m_content == nullptr ? none : m_content->bytes;
}

ConfigurationProblem::Kind LayerDocument::refusal() const {
    if (m_error)
        return ConfigurationProblem::Unreadable;
    try {
        ConfigWriterImpl::openBytes(bytes());
        return ConfigurationProblem::OtherVersion;
    } catch (const ConfigException&) {
        return ConfigurationProblem::Damaged;
    }
}

bool LayerDocument::holdsSame(const LayerDocument& other) const {
    return isOf(other.m_file) && m_exists == other.m_exists && isAccepted() == other.isAccepted() &&
           (m_content == other.m_content || bytes() == other.bytes());
}

bool ConfigurationManagerLayers::addTo(AdvancedConfigReader& reader) const {
    system.addTo(reader, AdvancedConfigReader::System);
    user.addTo(reader, AdvancedConfigReader::User);
    return system.isAccepted() || user.isAccepted();
}

bool ConfigurationManagerLayers::holdSame(const ConfigurationManagerLayers& other) const {
    return system.holdsSame(other.system) && user.holdsSame(other.user);
}

bool ConfigurationManagerLayers::areSame(const ConfigurationManagerLayers& other) const {
    return holdSame(other) && isSystemRequired == other.isSystemRequired &&
           system.acceptedVersions() == other.system.acceptedVersions() &&
           user.acceptedVersions() == other.user.acceptedVersions();
}

std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManagerLayers::withSystem(const LayerDocument& other) const {
    return std::make_shared<const ConfigurationManagerLayers>(other, user, isSystemRequired);
}

std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManagerLayers::withUser(const LayerDocument& other) const {
    return std::make_shared<const ConfigurationManagerLayers>(system, other, isSystemRequired);
}

std::shared_ptr<const ConfigurationManagerLayers> ConfigurationManagerLayers::withoutTrees() const {
    return std::make_shared<const ConfigurationManagerLayers>(system.withoutTree(),
                                                              user.withoutTree(), isSystemRequired);
}

void ConfigurationManagerLayers::releaseTrees() const {
    system.releaseTree();
    user.releaseTree();
}

} // namespace Orvant
