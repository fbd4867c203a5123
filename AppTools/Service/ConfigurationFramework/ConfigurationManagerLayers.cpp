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
                             const std::list<std::string>& validVersions)
    : m_file(file), m_exists(isThere(file)) {
    if (reader.addFileSource(file, {}, priority, validVersions) ==
        ConfigurationAccessResult::Success) {
        m_exists = true;
        m_isAccepted = true;
        m_document = reader.m_sources[priority]->m_impl->document();
    } else if (m_exists) {
        FileBytes read = readBytes(file);
        m_bytes = std::move(read.bytes).value_or("");
        m_error = read.error;
        if (isAcceptable(m_bytes, validVersions)) { // by now
            m_error = std::make_error_code(std::errc::io_error);
            m_bytes.clear();
        }
    }
}

LayerDocument::LayerDocument(const FileName& file, std::string bytes, bool isAccepted)
    : m_file(file), m_exists(true), m_isAccepted(isAccepted), m_bytes(std::move(bytes)) {}

std::shared_ptr<ParsedDocument> LayerDocument::document() const {
    if (m_isAccepted && m_document == nullptr)
        m_document = parseDocument(m_bytes);
    return m_document;
}

void LayerDocument::addTo(AdvancedConfigReader& reader,
                          AdvancedConfigReader::Priority priority) const {
    if (const auto parsed = document())
        reader.m_sources[priority].reset(new SimpleConfigReader(parsed));
}

const std::string& LayerDocument::bytes() const {
    return m_bytes.empty() && m_document != nullptr ? m_document->bytes : m_bytes;
}

ConfigurationProblem::Kind LayerDocument::refusal() const {
    if (m_error)
        return ConfigurationProblem::Unreadable;
    try {
        ConfigWriterImpl::openBytes(m_bytes);
        return ConfigurationProblem::OtherVersion;
    } catch (const ConfigException&) {
        return ConfigurationProblem::Damaged;
    }
}

bool LayerDocument::holdsSame(const LayerDocument& other) const {
    return isOf(other.m_file) && m_exists == other.m_exists && isAccepted() == other.isAccepted() &&
           bytes() == other.bytes();
}

bool ConfigurationManagerLayers::addTo(AdvancedConfigReader& reader) const {
    system.addTo(reader, AdvancedConfigReader::System);
    user.addTo(reader, AdvancedConfigReader::User);
    return system.isAccepted() || user.isAccepted();
}

bool ConfigurationManagerLayers::holdSame(const ConfigurationManagerLayers& other) const {
    return system.holdsSame(other.system) && user.holdsSame(other.user);
}

std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManagerLayers::withSystem(const LayerDocument& other) const {
    return std::make_shared<const ConfigurationManagerLayers>(other, user);
}

std::shared_ptr<const ConfigurationManagerLayers>
ConfigurationManagerLayers::withUser(const LayerDocument& other) const {
    return std::make_shared<const ConfigurationManagerLayers>(system, other);
}

} // namespace Orvant
