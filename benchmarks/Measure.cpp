#include "benchmarks/Measure.h"

#include <benchmark/benchmark.h>

namespace Bench {

namespace {

/// The value at a part of a sorted list, between two entries where it falls there.
double Quantile(const std::vector<double>& sorted, double part)
{
    const double place = part * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (sorted[above] - sorted[below]) * (place - static_cast<double>(below));
}

/// Keeps the times of what was run, and prints nothing.
class Collector : public benchmark::BenchmarkReporter {
public:
    std::map<std::string, std::vector<double>> times; ///< Of one call, by name of the benchmark.

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        // Time of the processor: on a busy machine the wall clock also counts the others' turns.
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times[run.run_name.function_name].push_back(run.cpu_accumulated_time * 1e9
                                                            / static_cast<double>(run.iterations));
    }
};

/// \return how many elements the row has
double Register(const Row& row)
{
    Contest contest;
    try {
        contest = row.prepare();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(row.name + ": " + error.what());
    }
    for (const Way& way : contest.ways) {
        benchmark::RegisterBenchmark((row.name + '/' + way.name).c_str(), [run = way.run](benchmark::State& state) {
            for (auto _ : state) {
                run();
                benchmark::ClobberMemory();
            }
        });
    }
    return static_cast<double>(contest.count);
}

} // namespace

Figures Measure(const std::vector<const Row*>& rows)
{
    std::map<std::string, double> counts;
    for (const Row* row : rows)
        counts[row->name] = Register(*row);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();

    Figures figures;
    for (const Row* row : rows) {
        const std::string prefix = row->name + '/';
        for (auto& [name, times] : collector.times) {
            if (name.compare(0, prefix.size(), prefix) != 0) continue;
            std::sort(times.begin(), times.end());
            const double median = Quantile(times, 0.5);
            figures[row->name][name.substr(prefix.size())] = {median / counts[row->name],
                                                              (Quantile(times, 0.75) - Quantile(times, 0.25)) / median};
        }
    }
    return figures;
}

} // namespace Bench
