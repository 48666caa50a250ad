#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <utility>

// What the benchmark programs do alike: five repetitions of one measured turn each, with the time
// that the turn sets itself, and medians at the end.
namespace tremor {

template <class Run>
void addBenchmark(const char* name, Run&& run) {
    constexpr int repetitions = 5;
    benchmark::RegisterBenchmark(name, std::forward<Run>(run))
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

// Runs a benchmark program over so many rows: the first word of the command line, `defaultRows`
// without one. The exit code; 1 with a line on the error stream after an exception.
inline int benchmarkMain(int argc, char** argv, const std::function<void(std::int64_t)>& body,
                         std::int64_t defaultRows = 1'000'000) {
    benchmark::Initialize(&argc, argv);
    try {
        body(argc > 1 ? std::stoll(argv[1]) : defaultRows);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}

} // namespace tremor
