// The checks of one capture, family by family. Each adds what it found.
#pragma once

#include "check/analysis.h"
#include "check/limits.h"
#include "imaging/calibration.h"
#include "imaging/finding.h"

namespace zerklsc::tool {

struct FlatCapture {
    const RawFrame& frame; // black level included
    BayerPattern pattern = BayerPattern::rggb;
    BlackLevel black{};
    CalibrationSettings settings; // that it is for, with a step

    double range(size_t plane) const { return frame.white_level() - black[plane]; }
    std::string colour(size_t plane) const {
        return name_of(colour_of_plane(pattern, static_cast<int>(plane)));
    }
};

struct Outliers;

struct Judgement {
    const FlatCapture& capture;
    const Analysis& analysis;
    const CheckLimits& limits;
    Findings& findings;

    void add(const std::string& name, const std::string& plane, double value,
             const std::string& advice) const {
        findings.push_back(limits.judge(name, plane, value, advice));
    }
};

void check_saturation(const Judgement& judgement);
void check_brightness(const Judgement& judgement);
void check_dead_regions(const Judgement& judgement);
void check_light(const Judgement& judgement);
void check_scene(const Judgement& judgement);
void check_defects(const Judgement& judgement, const Outliers& outliers);
void check_black_level(const Judgement& judgement);
// Whether a noise curve holds how unequal the pixels are; the difference of two captures does not.
enum class Pixels { unequal, cancelled };
// The same by the curves of the planes.
void judge_black_level(const Judgement& judgement, const std::array<std::vector<NoisePoint>, 4>& curves,
                       Pixels pixels);
void check_colours(const Judgement& judgement);
void check_grid(const Judgement& judgement);

// How much darker light of a slope is in its darkest corner than in its brightest, as a fraction.
double fall_of_light(std::array<double, 2> slope, double aspect);

// All of them. The outliers are those of the capture.
Findings check_capture(const FlatCapture& capture, const Analysis& analysis, const Outliers& outliers,
                       const CheckLimits& limits);

} // namespace zerklsc::tool
