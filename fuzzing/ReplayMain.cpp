// Feeds a target all files of the folders that are named, without libFuzzer.

#include "FuzzTarget.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

} // namespace

int main(int argc, char** argv) {
    spdlog::set_level(spdlog::level::off);
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& file : filesIn(argv[i])) {
            std::cout << file.string() << '\n' << std::flush; // before what may abort
            std::ifstream in(file, std::ios::binary);
            const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
            Orvant::Fuzzing::runTarget(bytes);
            ++count;
        }
    if (count == 0)
        std::cerr << "There are no inputs\n";
    return count == 0 ? 1 : 0;
}
