// The memory that the public header names, as formulas: what a call takes stays within them, and they are not
// idle.
#include <gtest/gtest.h>

#include <algorithm>

#include "header/lens.h"
#include "support/allocations.h"

namespace zerklsc::testing {
namespace {

struct Size {
    int width, height, step, radius;
    bool shared_rows = false; // windows so large that they share the sums of whole rows
};

const Size sizes[] = {{640, 480, 16, 3},
                      {1022, 770, 32, 20},
                      {2000, 1004, 64, 90},
                      {4000, 3000, 64, 8},
                      {1000, 810, 10, 150, true}};

template <class Call>
size_t peak_of(Call call) {
    AllocationScope scope;
    EXPECT_EQ(call(), 0);
    return scope.peak_bytes();
}

// The figure holds and is at most `slack` times what is taken.
void expect_within(size_t taken, size_t figure, double slack) {
    EXPECT_LE(taken, figure);
    EXPECT_GE(static_cast<double>(taken) * slack, static_cast<double>(figure));
}

TEST(HeaderMemory, OfTheEntryPoint) {
    for (const Size& size : sizes) {
        const std::vector<uint16_t> frame = lens_frame(size.width, size.height, 800);
        for (const int algorithm : {0, 1, 2, 4}) {
            SCOPED_TRACE(::testing::Message() << size.width << " x " << size.height << ", " << algorithm);
            Shading shading(size.width, size.height, size.step, algorithm);
            shading.info.filter_radius = size.radius;
            const size_t w = static_cast<size_t>(size.width / 2), r = static_cast<size_t>(size.radius);
            const size_t e = shading.tables[0].size();
            const size_t n = static_cast<size_t>((shading.table_w - 2) * (shading.table_h - 2));
            const size_t taken =
                peak_of([&] { return lsc2d_calibration_wrapper(frame.data(), &shading.info); });
            if (algorithm == 0)
                EXPECT_EQ(taken, 8 * n + 12 * w + 8);
            else if (algorithm == 1)
                expect_within(taken, 12 * e + 16 * n + 12 * w + 8, 1.5);
            else
                expect_within(taken,
                              20 * n + 4 * e + 4 * w + 40 * r + 128
                                  + (size.shared_rows ? 64 * n + 8 * (w + 1) : 0),
                              1.5);
        }
    }
}

TEST(HeaderMemory, OfTheSurfaceFit) {
    const std::vector<uint16_t> frame = lens_frame(640, 480, 800);
    for (const int step : {32, 64}) {
        Shading shading(640, 480, step, ZERKLSC_ALGORITHM_BETA);
        const size_t m = static_cast<size_t>((shading.table_w - 2) * (shading.table_h - 2));
        const size_t rows = (m + 3) / 4 * 4, columns = (m + 31) / 32 * 32;
        const size_t inversion = (rows * columns * 1009 / 1000 + 26 * rows + 24 * columns) * 8 + 16 * m + 64;
        // A raster has fewer lines than 16 to a cell at either end, 4 to each in between, and the centre.
        const size_t lines = 64 * (64 + 4 * static_cast<size_t>(shading.table_w + shading.table_h));
        const size_t taken = peak_of([&] { return lsc2d_calibration_wrapper(frame.data(), &shading.info); });
        expect_within(taken, 8 * m * m + 48 * m + inversion + lines, 2);
    }
}

TEST(HeaderMemory, OfSamplingAndFilter) {
    for (const Size& size : sizes) {
        const size_t w = static_cast<size_t>(size.width), r = static_cast<size_t>(size.radius);
        const std::vector<uint16_t> plane = lens_frame(size.width, size.height, 800);
        const imfilter_t box{ZERKLSC_FILTER_BOX, size.radius, ZERKLSC_BOUNDARY_MIRROR, nullptr};
        int32_t grid_w = 0, grid_h = 0;
        lsc2d_grid_samples(size.width, size.height, size.step, size.step, &grid_w, &grid_h);
        std::vector<float> samples(static_cast<size_t>(grid_w) * static_cast<size_t>(grid_h));
        EXPECT_LE(peak_of([&] {
                      return img_sample_grid(plane.data(), samples.data(), size.width, size.height, size.step,
                                             size.step, grid_w, grid_h, &box);
                  }),
                  4 * (r + 1) + 40 * samples.size() + 4 * (w + 1));
        pix_point point{static_cast<int16_t>(size.width / 2), static_cast<int16_t>(size.height / 2), 0};
        EXPECT_EQ(peak_of([&] { return img_sample(plane.data(), &point, 1, size.width, size.height, &box); }),
                  4 * (r + 1));
        std::vector<uint16_t> smooth(plane.size());
        const int side = size.height - 2 * size.radius, columns = size.step;
        std::vector<uint16_t> padded(static_cast<size_t>(side + 2 * size.radius + 2)
                                         * static_cast<size_t>(side)
                                     + static_cast<size_t>(columns + 2 * size.radius));
        EXPECT_LE(peak_of([&] {
                      return img_filter(padded.data() + size.radius * side + size.radius, smooth.data(), side,
                                        columns, &box);
                  }),
                  16 * (static_cast<size_t>(columns) + 2 * r + 1) + 4 * (r + 1) + 64);
    }
}

TEST(HeaderMemory, OfTablesAndStreams) {
    for (const Size& size : sizes) {
        Shading shading(size.width, size.height, size.step, 2);
        const size_t e = shading.tables[0].size();
        const size_t n = static_cast<size_t>((shading.table_w - 2) * (shading.table_h - 2));
        const lsc2d_grid grid{shading.tables[0].data(), size.step, size.step, shading.table_w - 2,
                              shading.table_h - 2};
        EXPECT_EQ(peak_of([&] { return lsc2d_grid_convert(&grid, &grid, size.width / 2, size.height / 2); }),
                  4 * n + 4 * e);
        std::vector<uint8_t> stream(3 * n);
        for (const uint8_t mode : {uint8_t{0}, uint8_t{1}}) {
            lsc_otp_info info{1, shading.table_w, shading.table_h, {}, stream.data(), mode};
            std::copy_n(shading.info.lsc_table, 4, info.lsc_table);
            const size_t figure = 16 * n + 32 * static_cast<size_t>(shading.table_w) + 1024;
            EXPECT_LE(peak_of([&] { return lsc_compress(&info); }), figure);
            EXPECT_LE(peak_of([&] { return lsc_decompress(&info); }), figure);
        }
        std::vector<uint16_t> frame = lens_frame(size.width, size.height, 800);
        EXPECT_EQ(
            peak_of([&] { return lsc2d_correction_wrapper(frame.data(), frame.data(), &shading.info); }), 0u);
    }
}

} // namespace
} // namespace zerklsc::testing
