#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

namespace Orvant::Benchmarks {

/// @name What there is to measure, by subject
/// @{
void registerLoadBenchmarks();
void registerReadOneBenchmarks();
void registerSaveBenchmarks();
void registerCheckBenchmarks();
void registerMemoryBenchmarks();
void registerGrowthBenchmarks();
/// @}

/// The contestant that all others are compared with.
inline constexpr const char* thisLibrary = "this library";

/// Adds a benchmark that the report finds by subject, contestant and size.
template <typename Function>
benchmark::internal::Benchmark* add(const std::string& subject, const std::string& contestant,
                                    const std::string& size, Function function) {
    return benchmark::RegisterBenchmark((subject + '/' + contestant + '/' + size).c_str(),
                                        std::move(function))
        ->Unit(benchmark::kMillisecond);
}

} // namespace Orvant::Benchmarks
