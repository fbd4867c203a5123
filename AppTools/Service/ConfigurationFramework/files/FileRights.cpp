#include <ConfigurationFramework/files/FileRights.h>

#ifdef _WIN32

namespace Orvant {

FileRights::FileRights(const std::filesystem::path&) {}

bool FileRights::giveTo(int) const {
    return true;
}

void FileRights::giveWhatIsPossibleTo(int) const {}

} // namespace Orvant

#else

#include <cerrno>

#include <sys/stat.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif
#include <unistd.h>

namespace Orvant {

namespace {

constexpr unsigned int modeBits = 07777;

#ifdef __linux__

constexpr const char* accessListName = "system.posix_acl_access";

/// @return whether the last call failed because the file has no list, or cannot have one
bool isWithoutAccessList() {
    return errno == ENODATA || errno == ENOTSUP;
}

/// @return false when there may be a list that cannot be read
bool readAccessList(const std::filesystem::path& file, std::optional<std::string>& list) {
    const ssize_t size = getxattr(file.c_str(), accessListName, nullptr, 0);
    if (size < 0)
        return isWithoutAccessList();
    list.emplace(static_cast<std::size_t>(size), '\0');
    return getxattr(file.c_str(), accessListName, list->data(), list->size()) == size;
}

#else

bool readAccessList(const std::filesystem::path&, std::optional<std::string>&) {
    return true;
}

#endif

} // namespace

FileRights::FileRights(const std::filesystem::path& file) {
    struct stat status{};
    if (stat(file.c_str(), &status) != 0)
        return;
    m_owner = status.st_uid;
    m_group = status.st_gid;
    m_mode = status.st_mode & modeBits;
    m_known = readAccessList(file, m_accessList);
}

bool FileRights::giveTo(int descriptor) const {
    struct stat status{};
    if (!m_known || fstat(descriptor, &status) != 0)
        return false;
    if ((status.st_uid != m_owner || status.st_gid != m_group) &&
        fchown(descriptor, m_owner, m_group) != 0)
        return false;
    // The mode comes last: without the list, it would let in those whom only the list keeps out,
    // and a change of owner clears some of its bits.
    return giveAccessListTo(descriptor) && fchmod(descriptor, static_cast<mode_t>(m_mode)) == 0 &&
           isLikeThoseOf(descriptor);
}

void FileRights::giveWhatIsPossibleTo(int descriptor) const {
    if (!m_known)
        return;
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    [[maybe_unused]] const bool hasGroup =
        fchown(descriptor, m_owner, m_group) == 0 || fchown(descriptor, sameOwner, m_group) == 0;
    [[maybe_unused]] const bool hasAccess =
        giveAccessListTo(descriptor) && fchmod(descriptor, static_cast<mode_t>(m_mode)) == 0;
}

bool FileRights::isLikeThoseOf(int descriptor) const {
    struct stat status{};
    return fstat(descriptor, &status) == 0 && status.st_uid == m_owner &&
           status.st_gid == m_group && (status.st_mode & modeBits) == m_mode;
}

bool FileRights::giveAccessListTo([[maybe_unused]] int descriptor) const {
#ifdef __linux__
    if (m_accessList)
        return fsetxattr(descriptor, accessListName, m_accessList->data(), m_accessList->size(),
                         0) == 0;
    // The new file may have inherited a list from its directory.
    return fremovexattr(descriptor, accessListName) == 0 || isWithoutAccessList();
#else
    return true;
#endif
}

} // namespace Orvant

#endif
