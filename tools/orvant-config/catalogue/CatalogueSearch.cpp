#include "catalogue/CatalogueSearch.h"

#include "common/ExitCode.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant::Tool {

namespace {

namespace fs = std::filesystem;

std::string environment(const char* name, const std::string& otherwise) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr || *value == '\0' ? otherwise : value;
}

/// Folders with catalogues, the most important one first.
std::vector<fs::path> folders() {
    std::string list = environment("XDG_DATA_HOME", "");
    if (list.empty())
        list = environment("HOME", "") + "/.local/share";
    list += ':' + environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        list += ':' + (program.parent_path().parent_path() / "share").string();
    std::vector<fs::path> found;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(':', start), list.size());
        const fs::path folder = list.substr(start, end - start);
        if (folder.is_absolute())
            found.push_back(folder / "orvant" / "catalogues");
        start = end + 1;
    }
    return found;
}

/// The catalogues that are installed, by application.
std::map<std::string, fs::path> installed() {
    std::map<std::string, fs::path> catalogues;
    for (const fs::path& folder : folders()) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error))
            if (entry.path().extension() == ".xml")
                catalogues.try_emplace(entry.path().stem().string(), entry.path());
    }
    return catalogues;
}

std::string namesOf(const std::map<std::string, fs::path>& catalogues) {
    std::string names;
    for (const auto& [name, file] : catalogues)
        names += (names.empty() ? "" : ", ") + name;
    return names.empty() ? "none is installed" : "installed: " + names;
}

} // namespace

FileName findCatalogue(const Options& options) {
    if (options.catalogue)
        return *options.catalogue;
    const auto catalogues = installed();
    if (!options.application && catalogues.size() == 1)
        return catalogues.begin()->second.string();
    if (!options.application)
        throw Failure(ExitCode::NoCatalogue,
                      "-a APPLICATION or -c CATALOGUE is needed (" + namesOf(catalogues) + ')');
    const auto found = catalogues.find(*options.application);
    if (found == catalogues.end())
        throw Failure(ExitCode::NoCatalogue, "no catalogue of \"" + *options.application +
                                                 "\" was found (" + namesOf(catalogues) + ')');
    return found->second.string();
}

} // namespace Orvant::Tool
