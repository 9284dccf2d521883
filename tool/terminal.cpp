// one_line, say, warn, remark, warnings, be_quiet, Progress
#include "terminal.h"

#include <algorithm>
#include <cstdio>

#include <fmt/core.h>
#include <unistd.h>

namespace zerklsc::tool {
namespace {

bool quiet = false;
std::vector<std::string> kept_warnings;

} // namespace

std::string one_line(const std::string& text) {
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n')
            line += "\\n";
        else if (byte < 0x20 || byte == 0x7F)
            line += fmt::format("\\x{:02x}", byte);
        else
            line += c;
    }
    return line;
}

void say(const std::string& message) {
    std::fputs((one_line(message) + '\n').c_str(), stderr);
}

void warn(const std::string& message) {
    if (std::ranges::find(kept_warnings, message) != kept_warnings.end())
        return;
    kept_warnings.push_back(message);
    remark(message);
}

void remark(const std::string& message) {
    if (!quiet)
        say("warning: " + message);
}

const std::vector<std::string>& warnings() {
    return kept_warnings;
}

void be_quiet() {
    quiet = true;
}

Progress::Progress(const std::string& activity) : shown_(!quiet && isatty(STDERR_FILENO) == 1) {
    if (shown_) {
        std::fputs((one_line(activity) + " ...").c_str(), stderr);
        std::fflush(stderr);
    }
}

Progress::~Progress() {
    // Back to the first column, and clear the line.
    if (shown_)
        std::fputs("\r\033[K", stderr);
}

} // namespace zerklsc::tool
