// Several captures of one module, and frames that were captured in the dark.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// How captures become one frame, sample by sample.
//
// The clipped mean leaves out what lies far from the median: samples whose modified z-score, 0.6745 times the
// distance from the median over the median absolute deviation, is above 3.5 (Iglewicz and Hoaglin, "How to
// Detect and Handle Outliers", 1993). The deviation is taken to be a quarter of a level at least, which
// rounding alone makes. The median of an even number is the mean of the middle two.
enum class Averaging { mean, median, clipped_mean };

const char* name_of(Averaging averaging);
std::optional<Averaging> averaging_from(const std::string& name);

// All captures are held in memory, with 2 bytes a sample.
constexpr size_t largest_capture_count = 32;

// A data failure where the captures differ in size, depth, pattern, black or white level.
void check_alike(const std::vector<RawFrame>& captures);

// What the sensor gives without light.
struct DarkFrame {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> sixteenths; // of a level, by sample, row by row

    int lowest() const;                  // level, rounded down
    std::array<double, 4> means() const; // level by plane number
};

// The average of alike captures in the dark.
DarkFrame dark_frame_of(const std::vector<RawFrame>& captures, Averaging averaging);

// Takes the dark off every sample, rounds half up, then limits at 0. The frame's black level is then 0, and
// its white level lower by the darkest sample of the dark frame; clipped samples stay at the white level.
void subtract_dark(RawFrame& frame, const DarkFrame& dark);

// The average of alike captures, rounded half up. Where there is a dark frame, the average is kept in
// sixteenths of a level until that is taken off, as subtract_dark() says. `left_out` is the number of a
// capture that is not part of it, or -1. The name is that of the first capture.
RawFrame average_of(const std::vector<RawFrame>& captures, Averaging averaging, int left_out = -1,
                    const DarkFrame* dark = nullptr);

} // namespace zerklsc::tool
