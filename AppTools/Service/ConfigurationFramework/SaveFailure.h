#pragma once

#include <ConfigurationFramework/ConfigurationSaveReport.h>
#include <ConfigurationFramework/files/FileLock.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>

#include <FileHandling/FileName.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Orvant {

/// Thrown where a save ends without having written.
class SaveFailure : public std::runtime_error {
public:
    SaveFailure(ConfigurationSaveReport::Reason reason, const std::string& problem,
                std::error_code error = {})
        : std::runtime_error(problem), m_reason(reason), m_error(error) {}

    ConfigurationSaveReport::Reason reason() const { return m_reason; }
    const std::error_code& error() const { return m_error; }

private:
    ConfigurationSaveReport::Reason m_reason;
    std::error_code m_error;
};

SaveFailure failureOf(const std::error_code& error);

/// A file as it stands in a sentence.
std::string quoted(const FileName& file);

/// @param failure why the file was not saved, in words that need not name it
/// @return the same in a sentence that does
ConfigurationSaveReport notSaved(const FileName& target, ConfigurationSaveReport failure);

/// Makes the folder that a file is in.
/// @throws SaveFailure where that is not possible
void makeFolderOf(const std::filesystem::path& file);

/// What a save holds that writes over what others may have written: the folder, made if need be,
/// and the lock of the file.
class SaveLock {
public:
    /// @throws SaveFailure where the folder cannot be made or the lock stays taken
    SaveLock(const FileName& target, std::chrono::milliseconds patience);

    /// Adds to what a successful save reports that there was no lock.
    void tellIfNotMade(ConfigurationSaveReport& report) const;

private:
    FileName m_target;
    FileLock m_lock;
};

/// Writes a document to a file: in place, or as a new file that replaces it.
/// @throws SaveFailure when it is not written
ConfigurationSaveReport storeDocument(const FileName& target, const PrintedDocument& document,
                                      bool inPlace);

} // namespace Orvant
