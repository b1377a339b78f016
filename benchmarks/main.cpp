#include "benchmarks/KeptFigures.h"
#include "benchmarks/Table.h"

#include <QRegularExpression>
#include <QSaveFile>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace Bench;

struct Options {
    std::string json, compare, filter;
    bool isQuick = false;
    std::vector<std::string> rest; ///< For Google Benchmark.
};

void PrintUsage()
{
    std::puts("usage: lumenta-benchmarks [OPTION...]\n\n"
              "  --filter REGEX  only rows in whose name the expression is found\n"
              "  --quick         small data and few repetitions\n"
              "  --json FILE     keep the figures\n"
              "  --compare FILE  show what changed since those figures\n\n"
              "Others go to Google Benchmark, as --benchmark_repetitions=20 or\n"
              "--benchmark_list_tests.");
}

/// The value of an option that stands in its own word or behind a "=".
bool TakeValue(const std::vector<std::string>& words, std::size_t& i, const std::string& name, std::string& value)
{
    if (words[i].compare(0, name.size() + 1, name + '=') == 0) {
        value = words[i].substr(name.size() + 1);
    } else if (words[i] == name) {
        if (++i == words.size()) throw std::runtime_error(name + " needs a value");
        value = words[i];
    } else {
        return false;
    }
    if (value.empty()) throw std::runtime_error(name + " needs a value");
    return true;
}

Options ReadOptions(const std::vector<std::string>& words)
{
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--quick")
            options.isQuick = true;
        else if (!TakeValue(words, i, "--json", options.json) && !TakeValue(words, i, "--compare", options.compare)
                 && !TakeValue(words, i, "--filter", options.filter))
            options.rest.push_back(words[i]);
        if (words[i].compare(0, 15, "--benchmark_out") == 0)
            throw std::runtime_error(words[i]
                                     + ": groups of rows run one by one, and only the last would be kept; "
                                       "--json keeps them all");
    }
    return options;
}

/// \return false where a word is nobody's; that is told then
bool InitializeBenchmark(const Options& options, char* program)
{
    // The last one of equal options counts, so the user's come behind ours.
    std::vector<std::string> words{options.isQuick ? "--benchmark_repetitions=3" : "--benchmark_repetitions=7",
                                   options.isQuick ? "--benchmark_min_time=0.02" : "--benchmark_min_time=0.06",
                                   "--benchmark_enable_random_interleaving=true"};
    words.insert(words.end(), options.rest.begin(), options.rest.end());
    std::vector<char*> pointers{program};
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    int count = static_cast<int>(pointers.size()) - 1;
    benchmark::Initialize(&count, pointers.data(), PrintUsage);
    return !benchmark::ReportUnrecognizedArguments(count, pointers.data());
}

std::vector<Row> SelectRows(const Options& options)
{
    std::vector<Row> rows;
    AddSkinRows(rows);
    AddMatrixRows(rows);
    AddRayRows(rows);
    AddTreeRows(rows);
#ifdef LUMENTA_BENCHMARK_MODELS
    AddModelRows(rows);
#endif
    const QRegularExpression filter(QString::fromStdString(options.filter));
    if (!filter.isValid())
        throw std::runtime_error("--filter " + options.filter + ": " + filter.errorString().toStdString());
    const auto isOut = [&](const Row& row) {
        return (options.isQuick && !row.isQuick) || !filter.match(QString::fromStdString(row.name)).hasMatch();
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isOut), rows.end());
    if (rows.empty()) throw std::runtime_error("no row is left to measure");
    return rows;
}

void Run(const Options& options)
{
    const std::vector<Row> rows = SelectRows(options);
    QSaveFile kept(QString::fromStdString(options.json));
    Table table(options.compare.empty() ? Figures() : ReadFigures(QString::fromStdString(options.compare)));
    if (!options.json.empty()) OpenForFigures(kept);
#ifndef NDEBUG
    std::puts("Not built for release: these times say nothing.");
#endif
    // A group at a time: ways that are compared run close together, and only their data takes memory.
    const auto groupOf = [](const Row& row) { return row.name.substr(0, row.name.find('/')); };
    for (std::size_t i = 0; i < rows.size();) {
        std::vector<const Row*> group;
        for (const std::string name = groupOf(rows[i]); i < rows.size() && groupOf(rows[i]) == name; ++i)
            group.push_back(&rows[i]);
        table.Print(group, Measure(group));
    }
    table.PrintSummary();
    if (!options.json.empty()) WriteFigures(kept, table.GetFigures());
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const Options options = ReadOptions({argv + 1, argv + argc});
        if (!InitializeBenchmark(options, argv[0])) return EXIT_FAILURE;
        Run(options);
        benchmark::Shutdown();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lumenta-benchmarks: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
