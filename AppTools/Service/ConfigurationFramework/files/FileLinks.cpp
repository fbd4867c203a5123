#include <ConfigurationFramework/files/FileLinks.h>

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

} // namespace Orvant
