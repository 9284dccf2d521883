// The cubic interpolation once more, from exact fractions and 64-bit sums.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace zerklsc::testing {

// The weights of the taps at -1, 0 and +1 for the fraction i / step, in units of 1 / 1024, rounded half up.
inline std::array<int64_t, 3> reference_row(int64_t step, int64_t i) {
    const int64_t s3 = step * step * step;
    const int64_t twice[3] = {2 * i * i * step - i * step * step - i * i * i,
                              2 * s3 - 5 * i * i * step + 3 * i * i * i,
                              4 * i * i * step + i * step * step - 3 * i * i * i};
    std::array<int64_t, 3> row;
    // Every weight is above -1024: the offset makes the division round down.
    for (size_t k = 0; k < 3; ++k)
        row[k] = (1024 * twice[k] + s3 + 2048 * s3) / (2 * s3) - 1024;
    return row;
}

// A phase above the middle of the cell is the mirror image of one below.
inline uint16_t reference_cubic(const std::array<int64_t, 4>& p, int64_t step, int64_t phase) {
    if (2 * phase > step)
        return reference_cubic({p[3], p[2], p[1], p[0]}, step, step - phase);
    const auto row = reference_row(step, phase);
    int64_t sum = 512 + 1024 * p[3];
    // A difference counts as the nearest value to zero with the same 16 low bits.
    for (size_t k = 0; k < 3; ++k)
        sum += ((p[k] - p[3] + 3 * 32768) % 65536 - 32768) * row[k];
    return static_cast<uint16_t>(std::clamp<int64_t>(sum, 1024 * 1024, 16383 * 1024) / 1024);
}

} // namespace zerklsc::testing
