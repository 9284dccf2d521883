#include <cmath>
#include <cstdlib>
#include <cstring>

#include <fmt/core.h>

#include "frames.h"
#include "report.h"
#include "timing.h"

namespace zerklsc::bench {
namespace {

constexpr int32_t steps[] = {8, 16, 32, 64, 128};

// Nanoseconds per pixel.
double per_pixel(const std::function<void()>& work, size_t pixels, double budget) {
    return 1e9 * medians_in_turn({work}, budget)[0] / static_cast<double>(pixels);
}

void print_frame(double megapixels, int32_t width, int32_t height, double budget) {
    std::vector<uint16_t> in = flat_field(width, height);
    std::vector<uint16_t> out(in.size());
    fmt::print("| {} ({} x {}) |", megapixels, width, height);
    for (const int32_t step : steps) {
        Tables tables(width, height, step, ZERKLSC_ALGORITHM_ORVEL);
        const auto correct = [&] { lsc2d_correction_wrapper(in.data(), out.data(), &tables.info); };
        fmt::print(" {:.3f} |", per_pixel(correct, in.size(), budget));
    }
    uint16_t* planes[ZERKLSC_CHANNELS];
    for (size_t c = 0; c < ZERKLSC_CHANNELS; ++c)
        planes[c] = out.data() + c * out.size() / ZERKLSC_CHANNELS;
    const auto split = [&] { bayer_split_channel(in.data(), planes, width, height); };
    isp_blc_param black{static_cast<uint16_t>(width), static_cast<uint16_t>(height), {64, 60, 255, 0}};
    const auto subtract = [&] { isp_blc_process(out.data(), &black); };
    Tables tables(width, height, 64, ZERKLSC_ALGORITHM_ORVEL);
    const auto correct_plane = [&] {
        lsc2d_bicubic_correction(in.data(), out.data(), width / 2, height / 2, tables.gains[0].data(), 64, 64,
                                 tables.table_w);
    };
    fmt::print(" {:.3f} | {:.3f} | {:.3f} |\n", per_pixel(split, in.size(), budget),
               per_pixel(subtract, in.size(), budget), per_pixel(correct_plane, in.size() / 4, budget));
    std::fflush(stdout);
}

// The step of 1 .. 255 at which a correction takes the most multiples of a memcpy of its frame.
void print_worst_step(int32_t width, int32_t height) {
    std::vector<uint16_t> in = flat_field(width, height);
    std::vector<uint16_t> out(in.size()), copy(in.size());
    double worst = 0;
    int32_t worst_step = 0;
    for (int32_t step = 1; step <= 255; ++step) {
        Tables tables(width, height, step, ZERKLSC_ALGORITHM_ORVEL_WEIGHTS);
        const auto times =
            medians_in_turn({[&] { lsc2d_correction_wrapper(in.data(), out.data(), &tables.info); },
                             [&] { std::memcpy(copy.data(), in.data(), in.size() * sizeof in[0]); }},
                            0.0);
        if (times[0] / times[1] > worst) {
            worst = times[0] / times[1];
            worst_step = step;
        }
    }
    fmt::print("\nOf all steps, vessaL2 takes longest at {}: {:.1f} times a memcpy of {} x {} pixels.\n",
               worst_step, worst, width, height);
    std::fflush(stdout);
}

// Seconds of the fit with this step, and its number of unknowns.
struct Fit {
    double unknowns;
    double seconds;
};

Fit measure_fit(const std::vector<uint16_t>& frame, int32_t width, int32_t height, int32_t step,
                double budget) {
    Tables tables(width, height, step, ZERKLSC_ALGORITHM_BETA);
    tables.info.filter_radius = 4;
    const auto fit = [&] { lsc2d_calibration_wrapper(frame.data(), &tables.info); };
    return {static_cast<double>((tables.table_w - 2) * (tables.table_h - 2)),
            medians_in_turn({fit}, budget)[0]};
}

} // namespace

void print_growth(double budget) {
    unsetenv("ZERKLSC_CPU");
    fmt::print(
        "Nanoseconds per pixel; correction is tvessa2's at steps 8 to 128, the plane correction's step is "
        "64.\n\n"
        "| megapixels | step 8 | 16 | 32 | 64 | 128 | split | black level | lsc2d_bicubic_correction |\n"
        "|---|---|---|---|---|---|---|---|---|\n");
    print_frame(1, 1152, 864, budget);
    print_frame(12, 4000, 3000, budget);
    print_frame(50, 8192, 6144, budget);
    print_frame(200, 16384, 12288, budget);
    print_worst_step(4000, 3000);

    fmt::print("\nThe surface fit of a 4000 x 3000 frame; the exponent is that of its growth since the row "
               "above.\n\n"
               "| unknowns | seconds | exponent |\n|---|---|---|\n");
    const std::vector<uint16_t> frame = flat_field(4000, 3000);
    Fit before{};
    for (const int32_t step : {192, 128, 96, 64, 48, 32}) {
        const Fit fit = measure_fit(frame, 4000, 3000, step, budget);
        const double exponent =
            std::log(fit.seconds / before.seconds) / std::log(fit.unknowns / before.unknowns);
        fmt::print("| {:.0f} | {:.4f} | {} |\n", fit.unknowns, fit.seconds,
                   before.unknowns > 0 ? fmt::format("{:.2f}", exponent) : "");
        std::fflush(stdout);
        before = fit;
    }
    fmt::print("\n");
}

} // namespace zerklsc::bench
