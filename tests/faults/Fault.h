#pragma once

#include <faults/FaultPlan.h>

#include <stdexcept>

#include <dlfcn.h>

namespace Orvant::Support {

/// Lets calls fail while it is in scope.
/// @throws std::runtime_error where the shim is not preloaded
class Fault {
public:
    explicit Fault(FaultPlan& plan) { set(&plan); }
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;
    ~Fault() { set(nullptr); }

private:
    static void set(FaultPlan* plan) {
        static const auto function =
            reinterpret_cast<SetFaultPlan*>(dlsym(RTLD_DEFAULT, "setFaultPlan"));
        if (function == nullptr)
            throw std::runtime_error("the program runs without LD_PRELOAD=libFaultShim.so");
        function(plan);
    }
};

} // namespace Orvant::Support
