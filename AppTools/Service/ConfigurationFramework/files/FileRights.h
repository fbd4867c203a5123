#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Orvant {

/// Owner, group, mode and access list of a file, for the one that takes its place. On Windows a
/// file has those of its directory, so that there is nothing to do.
class FileRights {
public:
    /// @param file one that exists
    explicit FileRights(const std::filesystem::path& file);

    /// @return the mode to make the new file with: readable at most for its owner
    unsigned int firstMode() const { return m_mode & 0600U; }

    /// Gives them to a file that was made with firstMode(), once it holds its bytes: writing clears
    /// some bits of the mode. At no moment can the new file be read by anyone who could not read
    /// the old one.
    /// @return false when the new file does not have all of them
    bool giveTo(int descriptor) const;

    /// Gives a file that holds nothing what of them the process may give, so that whoever may use
    /// the other file may use that one.
    void giveWhatIsPossibleTo(int descriptor) const;

private:
    bool isLikeThoseOf(int descriptor) const;
    bool giveAccessListTo(int descriptor) const;

    bool m_known = false;
    unsigned int m_owner = 0;
    unsigned int m_group = 0;
    unsigned int m_mode = 0600;
    std::optional<std::string> m_accessList; ///< nothing where the mode is all there is
};

} // namespace Orvant
