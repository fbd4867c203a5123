#pragma once

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationProblem.h>

#include <FileHandling/FileName.h>

#include <list>
#include <memory>
#include <string>
#include <system_error>

namespace Orvant {

struct ParsedDocument;

/// What a configuration file held when it was read.
class LayerDocument {
public:
    /// Makes the document of no file.
    LayerDocument() = default;
    /// Adds a file to a reader as a source and keeps what the file holds.
    LayerDocument(AdvancedConfigReader& reader, const FileName& file,
                  AdvancedConfigReader::Priority priority,
                  const std::list<std::string>& validVersions);

    /// Makes the document of a file that was written.
    /// @param isAccepted whether loading accepts the version
    LayerDocument(const FileName& file, std::string bytes, bool isAccepted);

    /// Adds what the file held to a reader, if it was accepted.
    void addTo(AdvancedConfigReader& reader, AdvancedConfigReader::Priority priority) const;

    const FileName& file() const { return m_file; }
    /// @return true when the file has that name
    bool isOf(const FileName& file) const { return m_file.toString() == file.toString(); }
    /// @return true when the file was accepted
    bool isAccepted() const { return m_isAccepted; }
    /// @return true when the file was there but not accepted: unreadable, damaged, another version
    bool isRefused() const { return m_exists && !m_isAccepted; }
    /// @return true when the file was there and held nothing at all, as after a crash
    bool isEmptyFile() const { return m_exists && !m_error && bytes().empty(); }
    /// @return why a refused file was not accepted: Damaged, OtherVersion or Unreadable
    ConfigurationProblem::Kind refusal() const;
    /// @return true when the file was there
    bool exists() const { return m_exists; }
    /// @return what the file held, as far as it could be read
    const std::string& bytes() const;
    /// @return why a refused file could not be read; no error when it could
    const std::error_code& error() const { return m_error; }
    /// @return the document, null when the file was not accepted
    std::shared_ptr<ParsedDocument> document() const;

    /// @return true when both have the same file name, and the file was missing both times or held
    ///         the same
    bool holdsSame(const LayerDocument& other) const;

private:
    FileName m_file;
    bool m_exists = false;
    bool m_isAccepted = false;
    mutable std::shared_ptr<ParsedDocument> m_document; ///< of a written file, made when needed
    std::string m_bytes;                                ///< of a refused or written file
    std::error_code m_error;
};

/// What the files of a configuration held at one time. A single file is the user's.
struct ConfigurationManagerLayers {
    LayerDocument system;
    LayerDocument user;

    /// Adds both to a reader.
    /// @return true when one of them was accepted
    bool addTo(AdvancedConfigReader& reader) const;
    bool holdSame(const ConfigurationManagerLayers& other) const;

    /// @return a copy with another document in one place
    /// @{
    std::shared_ptr<const ConfigurationManagerLayers> withSystem(const LayerDocument& other) const;
    std::shared_ptr<const ConfigurationManagerLayers> withUser(const LayerDocument& other) const;
    /// @}
};

} // namespace Orvant
