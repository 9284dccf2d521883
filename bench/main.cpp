// zerklsc_bench: holds every kernel equal to its plain form at every instruction set that this processor has,
// and with
// --bench prints how fast each is.
#include <cstdio>
#include <cstdlib>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "report.h"
#include "support/instruction_sets.h"
#include "timing.h"
#include "workload.h"

namespace zerklsc::bench {
namespace {

template <class T>
std::vector<T> gather(std::initializer_list<std::vector<T> (*)()> sources) {
    std::vector<T> all;
    for (const auto source : sources)
        for (T& item : source())
            all.push_back(std::move(item));
    return all;
}

// Runs each check `rounds` times at each level; false and the parameters at the first difference.
bool all_equal(uint64_t seed, int rounds) {
    const auto checks = gather<Check>(
        {bayer_checks, calibration_checks, sampling_checks, table_checks, bicubic_checks, compress_checks});
    for (const std::string& level : testing::instruction_set_words()) {
        setenv("ZERKLSC_CPU", level.c_str(), 1);
        testing::Random random(seed);
        for (const Check& check : checks)
            for (int round = 0; round < rounds; ++round)
                if (const std::string at = check.once(random); !at.empty()) {
                    fmt::print("{} differs from its plain form at level {}: {} (--seed {})\n", check.name,
                               level, at, seed);
                    return false;
                }
        fmt::print("level {}: {} kernels equal their plain forms in {} random cases each\n", level,
                   checks.size(), rounds);
    }
    return true;
}

} // namespace
} // namespace zerklsc::bench

int main(int argc, char** argv) {
    using namespace zerklsc::bench;
    CLI::App app("Holds every kernel equal to its plain form, and times it.");
    uint64_t seed = 1;
    int rounds = 50;
    bool bench = false, functions = false, growth = false, memory = false, brief = false;
    std::string only;
    app.add_option("--seed", seed, "Seed of the random cases")->capture_default_str();
    app.add_option("--rounds", rounds, "Random cases for each kernel and level")->capture_default_str();
    app.add_flag("--bench", bench, "Time every kernel against memcpy, its plain form and other libraries");
    app.add_option("--only", only, "With --bench: only the rows whose names hold this text, and no peers");
    app.add_flag("--functions", functions, "Time every exported function per sample or node");
    app.add_flag("--growth", growth, "Time small to large frames, steps and fits");
    app.add_flag("--memory", memory, "Show the heap memory that each entry point takes");
    app.add_flag("--brief", brief, "Time each row shortly and without its plain form, to see that it runs");
    CLI11_PARSE(app, argc, argv);

    if (!all_equal(seed, rounds))
        return 1;
    const double budget = brief ? 0.0 : 0.5;
    if (bench || functions || growth)
        print_machine();
    if (bench) {
        auto rows =
            gather<Workload>({pass_workloads, bicubic_workloads, generator_workloads, sampling_workloads,
                              table_workloads, bayer_workloads, calibration_workloads, compress_workloads});
        std::erase_if(rows, [&](const Workload& row) { return row.name.find(only) == std::string::npos; });
        print_table(rows, budget, !brief);
        if (only.empty())
            print_peers(budget);
    }
    if (functions)
        print_functions(brief ? 0.0 : 0.02, !brief);
    if (growth)
        print_growth(budget);
    if (memory)
        print_memory();
    return 0;
}
