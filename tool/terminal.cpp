// warn, Progress
#include "terminal.h"

#include <cstdio>

#include <fmt/core.h>
#include <unistd.h>

namespace zerklsc::tool {

void warn(const std::string& message) {
    fmt::print(stderr, "warning: {}\n", message);
}

Progress::Progress(const std::string& activity) : shown_(isatty(STDERR_FILENO) == 1) {
    if (shown_) {
        fmt::print(stderr, "{} ...", activity);
        std::fflush(stderr);
    }
}

Progress::~Progress() {
    // Back to the first column, and clear the line.
    if (shown_)
        std::fputs("\r\033[K", stderr);
}

} // namespace zerklsc::tool
