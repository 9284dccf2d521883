// The zerklsc program: finds the subcommand, runs it, and turns what went wrong into one line and an exit
// code.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include <fmt/core.h>

#include "commands.h"
#include "failure.h"

namespace zerklsc::tool {
namespace {

constexpr const char* exit_codes =
    "Exit codes: 0 success, 1 a file or its data cannot be used, 2 wrong usage.\n"
    "Every command has its own help: zerklsc calibrate --help\n\n"
    "Example:\n"
    "  zerklsc simulate -o flat.pgm\n"
    "  zerklsc calibrate flat.pgm -o tables.json\n"
    "  zerklsc correct flat.pgm --tables tables.json -o corrected.pgm\n"
    "  zerklsc measure corrected.pgm";

void add_commands(Command program) {
    add_simulate(program);
    add_calibrate(program);
    add_correct(program);
    add_compare(program);
    add_measure(program);
    add_preview(program);
    add_resample(program);
    add_otp(program);
}

int finish(int code) {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        fmt::print(stderr, "standard output: cannot be written: {}\n", std::strerror(errno));
        return exit_data;
    }
    return code;
}

} // namespace

int main_program(int argc, char** argv) {
    try {
        return finish(run_command_line("Lens-shading calibration, correction and OTP tables", exit_codes,
                                       add_commands, argc, argv));
    } catch (const Failure& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return failure.code();
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "zerklsc: not enough memory for a frame of this size\n");
    } catch (const std::exception& error) {
        fmt::print(stderr, "zerklsc: {}\n", error.what());
    }
    return exit_data;
}

} // namespace zerklsc::tool

int main(int argc, char** argv) {
    return zerklsc::tool::main_program(argc, argv);
}
