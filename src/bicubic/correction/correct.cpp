#include "bicubic/correction/correct.h"

#include <algorithm>
#include <cstdlib>

#include "bicubic/correction/correction_plain.h"

namespace zerklsc {
namespace {

// Whether the four taps sum to unity without a wrap, and no sum of products with 16-bit values leaves 32
// bits. All generated weights do; a record's own may not.
bool is_tame(const PhaseWeights& weights) {
    int32_t sum = 0;
    int32_t magnitude = 0;
    for (const int16_t tap : weights.tap) {
        sum += tap;
        magnitude += std::abs(tap);
    }
    return sum == ZERKLSC_UNITY_GAIN && magnitude <= INT16_MAX;
}

} // namespace

void correct(const Correction& correction) {
    if (std::all_of(correction.phases, correction.phases + correction.step, is_tame))
        ZERKLSC_KERNEL(correct_cells)(correction);
    else
        correct_plain(correction);
}

} // namespace zerklsc
