#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <fmt/core.h>

#include "report.h"
#include "support/instruction_sets.h"
#include "timing.h"

namespace zerklsc::bench {
namespace {

std::string processor_name() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2);
    return "unknown processor";
}

// The times of one workload in seconds; those of levels that the processor lacks are 0.
struct Times {
    double memcpy[levels.size()];
    double fast[levels.size()];
    double highest; // by the highest level that it has
    double plain;
};

Times measure(const Workload& row, double budget, bool with_plain) {
    Times times{};
    std::vector<char> from(row.frame_bytes, 1), to(row.frame_bytes, 2);
    const auto copy = [&] {
        if (!from.empty())
            std::memcpy(to.data(), from.data(), from.size());
    };
    const auto here = testing::instruction_set_words();
    for (size_t i = 0; i < levels.size(); ++i) {
        if (std::ranges::find(here, levels[i]) == here.end())
            continue;
        setenv("ZERKLSC_CPU", levels[i], 1);
        const auto medians = medians_in_turn({row.fast, copy}, budget);
        times.fast[i] = times.highest = medians[0];
        times.memcpy[i] = medians[1];
    }
    if (with_plain)
        times.plain = seconds_of(row.plain);
    if (with_plain && times.plain < 1.0)
        times.plain = medians_in_turn({row.plain}, 0.0)[0];
    return times;
}

// A measured ratio with its goal behind it, marked where it misses the goal.
std::string cell(double ratio, double goal, bool lower_is_better) {
    const bool missed = goal > 0 && (lower_is_better ? ratio > goal : ratio < goal);
    const std::string figure = lower_is_better ? fmt::format("{:.2f}", ratio) : fmt::format("{:.0f}", ratio);
    if (goal <= 0)
        return figure;
    return missed ? fmt::format("**{}** ({})", figure, goal) : fmt::format("{} ({})", figure, goal);
}

void print_row(const Workload& row, double budget, bool with_plain) {
    const bool has_plain = with_plain && row.plain;
    const Times times = measure(row, budget, has_plain);
    fmt::print("| {} |", row.name);
    for (size_t i = 0; i < levels.size(); ++i)
        fmt::print(" {} |", times.fast[i] > 0 && row.frame_bytes > 0
                                ? cell(times.fast[i] / times.memcpy[i], row.at_most[i], true)
                                : "");
    for (size_t i = 0; i < levels.size(); ++i)
        fmt::print(" {} |", times.fast[i] > 0 && has_plain
                                ? cell(times.plain / times.fast[i], row.at_least[i], false)
                                : "");
    fmt::print(" {:.3g} | {} |\n", 1e3 * times.highest,
               has_plain ? fmt::format("{:.3g}", 1e3 * times.plain) : "");
    std::fflush(stdout);
}

} // namespace

void print_machine() {
    fmt::print("Measured on {}, one thread, {}. Goals in brackets; a figure in bold misses its goal.\n\n",
               processor_name(),
#if defined(__clang__)
               "Clang " __clang_version__
#else
               "GCC " __VERSION__
#endif
    );
}

void print_table(const std::vector<Workload>& workloads, double budget, bool with_plain) {
    fmt::print(
        "| work | × memcpy: {0} | {1} | {2} | × faster than plain: {0} | {1} | {2} | ms | plain ms |\n",
        levels[0], levels[1], levels[2]);
    fmt::print("|---|---|---|---|---|---|---|---|---|\n");
    for (const Workload& row : workloads)
        print_row(row, budget, with_plain);
    fmt::print("\n");
}

} // namespace zerklsc::bench
