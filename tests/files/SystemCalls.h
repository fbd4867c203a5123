#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Orvant::Support {

/// Sees what this thread asks of the system while it is in scope, and lets some of that fail. Its
/// source defines those functions of the C library for the whole test program.
class SystemCalls {
public:
    static constexpr int always = -1;

    SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;
    ~SystemCalls();

    /// Lets calls of a function fail.
    /// @param error 0: they say that they went well, but do nothing
    /// @param times how many calls
    /// @param before how many calls go well before those
    SystemCalls& fail(const std::string& function, int error, int times = always, int before = 0);
    /// Lets each read and write do no more than some bytes.
    SystemCalls& doOnly(std::size_t bytes);
    /// Calls back with the function before each call. What that asks of the system is not seen.
    SystemCalls& watch(std::function<void(const std::string&)> callback);

    /// @return the functions in the order of their calls
    const std::vector<std::string>& made() const { return m_made; }

    /// For the functions themselves.
    /// @{
    static bool fails(const char* function);
    static std::size_t shortened(std::size_t bytes);
    /// @}

private:
    struct Failure {
        std::string function;
        int error;
        int times;
        int before;
    };

    bool see(const std::string& function);

    std::vector<Failure> m_failures;
    std::size_t m_most = ~std::size_t{0};
    std::function<void(const std::string&)> m_callback;
    std::vector<std::string> m_made;
};

} // namespace Orvant::Support
