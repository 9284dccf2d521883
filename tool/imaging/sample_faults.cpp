// spoil_samples
#include <algorithm>

#include "imaging/faults.h"
#include "imaging/random.h"

namespace zerklsc::tool {
namespace {

void saturate(RawFrame& frame, double amount, uint64_t) {
    const auto top = static_cast<uint16_t>(amount / 100 * frame.full_scale());
    for (uint16_t& sample : frame.samples)
        sample = std::min(sample, top);
}

void add_dead_lines(RawFrame& frame, double amount, uint64_t seed) {
    for (uint64_t i = 0; i < static_cast<uint64_t>(amount); ++i) {
        const int column = random_below(seed * 8 + 6, 2 * i, frame.width);
        const int row = random_below(seed * 8 + 6, 2 * i + 1, frame.height);
        for (int y = 0; y < frame.height; ++y)
            frame.at(column, y) = 0;
        for (int x = 0; x < frame.width; ++x)
            frame.at(x, row) = static_cast<uint16_t>(i % 2 == 0 ? 0 : frame.full_scale());
    }
}

void swap_bytes(RawFrame& frame, double amount, uint64_t) {
    const auto rows = static_cast<size_t>(amount / 100 * frame.height);
    for (size_t i = 0; i < rows * static_cast<size_t>(frame.width); ++i)
        frame.samples[i] = static_cast<uint16_t>(frame.samples[i] << 8 | frame.samples[i] >> 8);
    frame.bits = 16;
}

// The samples of rows of another length, put into rows of the frame's.
void shear(RawFrame& frame, int width) {
    std::vector<uint16_t> sheared(frame.samples.size());
    const auto own = static_cast<size_t>(frame.width), other = static_cast<size_t>(width);
    for (size_t i = 0; i < sheared.size(); ++i) {
        const size_t row = i / other, column = i % other;
        sheared[i] = frame.samples[row * own % (sheared.size() - own) + column % own];
    }
    frame.samples = std::move(sheared);
}

void shear_by(RawFrame& frame, double amount, uint64_t) {
    shear(frame, frame.width - std::min(static_cast<int>(amount), frame.width / 2));
}

void exchange_sides(RawFrame& frame, double, uint64_t) {
    std::swap(frame.width, frame.height);
}

void randomise(RawFrame& frame, double, uint64_t seed) {
    for (size_t i = 0; i < frame.samples.size(); ++i)
        frame.samples[i] = static_cast<uint16_t>(random_below(seed * 8 + 7, i, frame.full_scale() + 1));
}

void make_constant(RawFrame& frame, double amount, uint64_t) {
    std::ranges::fill(frame.samples, static_cast<uint16_t>(amount / 100 * frame.full_scale()));
}

void align_left(RawFrame& frame, double, uint64_t) {
    const int shift = 16 - frame.bits;
    for (uint16_t& sample : frame.samples)
        sample = static_cast<uint16_t>(sample << shift);
    for (int& level : *frame.black)
        level <<= shift;
    frame.bits = 16;
}

void rotate(RawFrame& frame, double, uint64_t) {
    constexpr std::array<BayerPattern, 4> turned{BayerPattern::gbrg, BayerPattern::bggr, BayerPattern::rggb,
                                                 BayerPattern::grbg};
    std::ranges::reverse(frame.samples);
    frame.pattern = turned[static_cast<size_t>(*frame.pattern)];
    std::ranges::reverse(*frame.black);
}

void state_black(RawFrame& frame, double amount, uint64_t) {
    frame.black->fill(static_cast<int>(amount));
}

} // namespace

void spoil_samples(const Fault& fault, RawFrame& frame, uint64_t seed) {
    struct SampleFault {
        const char* name;
        void (*apply)(RawFrame& frame, double amount, uint64_t seed);
    };
    constexpr std::array<SampleFault, 10> faults{{{"saturation", saturate},
                                                  {"dead-lines", add_dead_lines},
                                                  {"swapped-bytes", swap_bytes},
                                                  {"wrong-width", shear_by},
                                                  {"exchanged-sides", exchange_sides},
                                                  {"random", randomise},
                                                  {"constant", make_constant},
                                                  {"left-aligned", align_left},
                                                  {"rotated", rotate},
                                                  {"stated-black", state_black}}};
    for (const SampleFault& known : faults)
        if (fault.name == known.name)
            known.apply(frame, fault.amount, seed);
}

} // namespace zerklsc::tool
