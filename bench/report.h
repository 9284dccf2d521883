// The tables that the benchmark prints, as Markdown.
#pragma once

#include <string>
#include <vector>

#include "workload.h"

namespace zerklsc::bench {

// What both sections of the report say about the machine and the compiler.
void print_machine();

// Every workload at every level: multiples of memcpy, and times faster than its plain form. `budget` is the
// time in seconds that a row may take per level. Some plain forms take half a minute: without `with_plain`
// they are left out.
void print_table(const std::vector<Workload>& workloads, double budget, bool with_plain);

// Every exported function once, per sample or node. `budget` and `with_plain` as for print_table().
void print_functions(double budget, bool with_plain);

// Other libraries on the same work.
void print_peers(double budget);

// Cost per pixel from small to large frames and steps, and of the fit from few to many unknowns.
void print_growth(double budget);

// The heap memory that each entry point takes beside the caller's buffers.
void print_memory();

} // namespace zerklsc::bench
