// How a command gives up: one line for the user, and the exit code that goes with it.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/core.h>

namespace zerklsc::tool {

enum ExitCode { exit_success = 0, exit_data = 1, exit_usage = 2 };

// The message names the file or option, what was found, what was expected and what to do about it.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

// A file, or what it holds, is not what the command needs.
template <class... Args>
[[noreturn]] void data_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_data, fmt::format(format, std::forward<Args>(args)...));
}

// The command line itself asks for something that cannot be.
template <class... Args>
[[noreturn]] void usage_failure(fmt::format_string<Args...> format, Args&&... args) {
    throw Failure(exit_usage, fmt::format(format, std::forward<Args>(args)...));
}

} // namespace zerklsc::tool
