// img_sample_grid, img_sample and img_filter with any window on any plane, at any instruction set, against
// their plain forms.
#include "sampling/plain.h"
#include "support/hold_to.h"
#include "support/input.h"

namespace {

using namespace zerklsc::fuzz;

// What the plain forms do in some milliseconds.
constexpr int64_t most_taps = 1 << 17;
constexpr int64_t most_samples = 1 << 20;

int64_t taps(const imfilter_t& filter, int64_t levels) {
    const int64_t width = 2 * int64_t{std::max(filter.filter_radius, 0)} + 1;
    return width > most_taps ? most_taps + 1 : width * width * levels;
}

// A plane as large as the samplers are told.
struct Plane {
    int32_t width, height;
    std::vector<uint16_t> samples;
};

void run_grid(Input& input, const imfilter_t& filter, const Plane& plane) {
    const int32_t step_x = input.number(), step_y = input.number();
    const int32_t out_w = input.take<uint8_t>(), out_h = input.take<uint8_t>() % 16;
    if (taps(filter, int64_t{out_w} * out_h) > most_taps)
        return;
    std::vector<float> levels(static_cast<size_t>(out_w * out_h), -1.0f), expected = levels;
    const int32_t status = img_sample_grid(plane.samples.data(), levels.data(), plane.width, plane.height,
                                           step_x, step_y, out_w, out_h, &filter);
    if (status == 0)
        zerklsc::plain::sample_grid(plane.samples.data(), expected.data(), plane.width, plane.height, step_x,
                                    step_y, out_w, out_h, filter);
    expect(levels == expected);
}

void run_points(Input& input, const imfilter_t& filter, const Plane& plane) {
    std::vector<pix_point> points(input.take<uint8_t>() % 64);
    for (pix_point& p : points)
        p = {static_cast<int16_t>(input.number()), static_cast<int16_t>(input.number()), 7};
    if (taps(filter, static_cast<int64_t>(points.size())) > most_taps)
        return;
    std::vector<pix_point> expected = points;
    const auto count = static_cast<int32_t>(points.size());
    const int32_t status =
        img_sample(plane.samples.data(), points.data(), count, plane.width, plane.height, &filter);
    if (status == 0)
        zerklsc::plain::sample_points(plane.samples.data(), expected.data(), count, plane.width, plane.height,
                                      filter);
    for (size_t i = 0; i < points.size(); ++i)
        expect(points[i].value == expected[i].value);
}

// The plane is the region; the margin around it is as wide as the plain form reads.
void run_filter(const Input& input, const imfilter_t& filter, int32_t s1, int32_t s2) {
    const int64_t levels = elements_of(s1, s2), r = std::max(filter.filter_radius, 0);
    if (levels < 0 || taps(filter, levels) > most_taps)
        return;
    const int64_t margin = r * (std::max<int64_t>(s1, 0) + 1), size = (int64_t{s1} - 1) * s1 + s2;
    if (margin > most_samples || size > most_samples)
        return;
    const auto src = input.buffer<uint16_t>(levels == 0 ? 0 : 2 * margin + size);
    std::vector<uint16_t> dst(levels == 0 ? 0 : static_cast<size_t>(size), 7), expected = dst;
    const uint16_t* const region = levels == 0 ? nullptr : src.data() + margin;
    if (img_filter(region, dst.data(), s1, s2, &filter) == 0 && levels != 0)
        zerklsc::plain::filter_plane(region, expected.data(), s1, s2, filter);
    expect(dst == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t choice = input.take<uint8_t>();
    hold_to(choice / 4);
    float sigma = input.take<float>();
    imfilter_t filter{};
    filter.filter_type = input.number();
    filter.filter_radius = input.number();
    filter.boundary_mode = input.number();
    filter.sigma = choice % 4 == 3 ? nullptr : &sigma;
    Plane plane{input.number(), input.number(), {}};
    const int64_t samples = elements_of(plane.width, plane.height);
    if (samples < 0)
        return 0;
    if (choice % 4 == 2) {
        run_filter(input, filter, plane.width, plane.height);
        return 0;
    }
    Input rest = input;
    plane.samples = input.buffer<uint16_t>(samples);
    if (choice % 4 == 0)
        run_grid(rest, filter, plane);
    else
        run_points(rest, filter, plane);
    return 0;
}
