#include <files/SystemCalls.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Orvant::Support {

namespace {

thread_local SystemCalls* s_calls = nullptr;

} // namespace

SystemCalls::SystemCalls() {
    s_calls = this;
}

SystemCalls::~SystemCalls() {
    s_calls = nullptr;
}

SystemCalls& SystemCalls::fail(const std::string& function, int error, int times, int before) {
    m_failures.push_back({function, error, times, before});
    return *this;
}

SystemCalls& SystemCalls::doOnly(std::size_t bytes) {
    m_most = bytes;
    return *this;
}

SystemCalls& SystemCalls::watch(std::function<void(const std::string&)> callback) {
    m_callback = std::move(callback);
    return *this;
}

bool SystemCalls::fails(const char* function) {
    SystemCalls* const calls = std::exchange(s_calls, nullptr);
    const bool isFailure = calls && calls->see(function);
    s_calls = calls;
    return isFailure;
}

std::size_t SystemCalls::shortened(std::size_t bytes) {
    return s_calls ? std::min(bytes, s_calls->m_most) : bytes;
}

bool SystemCalls::see(const std::string& function) {
    if (m_callback)
        m_callback(function);
    m_made.push_back(function);
    for (Failure& failure : m_failures) {
        if (failure.function != function || failure.times == 0)
            continue;
        if (failure.before > 0) {
            --failure.before;
            continue;
        }
        if (failure.times > 0)
            --failure.times;
        errno = failure.error;
        return true;
    }
    return false;
}

} // namespace Orvant::Support

namespace {

using Orvant::Support::SystemCalls;

/// Fails as it is told to, or calls the C library's function of that name.
template <typename Function, typename... Arguments>
auto call(const char* name, Function*, Arguments... arguments) {
    using Result = decltype(std::declval<Function*>()(arguments...));
    if (SystemCalls::fails(name))
        return static_cast<Result>(errno == 0 ? 0 : -1);
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return call("open", open, path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    return call("read", read, descriptor, bytes, SystemCalls::shortened(size));
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    return call("write", write, descriptor, bytes, SystemCalls::shortened(size));
}

/// A failure that is told only now is one of what was written: the descriptor is closed.
int close(int descriptor) {
    const auto original = reinterpret_cast<decltype(&close)>(dlsym(RTLD_NEXT, "close"));
    if (!SystemCalls::fails("close"))
        return original(descriptor);
    const int error = errno;
    original(descriptor);
    errno = error;
    return -1;
}

int fsync(int descriptor) {
    return call("fsync", fsync, descriptor);
}

int ftruncate(int descriptor, off_t size) noexcept {
    return call("ftruncate", ftruncate, descriptor, size);
}

int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
    return call("fchown", fchown, descriptor, owner, group);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    return call("fchmod", fchmod, descriptor, mode);
}

int fsetxattr(int descriptor, const char* name, const void* value, size_t size,
              int flags) noexcept {
    return call("fsetxattr", fsetxattr, descriptor, name, value, size, flags);
}

int fremovexattr(int descriptor, const char* name) noexcept {
    return call("fremovexattr", fremovexattr, descriptor, name);
}

int stat(const char* path, struct stat* status) noexcept {
    return call("stat", static_cast<decltype(stat)*>(stat), path, status);
}

int rename(const char* from, const char* to) noexcept {
    return call("rename", rename, from, to);
}

} // extern "C"
