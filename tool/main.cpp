// The zerklsc program: finds the subcommand, runs it, and turns what went wrong into one line and an exit
// code.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <new>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include "commands.h"
#include "commands/report.h"
#include "convert/shading_file.h"
#include "failure.h"
#include "io/output_set.h"
#include "io/raw_format.h"
#include "terminal.h"

namespace zerklsc::tool {

void add_commands(Command program, std::string_view name) {
    constexpr std::pair<std::string_view, void (*)(Command)> commands[] = {
        {"simulate", add_simulate}, {"check", add_check},     {"calibrate", add_calibrate},
        {"convert", add_convert},   {"correct", add_correct}, {"compare", add_compare},
        {"info", add_info},         {"lot", add_lot},         {"measure", add_measure},
        {"preview", add_preview},   {"report", add_report},   {"resample", add_resample},
        {"otp", add_otp},           {"batch", add_batch},
    };
    const auto named = std::ranges::find(commands, name, [](const auto& command) { return command.first; });
    const auto first = named == std::end(commands) ? std::begin(commands) : named;
    const auto end = named == std::end(commands) ? named : named + 1;
    std::for_each(first, end, [&](const auto& command) { command.second(program); });
}

namespace {

constexpr const char* footer =
    "Exit codes: 0 success, warnings included; 1 the module failed its limits; 2 wrong usage;\n"
    "3 an input is unusable; 4 reading or writing failed, or an internal error.\n"
    "Every command has its own help: zerklsc calibrate --help, or zerklsc help calibrate\n\n"
    "Example:\n"
    "  zerklsc simulate -o flat.pgm\n"
    "  zerklsc calibrate flat.pgm -o tables.json\n"
    "  zerklsc correct flat.pgm --tables tables.json -o corrected.pgm\n"
    "  zerklsc measure corrected.pgm";

// A file that is opened must not land on a standard stream that the caller closed: what is meant for the
// stream would be written into the file. Writing to the stand-in fails as it would to the closed stream.
void fill_closed_streams() {
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd)
        if (fcntl(fd, F_GETFD) < 0)
            open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

struct Ending {
    ExitCode code = exit_success;
    std::string message;
};

// Also where a size of 32 bits cannot say so much.
constexpr const char* no_memory = "zerklsc: not enough memory for a frame of this size";

// Carries out what the command line asks for.
Ending run(Request& request, Report& report, int argc, char** argv) {
    const Program program{"Lens-shading calibration, correction and OTP tables", footer,
                          fmt::format("zerklsc {}\nraw formats: {}\ntuning files: {}", ZERKLSC_VERSION,
                                      raw_format_names(), shading_format_names()),
                          add_commands};
    try {
        request = parse_command_line(program, argc, argv);
        if (request.quiet)
            be_quiet();
        if (request.run)
            request.run(report);
        return {};
    } catch (const Failure& failure) {
        return {failure.code(), failure.what()};
    } catch (const std::bad_alloc&) {
        return {exit_system, no_memory};
    } catch (const std::length_error&) {
        return {exit_system, no_memory};
    } catch (const std::exception& error) {
        return {exit_system, fmt::format("zerklsc: {}", error.what())};
    }
}

// Whether the document is asked for by a command line that could not be understood.
bool asks_for_json(int argc, char** argv) {
    return std::any_of(argv, argv + argc, [](const char* word) { return std::strcmp(word, "--json") == 0; });
}

int main_program(int argc, char** argv) {
    fill_closed_streams();
    Request request;
    Report report;
    Ending ending = run(request, report, argc, argv);
    std::FILE* const out = standard_output_is_taken() ? stderr : stdout;
    if (request.json || (ending.code == exit_usage && asks_for_json(argc, argv)))
        std::fputs(report.json(ending.code, ending.message).c_str(), out);
    else if (!request.quiet)
        std::fputs(report.text().c_str(), out);
    if ((std::fflush(stdout) != 0 || std::ferror(stdout) != 0) && ending.code == exit_success)
        ending = {exit_system, fmt::format("standard output: cannot be written: {}", std::strerror(errno))};
    if (ending.code != exit_success)
        say(ending.message);
    return ending.code;
}

} // namespace
} // namespace zerklsc::tool

// Copies of a frame follow each other: what was freed is used again instead of being mapped and cleared anew.
void keep_freed_memory() {
    constexpr int largest_frame_copy = 1 << 30;
    mallopt(M_MMAP_THRESHOLD, largest_frame_copy);
    mallopt(M_TRIM_THRESHOLD, largest_frame_copy);
}

int main(int argc, char** argv) {
    keep_freed_memory();
    return zerklsc::tool::main_program(argc, argv);
}
