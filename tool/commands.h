// The subcommands of the tool. Each has a file of its own in commands/, and is one line here and one in
// main.cpp.
#pragma once

#include <string_view>

#include "commands/command_line.h"

namespace zerklsc::tool {

// Each adds its subcommand with its options, and sets the callback that runs it.
void add_simulate(Command app);
void add_check(Command app);
void add_calibrate(Command app);
void add_convert(Command app);
void add_correct(Command app);
void add_compare(Command app);
void add_info(Command app);
void add_lot(Command app);
void add_measure(Command app);
void add_preview(Command app);
void add_report(Command app);
void add_resample(Command app);
void add_otp(Command app);
void add_batch(Command app);

// The one of that name alone, whose options are then the only ones that cost time; or, where none is called
// so, all of them in the order of the help.
void add_commands(Command program, std::string_view name = "");

} // namespace zerklsc::tool
