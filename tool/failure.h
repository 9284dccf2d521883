// How a command gives up: one line for the user, and the exit code that goes with it.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/core.h>

namespace zerklsc::tool {

enum ExitCode {
    exit_success = 0, // warnings included
    exit_limit = 1,   // the module failed its limits
    exit_usage = 2,   // the command line asks for something that cannot be
    exit_input = 3,   // an input file, or what it holds, is unusable
    exit_system = 4,  // reading or writing failed, memory ran out, or the tool itself is wrong
};

// The message names the file or option, what was found, what was expected and what to do about it.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

// The module was measured, and is worse than a limit allows.
template <class... Args>
[[noreturn]] void limit_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_limit, fmt::format(format, std::forward<Args>(args)...));
}

// The command line itself asks for something that cannot be.
template <class... Args>
[[noreturn]] void usage_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_usage, fmt::format(format, std::forward<Args>(args)...));
}

// What an input file holds is not what the command needs.
template <class... Args>
[[noreturn]] void data_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_input, fmt::format(format, std::forward<Args>(args)...));
}

// A file cannot be opened, read or written, or there is not enough memory.
template <class... Args>
[[noreturn]] void system_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_system, fmt::format(format, std::forward<Args>(args)...));
}

} // namespace zerklsc::tool
