#include <algorithm>
#include <cstdlib>

#include <fmt/core.h>

#include "functions/functions.h"
#include "report.h"
#include "support/instruction_sets.h"
#include "timing.h"

namespace zerklsc::bench {
namespace {

void print_function(const TimedFunction& row, double budget, bool with_plain) {
    fmt::print("| `{}` | {} |", row.name, row.unit);
    double fast = 0;
    const auto here = testing::instruction_set_words();
    for (const char* const level : levels) {
        if (std::ranges::find(here, level) == here.end()) {
            fmt::print(" |");
            continue;
        }
        setenv("ZERKLSC_CPU", level, 1);
        fast = medians_in_turn({row.fast}, budget)[0];
        fmt::print(" {:.3g} |", 1e9 * fast / row.units);
    }
    if (!with_plain || !row.plain) {
        fmt::print(" | |\n");
        return;
    }
    const double plain = medians_in_turn({row.plain}, 0.0)[0];
    const char* const mark = plain < fast ? "**" : "";
    fmt::print(" {:.3g} | {}{:.3g}{} |\n", 1e9 * plain / row.units, mark, plain / fast, mark);
}

} // namespace

void print_functions(double budget, bool with_plain) {
    Functions functions;
    for (const auto add : {add_records, add_frames, add_corrections, add_levels, add_calibration, add_borders,
                           add_tables, add_streams})
        add(functions);
    fmt::print("Every exported function, in nanoseconds; in bold what is slower than its plain form.\n\n");
    fmt::print("| function | per | {} | {} | {} | plain | × faster |\n", levels[0], levels[1], levels[2]);
    fmt::print("|---|---|---|---|---|---|---|\n");
    for (const TimedFunction& row : functions.rows)
        print_function(row, budget, with_plain);
    fmt::print("\n");
}

} // namespace zerklsc::bench
