// one_line, say, warn, remark, WarningsApart, warnings, be_quiet, ProgressLine, Progress
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <fmt/core.h>
#include <unistd.h>

namespace zerklsc::tool {
namespace {

bool quiet = false;
std::vector<std::string> kept_warnings;
thread_local std::vector<std::string>* warnings_of_thread = nullptr;

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
    std::vector<std::string>& kept = warnings_of_thread != nullptr ? *warnings_of_thread : kept_warnings;
    if (std::ranges::find(kept, message) != kept.end())
        return;
    kept.push_back(message);
    if (warnings_of_thread == nullptr)
        remark(message);
}

void remark(const std::string& message) {
    if (!quiet)
        say("warning: " + message);
}

WarningsApart::WarningsApart() : before_(std::exchange(warnings_of_thread, &kept_)) {}

WarningsApart::~WarningsApart() {
    warnings_of_thread = before_;
}

const std::vector<std::string>& warnings() {
    return kept_warnings;
}

void be_quiet() {
    quiet = true;
}

ProgressLine::ProgressLine()
    : wanted_(!quiet && isatty(STDERR_FILENO) == 1), last_(std::chrono::steady_clock::now()) {}

ProgressLine::~ProgressLine() {
    clear();
}

bool ProgressLine::is_due() {
    constexpr std::chrono::milliseconds pause{250};
    return wanted_ && std::chrono::steady_clock::now() - last_ >= pause;
}

void ProgressLine::show(const std::string& text) {
    std::fputs(("\r\033[K" + one_line(text)).c_str(), stderr);
    shown_ = true;
    last_ = std::chrono::steady_clock::now();
}

void ProgressLine::clear() {
    if (std::exchange(shown_, false))
        std::fputs("\r\033[K", stderr);
}

Progress::Progress(const std::string& activity) : shown_(!quiet && isatty(STDERR_FILENO) == 1) {
    if (shown_)
        std::fputs((one_line(activity) + " ...").c_str(), stderr);
}

Progress::~Progress() {
    // Back to the first column, and clear the line.
    if (shown_)
        std::fputs("\r\033[K", stderr);
}

} // namespace zerklsc::tool
