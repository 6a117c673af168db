#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

/// Runs benchmarks in pairs and prints, behind Google Benchmark's own table, what each call costs
/// in multiples of its floor. With `--ratios=FILE` they are also written to a file, as JSON.
namespace KxBench {

/// A call, its floor, and how many times the floor it may cost.
struct Pair {
    std::string call;
    std::string floor;
    double limit;
};

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (median || (run.run_type == Run::RT_Iteration && run.repetitions <= 1))
                times[run.run_name.str()] = nanoseconds(run);
        }
    }

    /// \return Whether every pair that was run is within its limit.
    bool printRatios(const std::vector<Pair>& pairs) const {
        bool good = true;
        std::printf("\n%-44s %-36s %8s %8s\n", "call", "floor", "ratio", "at most");
        for (const Pair& pair : pairs) {
            if (!wasRun(pair))
                continue;
            const double ratio = times.at(pair.call) / times.at(pair.floor);
            good = good && ratio <= pair.limit;
            std::printf("%-44s %-36s %8.2f %8.2f%s\n", pair.call.c_str(), pair.floor.c_str(), ratio,
                        pair.limit, ratio <= pair.limit ? "" : "  <-- over");
        }
        return good;
    }

    /// Writes the pairs that were run, with their times in nanoseconds.
    /// \return Whether that succeeded.
    [[nodiscard]] bool writeRatios(const std::vector<Pair>& pairs, const char* path) const {
        std::FILE* file = std::fopen(path, "we");
        if (!file)
            return false;
        const char* separator = "";
        std::fprintf(file, "[");
        for (const Pair& pair : pairs) {
            if (!wasRun(pair))
                continue;
            std::fprintf(file,
                         "%s\n  {\"call\": \"%s\", \"call_ns\": %.17g, \"floor\": \"%s\", "
                         "\"floor_ns\": %.17g, \"limit\": %.17g}",
                         separator, pair.call.c_str(), times.at(pair.call), pair.floor.c_str(),
                         times.at(pair.floor), pair.limit);
            separator = ",";
        }
        std::fprintf(file, "\n]\n");
        return std::fclose(file) == 0;
    }

private:
    static double nanoseconds(const Run& run) {
        return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) *
               benchmark::GetTimeUnitMultiplier(benchmark::kNanosecond);
    }

    [[nodiscard]] bool wasRun(const Pair& pair) const {
        return times.count(pair.call) != 0 && times.count(pair.floor) != 0;
    }

    std::map<std::string, double> times;
};

/// Takes the argument that begins like this out of the others.
/// \return What follows in it; null when there is none.
inline const char* take(const char* start, int& argc, char** argv) {
    char** const end = argv + argc;
    char** const found = std::find_if(argv + 1, end, [start](const char* argument) {
        return std::strncmp(argument, start, std::strlen(start)) == 0;
    });
    if (found == end)
        return nullptr;
    const char* rest = *found + std::strlen(start);
    std::copy(found + 1, end, found);
    --argc;
    return rest;
}

/// The main function of a benchmark program. The exit code is 2 when a ratio is over its limit.
inline int run(int argc, char** argv, const std::vector<Pair>& pairs) {
    const char* path = take("--ratios=", argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (path && !reporter.writeRatios(pairs, path)) {
        std::perror(path);
        return 1;
    }
    return reporter.printRatios(pairs) ? 0 : 2;
}

} // namespace KxBench
