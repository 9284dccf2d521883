// name_of, averaging_from, check_alike, DarkFrame, dark_frame_of, subtract_dark, average_of
#include "imaging/captures.h"

#include <algorithm>
#include <array>
#include <span>

#include "failure.h"

namespace zerklsc::tool {
namespace {

constexpr std::array<const char*, 3> averaging_names{"mean", "median", "clipped-mean"};

constexpr uint32_t sixteenths = 16; // of a level

// The averages of one sample of all captures, in parts of a level, rounded half up.
uint32_t mean_of(std::span<const uint16_t> values, uint32_t parts) {
    uint32_t sum = 0;
    for (const uint16_t value : values)
        sum += value;
    const auto count = static_cast<uint32_t>(values.size());
    return (parts * sum + count / 2) / count;
}

// Twice the median of values in ascending order.
template <class T>
uint32_t doubled_median(std::span<const T> sorted) {
    return uint32_t{sorted[(sorted.size() - 1) / 2]} + sorted[sorted.size() / 2];
}

uint32_t median_of(std::span<uint16_t> values, uint32_t parts) {
    std::ranges::sort(values);
    return (parts * doubled_median<uint16_t>(values) + 1) / 2;
}

uint32_t clipped_mean_of(std::span<uint16_t> values, uint32_t parts) {
    std::ranges::sort(values);
    const uint32_t middle = doubled_median<uint16_t>(values);
    const auto distance = [middle](uint16_t value) { // twice that from the median
        return 2U * value > middle ? 2U * value - middle : middle - 2U * value;
    };
    std::array<uint32_t, largest_capture_count> distances;
    const auto sorted = std::span(distances).first(values.size());
    std::ranges::transform(values, sorted.begin(), distance);
    std::ranges::sort(sorted);
    const uint32_t deviation = std::max(doubled_median<uint32_t>(sorted), 1U); // four times the median
    const auto is_far = [&](uint16_t value) { return 1349U * distance(value) > 3500U * deviation; };
    const auto end = std::remove_if(values.begin(), values.end(), is_far);
    return mean_of(values.first(static_cast<size_t>(end - values.begin())), parts);
}

template <class Average>
void average_each(const std::vector<const uint16_t*>& samples, std::vector<uint32_t>& averages,
                  Average average) {
    std::array<uint16_t, largest_capture_count> values;
    const auto of_sample = std::span(values).first(samples.size());
    for (size_t k = 0; k < averages.size(); ++k) {
        for (size_t i = 0; i < samples.size(); ++i)
            of_sample[i] = samples[i][k];
        averages[k] = average(of_sample);
    }
}

// The mean in the order of the memory, which becomes vector instructions.
void mean_of_each(const std::vector<const uint16_t*>& samples, std::vector<uint32_t>& averages,
                  uint32_t parts) {
    for (const uint16_t* const capture : samples)
        for (size_t k = 0; k < averages.size(); ++k)
            averages[k] += capture[k];
    const auto count = static_cast<uint32_t>(samples.size());
    for (uint32_t& average : averages)
        average = (parts * average + count / 2) / count;
}

// In parts of a level.
std::vector<uint32_t> averages_of(const std::vector<RawFrame>& captures, Averaging averaging, int left_out,
                                  uint32_t parts) {
    std::vector<const uint16_t*> samples;
    for (size_t i = 0; i < captures.size(); ++i)
        if (static_cast<int>(i) != left_out)
            samples.push_back(captures[i].samples.data());
    std::vector<uint32_t> averages(captures.front().samples.size());
    if (averaging == Averaging::mean)
        mean_of_each(samples, averages, parts);
    else if (averaging == Averaging::median)
        average_each(samples, averages, [parts](auto values) { return median_of(values, parts); });
    else
        average_each(samples, averages, [parts](auto values) { return clipped_mean_of(values, parts); });
    return averages;
}

// Levels above the dark.
uint16_t above(uint32_t sample_in_sixteenths, uint32_t dark_in_sixteenths) {
    const int difference = static_cast<int>(sample_in_sixteenths) - static_cast<int>(dark_in_sixteenths);
    return static_cast<uint16_t>(std::max((difference + 8) >> 4, 0));
}

void set_levels_above(RawFrame& frame, const DarkFrame& dark) {
    frame.white = std::max(frame.white_level() - dark.lowest(), 1);
    frame.black = BlackLevel{};
}

} // namespace

const char* name_of(Averaging averaging) {
    return averaging_names[static_cast<size_t>(averaging)];
}

std::optional<Averaging> averaging_from(const std::string& name) {
    for (const Averaging averaging : {Averaging::mean, Averaging::median, Averaging::clipped_mean})
        if (name == name_of(averaging))
            return averaging;
    return std::nullopt;
}

void check_alike(const std::vector<RawFrame>& captures) {
    const RawFrame& first = captures.front();
    for (const RawFrame& other : captures) {
        const char* differs = nullptr;
        if (other.width != first.width || other.height != first.height)
            differs = "size";
        else if (other.bits != first.bits)
            differs = "bit depth";
        else if (other.pattern != first.pattern)
            differs = "Bayer pattern";
        else if (other.black != first.black)
            differs = "black level";
        else if (other.white_level() != first.white_level())
            differs = "white level";
        if (differs != nullptr)
            data_failure("{}: its {} is not that of {}: give captures of one module with the same settings",
                         other.name, differs, first.name);
    }
}

int DarkFrame::lowest() const {
    return static_cast<int>(std::ranges::min(sixteenths) / tool::sixteenths);
}

std::array<double, 4> DarkFrame::means() const {
    std::array<uint64_t, 4> sums{};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sums[static_cast<size_t>(plane_of_pixel(x, y))] +=
                sixteenths[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    std::array<double, 4> means{};
    for (size_t plane = 0; plane < 4; ++plane)
        means[plane] = static_cast<double>(sums[plane]) / (4.0 * width * height); // 16 parts, a fourth of all
    return means;
}

DarkFrame dark_frame_of(const std::vector<RawFrame>& captures, Averaging averaging) {
    return {captures.front().width, captures.front().height,
            averages_of(captures, averaging, -1, sixteenths)};
}

void subtract_dark(RawFrame& frame, const DarkFrame& dark) {
    const int white = frame.white_level();
    set_levels_above(frame, dark);
    for (size_t k = 0; k < frame.samples.size(); ++k) {
        uint16_t& sample = frame.samples[k];
        sample = sample >= white ? static_cast<uint16_t>(*frame.white)
                                 : above(sixteenths * sample, dark.sixteenths[k]);
    }
}

RawFrame average_of(const std::vector<RawFrame>& captures, Averaging averaging, int left_out,
                    const DarkFrame* dark) {
    const std::vector<uint32_t> averages =
        averages_of(captures, averaging, left_out, dark != nullptr ? sixteenths : 1);
    RawFrame frame = captures.front();
    for (size_t k = 0; k < averages.size(); ++k)
        frame.samples[k] =
            dark != nullptr ? above(averages[k], dark->sixteenths[k]) : static_cast<uint16_t>(averages[k]);
    if (dark != nullptr)
        set_levels_above(frame, *dark);
    return frame;
}

} // namespace zerklsc::tool
