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

// The longest side of a frame: even, and in the 16 bits that the library's records have for it.
constexpr int largest_side = 65534;

// Everything about a frame but its samples.
struct RawDescription {
    std::string name;   // the path as the user wrote it, for messages
    std::string format; // of the file, for people
    int width = 0;      // even, at most `largest_side`
    int height = 0;
    int bits = 0;      // samples are 0 .. 2^bits - 1; 0 where nothing says how many
    int word_bits = 0; // of the words that the file stores them in
    std::optional<BayerPattern> pattern;
    std::optional<BlackLevel> black;
    std::optional<int> white; // the level at which a sample is clipped, where it is not full scale
    bool big_endian = false;  // of a headerless file, so that it can be written as it was read
    std::string camera, lens; // as the file names them

    int full_scale() const { return (1 << bits) - 1; }
    int white_level() const { return white.value_or(full_scale()); }
};

struct RawFrame : RawDescription {
    std::vector<uint16_t> samples;

    RawFrame() = default;
    RawFrame(const RawFrame& other);
    RawFrame(RawFrame&&) = default;
    RawFrame& operator=(RawFrame other);

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

// Makes room for the samples of a frame. The system hands new memory over page by page, which takes longer
// than filling it, and is asked for large pages.
void reserve_frame(std::vector<uint16_t>& samples, size_t count);

int largest_sample(const RawFrame& frame);

// "64", or "64,65,64,63" where the planes differ.
std::string text_of(const BlackLevel& black);

// Takes the black level off every sample; samples below it become 0. The frame's level is then 0, and its
// white level that much lower.
void subtract_black(RawFrame& frame, const BlackLevel& black);

// Puts it back, limited to full scale.
void add_black(RawFrame& frame, const BlackLevel& black);

// Scales to 10 bits, rounding to nearest: the depth of the ISP's corrections and parameter generators.
void scale_to_10_bits(RawFrame& frame);

// The same of a frame whose black level `black` has been taken off: what taking it off afterwards leaves.
void scale_light_to_10_bits(RawFrame& light, const BlackLevel& black);

} // namespace zerklsc::tool
