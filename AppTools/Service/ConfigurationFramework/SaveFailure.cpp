#include <ConfigurationFramework/SaveFailure.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/FileReplacing.h>
#include <ConfigurationFramework/files/FileSaving.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <algorithm>
#include <cerrno>

namespace Orvant {

namespace {

using Report = ConfigurationSaveReport;

Report::Reason reasonOf(const std::error_code& error) {
    using enum std::errc;
    if (error == no_such_file_or_directory || error == not_a_directory)
        return Report::NoFolder;
    if (error == permission_denied || error == operation_not_permitted ||
        error == read_only_file_system)
        return Report::NoPermission;
    if (error == no_space_on_device || error == file_too_large || error.value() == EDQUOT)
        return Report::NoSpace;
    return Report::Failed;
}

/// Makes the folder that a file, or the target of a link, is in.
const FileName& withFolder(const FileName& target) {
    makeFolderOf(followLinks(toPath(target)).back());
    return target;
}

} // namespace

SaveFailure failureOf(const std::error_code& error) {
    return {reasonOf(error), error.message(), error};
}

std::string quoted(const FileName& file) {
    return '"' + file.toString() + '"';
}

ConfigurationSaveReport notSaved(const FileName& target, ConfigurationSaveReport failure) {
    failure.text = quoted(target) + " was not saved: " + failure.text;
    std::ranges::replace(failure.text, '\n', ' ');
    return failure;
}

void makeFolderOf(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    std::error_code error;
    if (!folder.empty() && !std::filesystem::create_directories(folder, error) && error)
        throw failureOf(error);
}

SaveLock::SaveLock(const FileName& target, std::chrono::milliseconds patience)
    : m_target(target), m_lock(withFolder(target), patience) {
    if (m_lock.state() == FileLock::State::Busy)
        throw SaveFailure(Report::Busy, "another process is saving it");
}

void SaveLock::tellIfNotMade(ConfigurationSaveReport& report) const {
    if (m_lock.state() == FileLock::State::NotMade && report.reason == Report::Saved)
        report.text += (report.text.empty() ? "" : "; ") + quoted(m_target) +
                       " was saved without a lock: " + m_lock.error().message();
}

ConfigurationSaveReport storeDocument(const FileName& target, const PrintedDocument& document,
                                      bool inPlace) {
    if (!document.problem.empty())
        throw SaveFailure(Report::InvalidContent, document.problem);
    const FileSave saved = inPlace ? FileSave{saveInPlace(target, document.text), true}
                                   : replaceFile(target, document.text);
    if (saved.error)
        throw failureOf(saved.error);
    Report report{Report::Saved};
    report.writtenInPlace = saved.inPlace;
    if (saved.inPlace && !inPlace)
        report.text =
            quoted(target) + " was written in place, for it could not be replaced by a new file";
    return report;
}

} // namespace Orvant
