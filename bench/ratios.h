#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Runs benchmarks in pairs and prints, behind Google Benchmark's own table, what each call costs
/// in multiples of its floor.
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
                times[run.run_name.str()] = run.GetAdjustedRealTime();
        }
    }

    /// \return Whether every pair that was run is within its limit.
    bool printRatios(const std::vector<Pair>& pairs) const {
        bool good = true;
        std::printf("\n%-44s %-36s %8s %8s\n", "call", "floor", "ratio", "at most");
        for (const Pair& pair : pairs) {
            const auto call = times.find(pair.call);
            const auto floor = times.find(pair.floor);
            if (call == times.end() || floor == times.end())
                continue;
            const double ratio = call->second / floor->second;
            good = good && ratio <= pair.limit;
            std::printf("%-44s %-36s %8.2f %8.2f%s\n", pair.call.c_str(), pair.floor.c_str(), ratio,
                        pair.limit, ratio <= pair.limit ? "" : "  <-- over");
        }
        return good;
    }

private:
    std::map<std::string, double> times;
};

/// The main function of a benchmark program. The exit code is 2 when a ratio is over its limit.
inline int run(int argc, char** argv, const std::vector<Pair>& pairs) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.printRatios(pairs) ? 0 : 2;
}

} // namespace KxBench
