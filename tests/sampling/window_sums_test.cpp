#include "sampling/window_sums.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"

namespace {

using namespace zerklsc;
using namespace zerklsc::testing;

// What sample (x, y) of plane c is, beyond the edges too.
uint64_t sample(const PlaneSet& planes, int32_t c, int32_t x, int32_t y, int32_t mode) {
    const int32_t column = get_boundary_pos(planes.width, x, mode),
                  row = get_boundary_pos(planes.height, y, mode);
    return planes
        .data[(row * planes.interleave + c / 2) * planes.stride + column * planes.interleave + c % 2];
}

uint64_t sum_of_taps(const PlaneSet& planes, const Window& window, int32_t c, WindowCentre centre) {
    uint64_t sum = 0;
    for (int32_t dy = -window.radius; dy <= window.radius; ++dy)
        for (int32_t dx = -window.reach_of(dy); dx <= window.reach_of(dy); ++dx)
            sum += sample(planes, c, centre.x + dx, centre.y + dy, window.boundary_mode);
    return sum;
}

void expect_sums_of_taps(const PlaneSet& planes, const Window& window,
                         const std::vector<WindowCentre>& centres) {
    const Scratch<uint64_t> sums =
        sum_row_by_row(planes, window, centres.data(), static_cast<int64_t>(centres.size()));
    ASSERT_NE(sums, nullptr);
    for (size_t k = 0; k < centres.size(); ++k)
        for (int32_t c = 0; c < planes.count(); ++c)
            ASSERT_EQ(sums[k * static_cast<size_t>(planes.count()) + static_cast<size_t>(c)],
                      sum_of_taps(planes, window, c, centres[k]))
                << centres[k].x << ',' << centres[k].y << " plane " << c << " radius " << window.radius;
}

// Full planes and mosaics, centres in any order, inside and outside, as far as the taps fit.
TEST(WindowSums, RowByRowEqualsTapByTap) {
    Random random(31);
    float sigma = 3.0f;
    for (const auto& size : {std::pair{1, 1}, std::pair{2, 9}, std::pair{23, 6}, std::pair{37, 41}})
        for (const int32_t r : {0, 1, 4, 8, 19})
            for (const imfilter_t& filter : {box(r, ZERKLSC_BOUNDARY_CLAMP), gaussian(r, &sigma, 1), box(r),
                                             gaussian(r, &sigma, ZERKLSC_BOUNDARY_MIRROR)}) {
                const int32_t w = size.first, h = size.second;
                const bool clamp = filter.boundary_mode == ZERKLSC_BOUNDARY_CLAMP;
                if (!clamp && r >= std::min(w, h))
                    continue;
                Guarded<uint16_t> raw(random_samples(random, static_cast<size_t>(4 * w * h), Spread::high),
                                      clamp ? Against::front : Against::back);
                std::vector<WindowCentre> centres;
                const int32_t beyond_x = clamp ? w + 5 : w - 1 - r, beyond_y = clamp ? h + 5 : h - 1 - r;
                for (int k = 0; k < 40; ++k)
                    centres.push_back(
                        {static_cast<int32_t>(random.between(-beyond_x, w - 1 + beyond_x)),
                         k % 3 != 0 ? centres.back().y
                                    : static_cast<int32_t>(random.between(-beyond_y, h - 1 + beyond_y))});
                const Window window = make_window(filter);
                on_each_instruction_set([&](const std::string&) {
                    expect_sums_of_taps(mosaic_planes(raw.data(), 2 * w, 2 * h), window, centres);
                    expect_sums_of_taps(single_plane(raw.data() + 3 * w * h, w, h), window, centres);
                });
                if (HasFatalFailure())
                    return;
            }
}

// Large windows take the shared way and fall back without its memory; the levels are the same.
TEST(WindowSums, LargeWindowsShareTheirRowsAndLoseNothingWithoutMemory) {
    Random random(32);
    const int32_t w = 120, h = 100;
    Guarded<uint16_t> plane(random_samples(random, static_cast<size_t>(w * h)), Against::back);
    float sigma = 20.0f;
    for (const imfilter_t& filter :
         {box(60), gaussian(45, &sigma), gaussian(70, &sigma, ZERKLSC_BOUNDARY_CLAMP)}) {
        ASSERT_TRUE(rows_should_be_shared(single_plane(plane.data(), w, h), make_window(filter), 20 * 15));
        const auto levels_without = [&](size_t fail_at) {
            std::vector<float> found(20 * 15);
            const AllocationScope scope(fail_at);
            EXPECT_EQ(img_sample_grid(plane.data(), found.data(), w, h, 6, 7, 20, 15, &filter), 0);
            EXPECT_EQ(scope.failed(), fail_at != AllocationScope::never) << fail_at;
            EXPECT_TRUE(scope.leftovers().empty()) << fail_at;
            return found;
        };
        const std::vector<float> expected = levels_without(AllocationScope::never);
        for (size_t fail_at = 1; fail_at < 4; ++fail_at)
            EXPECT_EQ(levels_without(fail_at), expected) << fail_at;
    }
}

TEST(WindowSums, SmallWindowsAreReadOneByOne) {
    const std::vector<uint16_t> plane(400 * 300);
    const Window window = make_window(box(4));
    EXPECT_FALSE(rows_should_be_shared(single_plane(plane.data(), 400, 300), window, 7 * 5));
    EXPECT_FALSE(rows_should_be_shared(single_plane(plane.data(), 400, 300), window, 0));
}

} // namespace
