// The subcommands of the tool. Each has a file of its own in commands/, and is one line here and one in
// main.cpp.
#pragma once

#include <CLI/CLI.hpp>

namespace zerklsc::tool {

// Each adds its subcommand with its options, and sets the callback that runs it.
void add_simulate(CLI::App& app);
void add_calibrate(CLI::App& app);
void add_correct(CLI::App& app);
void add_compare(CLI::App& app);
void add_measure(CLI::App& app);
void add_preview(CLI::App& app);
void add_resample(CLI::App& app);
void add_otp(CLI::App& app);

} // namespace zerklsc::tool
