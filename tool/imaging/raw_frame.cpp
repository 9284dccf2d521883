// RawFrame, reserve_frame, largest_sample, text_of, subtract_black, add_black, scale_to_10_bits,
// scale_light_to_10_bits
#include "imaging/raw_frame.h"

#include <algorithm>
#include <utility>

#include <sys/mman.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace zerklsc::tool {
namespace {

constexpr int isp_bits = 10;

// Rounds a level of a deeper frame to nearest.
struct To10Bits {
    int shift;

    explicit To10Bits(int bits) : shift(bits - isp_bits) {}
    int level(int v) const { return (v + (1 << (shift - 1))) >> shift; }
    int sample(int v) const { return std::min(level(v), (1 << isp_bits) - 1); }
};

// Replaces every sample by f(sample, its plane's level). The loop over the lanes becomes vector instructions.
template <class F>
void transform_samples(RawFrame& frame, const BlackLevel& levels, F f) {
    constexpr size_t lanes = 32;
    const auto width = static_cast<size_t>(frame.width);
    for (size_t y = 0; y < static_cast<size_t>(frame.height); ++y) {
        // No sample reaches a level of more bits.
        std::array<uint16_t, lanes> level;
        for (size_t i = 0; i < lanes; ++i)
            level[i] = static_cast<uint16_t>(std::min(levels[2 * (y & 1) + (i & 1)], 0xFFFF));
        uint16_t* const row = frame.samples.data() + y * width;
        size_t x = 0;
        for (; x + lanes <= width; x += lanes)
            for (size_t i = 0; i < lanes; ++i)
                row[x + i] = static_cast<uint16_t>(f(row[x + i], level[i]));
        for (; x < width; ++x)
            row[x] = static_cast<uint16_t>(f(row[x], level[x & 1]));
    }
}

} // namespace

RawFrame::RawFrame(const RawFrame& other) : RawDescription(other) {
    reserve_frame(samples, other.samples.size());
    samples = other.samples;
}

RawFrame& RawFrame::operator=(RawFrame other) {
    samples.swap(other.samples);
    RawDescription::operator=(std::move(other));
    return *this;
}

void reserve_frame(std::vector<uint16_t>& samples, size_t count) {
    constexpr uintptr_t large_page = uintptr_t{1} << 21;
    samples.reserve(count);
    const auto begin = reinterpret_cast<uintptr_t>(samples.data());
    const uintptr_t first = (begin + large_page - 1) / large_page * large_page;
    const uintptr_t end = (begin + count * sizeof(uint16_t)) / large_page * large_page;
    // Advice: where the system has no such pages, nothing changes.
    if (first < end)
        madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

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
    if (black != BlackLevel{})
        transform_samples(frame, black,
                          [](uint16_t v, uint16_t level) { return std::max(v, level) - level; });
    frame.black = BlackLevel{};
    if (frame.white)
        *frame.white = std::max(*frame.white - std::ranges::max(black), 1);
}

void add_black(RawFrame& frame, const BlackLevel& black) {
    const int top = frame.full_scale();
    transform_samples(frame, black, [top](int v, int level) { return std::min(v + level, top); });
    frame.black = black;
    if (frame.white)
        *frame.white = std::min(*frame.white + std::ranges::max(black), top);
}

void scale_to_10_bits(RawFrame& frame) {
    if (frame.bits > isp_bits) {
        const To10Bits scaled(frame.bits);
        transform_samples(frame, {}, [=](int v, int) { return scaled.sample(v); });
        if (frame.black)
            for (int& b : *frame.black)
                b = scaled.level(b);
        if (frame.white)
            *frame.white = scaled.sample(*frame.white);
    }
    frame.bits = isp_bits;
}

void scale_light_to_10_bits(RawFrame& light, const BlackLevel& black) {
    if (light.bits > isp_bits) {
        const To10Bits scaled(light.bits);
        // Samples below black are in the light as if they stood at it, and either way become 0.
        const auto above = [=](int v, int b) { return scaled.sample(v + b) - scaled.level(b); };
        transform_samples(light, black, [=](int v, int b) { return std::max(above(v, b), 0); });
        if (light.white)
            *light.white = std::max(above(*light.white, std::ranges::max(black)), 1);
    }
    light.bits = isp_bits;
}

} // namespace zerklsc::tool
