#pragma once

#include <climits>

/// Which calls of the C library the preloaded FaultShim lets fail, once it is told with
/// setFaultPlan(). The path must outlive the plan, and the plan its use.
struct FaultPlan {
    static constexpr int half = 0;    ///< no error: reads and writes do only half
    static constexpr int killed = -1; ///< no error: the process is killed before the call
    static constexpr int never = INT_MAX;
    static constexpr int always = INT_MAX;

    const char* call;  ///< "open", "read", "write", "close", "fsync", "rename", "ftruncate", "stat"
                       ///< or "fstat", which stand for all functions of their kind
    const char* path;  ///< how the path of a file begins that is concerned
    int error = half;  ///< number of the error
    int first = never; ///< the first such call that fails, from 1
    int times = 1;     ///< number of calls that fail
    int seen = 0;      ///< such calls since the plan was set
};

/// @param plan null: nothing fails
using SetFaultPlan = void(FaultPlan* plan);
