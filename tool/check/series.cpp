// check_repetition, check_turned
#include "check/series.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/least_squares.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// The logarithm of the ratio of two captures, cell by cell, where both have light.
struct Ratio {
    std::vector<double> u, v;
    std::vector<float> values;
};

Ratio ratio_of(const LogCells& a, const LogCells& b) {
    Ratio ratio;
    for (int j = 0; j < a.rows; ++j)
        for (int i = 0; i < a.columns; ++i) {
            const auto at = static_cast<size_t>(j * a.columns + i);
            if (a.values[at] == no_light || b.values[at] == no_light)
                continue;
            ratio.u.push_back(a.u_at(i));
            ratio.v.push_back(a.v_at(j));
            ratio.values.push_back(b.values[at] - a.values[at]);
        }
    return ratio;
}

// The slope of a plane through the ratio.
std::array<double, 2> slope_of(const Ratio& ratio) {
    std::array<double, 3> plane{};
    std::vector<float> rest;
    for (int round = 0; round < 6; ++round) {
        rest.clear();
        for (size_t k = 0; k < ratio.values.size(); ++k)
            rest.push_back(ratio.values[k]
                           - static_cast<float>(plane[0] + plane[1] * ratio.u[k] + plane[2] * ratio.v[k]));
        const std::vector<float> residuals = rest;
        const double scale = std::max(deviation_from(rest, 0), 1e-4) * biweight_reach;
        NormalEquations<3> equations;
        for (size_t k = 0; k < ratio.values.size(); ++k)
            equations.add({1, ratio.u[k], ratio.v[k]}, static_cast<double>(ratio.values[k]),
                          round == 0 ? 1 : biweight(static_cast<double>(residuals[k]) / scale));
        plane = equations.solve();
    }
    return {plane[1], plane[2]};
}

} // namespace

void check_repetition(const Judgement& judgement, const CheckedFlat& other) {
    double drift = 0, movement = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        Ratio ratio = ratio_of(p.cells, other.analysis.planes[plane].cells);
        const double middle = median_of(ratio.values);
        drift = std::max(drift, std::abs(std::exp(middle) - 1));
        for (float& value : ratio.values)
            value = std::abs(value - static_cast<float>(middle));
        movement = std::max(movement, quantile_of(ratio.values, 0.98) - 5 * p.cell_noise);
    }
    const std::string& name = other.frame.name;
    judgement.add("duplicate", "", judgement.capture.frame.samples == other.frame.samples ? 1 : 0,
                  fmt::format("{} is byte for byte the first capture: capture again", name));
    judgement.add("drift", "", 100 * drift,
                  fmt::format("{} differs in brightness: let the light warm up", name));
    judgement.add("movement", "", 100 * std::max(movement, 0.0),
                  fmt::format("{} differs in shading: hold module and light still", name));
}

void check_turned(const Judgement& judgement, const CheckedFlat& turned) {
    std::array<double, 2> slope{};
    for (size_t plane = 0; plane < 4; ++plane) {
        const auto one =
            slope_of(ratio_of(turned.analysis.planes[plane].cells, judgement.analysis.planes[plane].cells));
        // The light is in both captures, in opposite directions.
        for (size_t axis = 0; axis < 2; ++axis)
            slope[axis] += one[axis] / 2 / 4;
    }
    const double aspect = judgement.analysis.planes[0].cells.aspect;
    judgement.add(
        "turned-light", "", 100 * fall_of_light(slope, aspect),
        "the light itself is uneven: the turned capture shows it; even it out, or average both captures");
}

void check_black_level_of_pair(const Judgement& judgement, const CheckedFlat& other) {
    RawFrame difference = judgement.capture.frame;
    constexpr int zero = 32768;
    for (size_t i = 0; i < difference.samples.size(); ++i)
        difference.samples[i] = static_cast<uint16_t>(
            std::clamp(difference.samples[i] - other.frame.samples[i] + zero, 0, 65535));
    const FrameTiles noise = measure_tiles(difference);
    std::array<std::vector<NoisePoint>, 4> curves;
    for (size_t plane = 0; plane < 4; ++plane)
        curves[plane] =
            photon_transfer(judgement.analysis.tiles.planes[plane], noise.planes[plane], noise.side);
    std::erase_if(judgement.findings, [](const Finding& f) { return f.name == "black-level"; });
    judge_black_level(judgement, curves, Pixels::cancelled);
}

} // namespace zerklsc::tool
