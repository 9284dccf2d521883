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

std::string first_line(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

// The name of the subcommand that was meant, as "zerklsc calibrate".
std::string command_of(const CLI::App& app) {
    std::string name = app.get_name();
    for (const CLI::App* sub : app.get_subcommands())
        name += " " + command_of(*sub);
    return name;
}

int run(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        // Of a word that is no command, CLI11 only says that a command is missing.
        const bool unknown = argc > 1 && argv[1][0] != '-' && app.get_subcommands().empty();
        const std::string what =
            unknown ? fmt::format("{} is not a command", argv[1]) : first_line(error.what());
        fmt::print(stderr, "{}: {} (see {} --help)\n", command_of(app), what, command_of(app));
        return exit_usage;
    }
    return exit_success;
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
    CLI::App app{"Lens-shading calibration, correction and OTP tables", "zerklsc"};
    app.set_version_flag("--version", "zerklsc " ZERKLSC_VERSION);
    app.require_subcommand(1);
    app.footer(exit_codes);
    add_simulate(app);
    add_calibrate(app);
    add_correct(app);
    add_compare(app);
    add_measure(app);
    add_preview(app);
    add_resample(app);
    add_otp(app);
    try {
        return finish(run(app, argc, argv));
    } catch (const Failure& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return failure.code();
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "zerklsc: not enough memory for a frame of this size\n");
    } catch (const std::exception& error) {
        fmt::print(stderr, "zerklsc: {}\n", first_line(error.what()));
    }
    return exit_data;
}

} // namespace zerklsc::tool

int main(int argc, char** argv) {
    return zerklsc::tool::main_program(argc, argv);
}
