// largest_sample, text_of, subtract_black, add_black, scale_to_10_bits
#include "imaging/raw_frame.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace zerklsc::tool {
namespace {

constexpr int isp_bits = 10;

// Replaces every sample by f(sample, plane).
template <class F>
void transform_samples(RawFrame& frame, F f) {
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x)
            frame.at(x, y) =
                static_cast<uint16_t>(f(int{frame.at(x, y)}, static_cast<size_t>(plane_of_pixel(x, y))));
}

} // namespace

int largest_sample(const RawFrame& frame) {
    uint16_t largest = 0;
    for (const uint16_t sample : frame.samples)
        largest = std::max(largest, sample);
    return largest;
}

std::string text_of(const BlackLevel& black) {
    const bool equal = std::ranges::all_of(black, [&](int b) { return b == black[0]; });
    return equal ? fmt::format("{}", black[0]) : fmt::format("{}", fmt::join(black, ","));
}

void subtract_black(RawFrame& frame, const BlackLevel& black) {
    transform_samples(frame, [&](int v, size_t plane) { return std::max(v - black[plane], 0); });
    frame.black = BlackLevel{};
    if (frame.white)
        *frame.white = std::max(*frame.white - std::ranges::max(black), 1);
}

void add_black(RawFrame& frame, const BlackLevel& black) {
    const int top = frame.full_scale();
    transform_samples(frame, [&](int v, size_t plane) { return std::min(v + black[plane], top); });
    frame.black = black;
    if (frame.white)
        *frame.white = std::min(*frame.white + std::ranges::max(black), top);
}

void scale_to_10_bits(RawFrame& frame) {
    if (frame.bits > isp_bits) {
        const int shift = frame.bits - isp_bits;
        const int half = 1 << (shift - 1);
        transform_samples(frame,
                          [&](int v, size_t) { return std::min((v + half) >> shift, (1 << isp_bits) - 1); });
        if (frame.black)
            for (int& b : *frame.black)
                b = (b + half) >> shift;
        if (frame.white)
            *frame.white = std::min((*frame.white + half) >> shift, (1 << isp_bits) - 1);
    }
    frame.bits = isp_bits;
}

} // namespace zerklsc::tool
