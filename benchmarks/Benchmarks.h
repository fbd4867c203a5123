#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <utility>

namespace Orvant::Benchmarks {

/// @name What there is to measure, by subject
/// @{
void registerLoadBenchmarks();
void registerReadOneBenchmarks();
void registerDeclarationBenchmarks();
void registerSaveBenchmarks();
void registerCheckBenchmarks();
void registerMemoryBenchmarks();
void registerSchemaBenchmarks();
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

/// Adds a benchmark of an operation on an input and on one ten times as large.
/// @param run takes the state and the size
template <typename Run>
void addGrowth(const std::string& what, std::size_t size, Run run) {
    for (const std::size_t count : {size, 10 * size})
        add("Growth", what, std::to_string(count),
            [=](benchmark::State& state) { run(state, count); });
}

} // namespace Orvant::Benchmarks
