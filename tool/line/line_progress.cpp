// LineProgress
#include "line/line_progress.h"

#include <fmt/format.h>

namespace zerklsc::tool {
namespace {

std::string duration_text(double seconds) {
    const auto whole = static_cast<uint64_t>(seconds);
    if (whole < 90)
        return fmt::format("{} s", whole);
    if (whole < 90 * 60)
        return fmt::format("{} min", (whole + 30) / 60);
    return fmt::format("{} h {} min", whole / 3600, whole % 3600 / 60);
}

} // namespace

void LineProgress::step() {
    ++done_;
    if (!line_.is_due())
        return;
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begun_;
    const double rate = static_cast<double>(done_) / passed.count();
    const uint64_t left = modules_ - skipped_ - done_;
    line_.show(fmt::format("{} of {} modules, {:.1f} a second, {} left", skipped_ + done_, modules_, rate,
                           duration_text(static_cast<double>(left) / rate)));
}

} // namespace zerklsc::tool
