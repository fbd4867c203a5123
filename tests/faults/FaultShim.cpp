// A library to be preloaded: it lets calls fail as FaultPlan says, and does all others.

#include "FaultPlan.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

FaultPlan* s_plan = nullptr;

bool isConcerned(const char* path) {
    return std::strncmp(path, s_plan->path, std::strlen(s_plan->path)) == 0;
}

bool isConcerned(int descriptor) {
    std::array<char, 64> link{};
    std::array<char, 4096> path{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    return readlink(link.data(), path.data(), path.size() - 1) > 0 && isConcerned(path.data());
}

/// @return true when it is the turn of this call to fail
template <typename File>
bool isTurn(const char* call, File file) {
    if (s_plan == nullptr || std::strcmp(call, s_plan->call) != 0)
        return false;
    const int error = errno;
    const bool isSeen = isConcerned(file);
    errno = error;
    if (!isSeen)
        return false;
    ++s_plan->seen;
    const bool isFailure =
        s_plan->seen >= s_plan->first && s_plan->seen - s_plan->first < s_plan->times;
    if (isFailure && s_plan->error == FaultPlan::killed)
        raise(SIGKILL);
    return isFailure;
}

/// @return true when the call fails, which has set the error
template <typename File>
bool fails(const char* call, File file) {
    if (!isTurn(call, file) || s_plan->error == FaultPlan::half)
        return false;
    errno = s_plan->error;
    return true;
}

/// The same for a call that can do a part.
/// @param size bytes to read or write; as many as it does
bool fails(const char* call, int descriptor, std::size_t& size) {
    if (!isTurn(call, descriptor))
        return false;
    if (s_plan->error == FaultPlan::half)
        size = (size + 1) / 2;
    else
        errno = s_plan->error;
    return s_plan->error != FaultPlan::half;
}

/// Calls the function that this library hides.
template <typename Function, typename... Arguments>
auto original(const char* name, Function*, Arguments... arguments) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

extern "C" {

[[gnu::visibility("default")]] void setFaultPlan(FaultPlan* plan) {
    s_plan = plan;
}

#pragma GCC visibility push(default)

#define DEFINE_OPEN(name)                                                                          \
    int name(const char* path, int flags, ...) {                                                   \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;                \
        va_end(arguments);                                                                         \
        return fails("open", path) ? -1 : original(#name, name, path, flags, mode);                \
    }
#define DEFINE_OPENAT(name)                                                                        \
    int name(int directory, const char* path, int flags, ...) {                                    \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;                \
        va_end(arguments);                                                                         \
        return fails("open", path) ? -1 : original(#name, name, directory, path, flags, mode);     \
    }
#define DEFINE_FOPEN(name)                                                                         \
    FILE* name(const char* path, const char* mode) {                                               \
        return fails("open", path) ? nullptr : original(#name, name, path, mode);                  \
    }
#define DEFINE_PWRITE(name, Offset)                                                                \
    ssize_t name(int descriptor, const void* bytes, size_t size, Offset offset) {                  \
        return fails("write", descriptor, size)                                                    \
                   ? -1                                                                            \
                   : original(#name, name, descriptor, bytes, size, offset);                       \
    }
#define DEFINE_FTRUNCATE(name, Offset)                                                             \
    int name(int descriptor, Offset size) noexcept {                                               \
        return fails("ftruncate", descriptor) ? -1 : original(#name, name, descriptor, size);      \
    }
// What is written to the disk is none of the tests' business, and they are faster without.
#define DEFINE_FSYNC(name)                                                                         \
    int name(int descriptor) {                                                                     \
        return fails("fsync", descriptor) ? -1 : 0;                                                \
    }
#define DEFINE_STAT(name, call, File, Status)                                                      \
    int name(File file, struct Status* status) noexcept {                                          \
        return fails(call, file) ? -1 : original(#name, name, file, status);                       \
    }

DEFINE_OPEN(open)
DEFINE_OPEN(open64)
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)
DEFINE_FOPEN(fopen)
DEFINE_FOPEN(fopen64)
DEFINE_PWRITE(pwrite, off_t)
DEFINE_PWRITE(pwrite64, off64_t)
DEFINE_FTRUNCATE(ftruncate, off_t)
DEFINE_FTRUNCATE(ftruncate64, off64_t)
DEFINE_FSYNC(fsync)
DEFINE_FSYNC(fdatasync)
DEFINE_STAT(stat, "stat", const char*, stat)
DEFINE_STAT(stat64, "stat", const char*, stat64)
DEFINE_STAT(lstat, "stat", const char*, stat)
DEFINE_STAT(lstat64, "stat", const char*, stat64)
DEFINE_STAT(fstat, "fstat", int, stat)
DEFINE_STAT(fstat64, "fstat", int, stat64)

ssize_t read(int descriptor, void* bytes, size_t size) {
    return fails("read", descriptor, size) ? -1 : original("read", read, descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    return fails("write", descriptor, size) ? -1
                                            : original("write", write, descriptor, bytes, size);
}

/// Only the first part can be done by half.
ssize_t writev(int descriptor, const iovec* parts, int count) {
    size_t size = count > 0 ? parts->iov_len : 0;
    if (fails("write", descriptor, size))
        return -1;
    return count > 0 && size < parts->iov_len
               ? original("write", write, descriptor, parts->iov_base, size)
               : original("writev", writev, descriptor, parts, count);
}

/// The descriptor is closed even when an error is told.
int close(int descriptor) {
    const bool isFailure = fails("close", descriptor);
    const int error = errno;
    const int result = original("close", close, descriptor);
    if (!isFailure)
        return result;
    errno = error;
    return -1;
}

int rename(const char* from, const char* to) noexcept {
    return fails("rename", from) ? -1 : original("rename", rename, from, to);
}

int renameat(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept {
    return fails("rename", from)
               ? -1
               : original("renameat", renameat, fromDirectory, from, toDirectory, to);
}

#pragma GCC visibility pop

} // extern "C"
