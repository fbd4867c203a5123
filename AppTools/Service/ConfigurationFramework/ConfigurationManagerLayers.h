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
    /// @param former what a file held earlier; where this one holds the same bytes, they are not
    ///               parsed again. Times and sizes tell nothing: others may have the same.
    LayerDocument(AdvancedConfigReader& reader, const FileName& file,
                  AdvancedConfigReader::Priority priority,
                  const std::list<std::string>& validVersions, const LayerDocument& former);

    /// Makes the document of a file that was written.
    /// @param isAccepted whether loading accepts the version
    LayerDocument(const FileName& file, std::string bytes, const std::string& version,
                  bool isAccepted);

    /// Adds what the file held to a reader, if it was accepted.
    void addTo(AdvancedConfigReader& reader, AdvancedConfigReader::Priority priority) const;

    /// @return a copy that parses its document again
    LayerDocument withoutTree() const;
    /// Drops the parsed document, of copies as well. It is made again when it is needed.
    void releaseTree() const;

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
    /// @return version of an accepted document
    const std::string& version() const { return m_version; }
    /// @return the versions that loading accepted when the file was refused
    const std::list<std::string>& acceptedVersions() const { return m_acceptedVersions; }
    void setAcceptedVersions(const std::list<std::string>& versions);
    /// @return why a refused file could not be read; no error when it could
    const std::error_code& error() const { return m_error; }
    /// @return the document, null when the file was not accepted
    std::shared_ptr<ParsedDocument> document() const;

    /// @return true when both have the same file name, and the file was missing both times or held
    ///         the same
    bool holdsSame(const LayerDocument& other) const;

private:
    struct Content {
        std::string bytes;
        std::shared_ptr<ParsedDocument> document = nullptr; ///< of the bytes, made when needed
    };

    bool takeOver(const LayerDocument& former, const std::list<std::string>& validVersions);

    FileName m_file;
    bool m_exists = false;
    bool m_isAccepted = false;
    std::string m_version;
    std::shared_ptr<Content> m_content; ///< shared by copies; null: nothing was read
    std::error_code m_error;
    std::list<std::string> m_acceptedVersions; ///< of a refused file
};

/// What the files of a configuration held at one time. A single file is the user's.
struct ConfigurationManagerLayers {
    LayerDocument system;
    LayerDocument user;
    bool isSystemRequired = false; ///< nothing is loaded unless the system file is accepted

    bool mayLoad() const { return !isSystemRequired || system.isAccepted(); }
    /// Adds both to a reader.
    /// @return true when one of them was accepted
    bool addTo(AdvancedConfigReader& reader) const;
    bool holdSame(const ConfigurationManagerLayers& other) const;
    /// @return true when both also were accepted or refused for the same reasons
    bool areSame(const ConfigurationManagerLayers& other) const;

    /// @return a copy with another document in one place
    /// @{
    std::shared_ptr<const ConfigurationManagerLayers> withSystem(const LayerDocument& other) const;
    std::shared_ptr<const ConfigurationManagerLayers> withUser(const LayerDocument& other) const;
    std::shared_ptr<const ConfigurationManagerLayers> withoutTrees() const;
    /// @}

    /// Drops the parsed documents, of copies as well. They are made again when they are needed.
    void releaseTrees() const;
};

} // namespace Orvant
