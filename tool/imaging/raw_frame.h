// A raw Bayer frame with what is known about it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/bayer_pattern.h"

namespace zerklsc::tool {

// Black levels by plane number, at the frame's own bit depth.
using BlackLevel = std::array<int, 4>;

struct RawFrame {
    std::string name; // the path as the user wrote it, for messages
    int width = 0;    // even, at most 65534
    int height = 0;
    int bits = 0; // samples are 0 .. 2^bits - 1
    std::optional<BayerPattern> pattern;
    std::optional<BlackLevel> black;
    bool big_endian = false; // of a headerless file, so that it can be written as it was read
    std::vector<uint16_t> samples;

    int full_scale() const { return (1 << bits) - 1; }
    uint16_t& at(int x, int y) { return samples[index(x, y)]; }
    uint16_t at(int x, int y) const { return samples[index(x, y)]; }

  private:
    size_t index(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
};

constexpr int plane_of_pixel(int x, int y) {
    return (x & 1) + 2 * (y & 1);
}

// "64", or "64,65,64,63" where the planes differ.
std::string text_of(const BlackLevel& black);

// Takes the black level off every sample; samples below it become 0. The frame's level is then 0.
void subtract_black(RawFrame& frame, const BlackLevel& black);

// Puts it back, limited to full scale.
void add_black(RawFrame& frame, const BlackLevel& black);

// Scales to 10 bits, rounding to nearest: the depth of the ISP's corrections and parameter generators.
void scale_to_10_bits(RawFrame& frame);

} // namespace zerklsc::tool
