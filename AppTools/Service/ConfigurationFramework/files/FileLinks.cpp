#include <ConfigurationFramework/files/FileLinks.h>

#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>

#include <system_error>

namespace Orvant {

namespace {

/// As many as Linux follows. Links may lead in a circle.
constexpr std::size_t mostLinks = 40;

} // namespace

std::vector<std::filesystem::path> followLinks(const std::filesystem::path& path) {
    std::vector<std::filesystem::path> names = {path};
    while (names.size() <= mostLinks) {
        std::error_code error;
        const auto target = std::filesystem::read_symlink(names.back(), error);
        if (error)
            break;
        names.push_back(names.back().parent_path() / target);
    }
    return names;
}

bool isSameFile(const FileName& first, const FileName& second) try {
    if (first.toString() == second.toString()) // whatever the file system can tell at the moment
        return true;
    const auto firstPath = followLinks(toPath(first)).back();
    const auto secondPath = followLinks(toPath(second)).back();
    std::error_code error;
    if (std::filesystem::equivalent(firstPath, secondPath, error))
        return true;
    const auto firstName = std::filesystem::weakly_canonical(firstPath, error);
    return !error && firstName == std::filesystem::weakly_canonical(secondPath, error) && !error;
} catch (const FileNameException&) {
    return false;
}

} // namespace Orvant
