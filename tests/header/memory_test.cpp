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
            const size_t n = shading.inner_nodes();
            const size_t taken =
                peak_of([&] { return lsc2d_calibration_wrapper(frame.data(), &shading.info); });
            if (algorithm == 2) {
                lsc2d_calib_param param;
                lsc2d_calib_param_default(&param, size.step, size.radius, 100);
                EXPECT_EQ(peak_of([&] {
                              return lsc2d_calibration_orvel(const_cast<uint16_t*>(frame.data()), size.width,
                                                             size.height, shading.info.lsc_table,
                                                             shading.table_w, shading.table_h, &param);
                          }),
                          taken);
            }
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

TEST(HeaderMemory, OfTheGenerators) {
    for (const Size& size : sizes) {
        std::vector<uint16_t> frame = lens_frame(size.width, size.height, 800);
        Shading shading(size.width, size.height, size.step, 1);
        const uint16_t width = shading.info.width, height = shading.info.height;
        uint32_t calib[8] = {static_cast<uint32_t>(size.step), 4, 100, 0, 0, 0, 0, 100};
        const size_t n = shading.inner_nodes(), figure = 8 * n + 12 * (width / 2u) + 8;
        EXPECT_EQ(peak_of([&] {
                      return lsc2d_calibration_orvel_otp(frame.data(), width, height, shading.info.lsc_table,
                                                         0, 0, 1, calib);
                  }),
                  figure);
        std::vector<uint8_t> gains(8 * n);
        uint8_t* out[4] = {&gains[0], &gains[2 * n], &gains[4 * n], &gains[6 * n]};
        const auto grid_w = static_cast<uint32_t>(shading.table_w - 2);
        const auto grid_h = static_cast<uint32_t>(shading.table_h - 2);
        EXPECT_EQ(
            peak_of([&] { return lsc2d_otp_table(frame.data(), width, height, out, grid_w, grid_h, calib); }),
            8 * shading.tables[0].size() + figure);
    }
}

TEST(HeaderMemory, OfTheSurfaceFit) {
    const std::vector<uint16_t> frame = lens_frame(640, 480, 800);
    for (const int step : {32, 64}) {
        Shading shading(640, 480, step, ZERKLSC_ALGORITHM_BETA);
        const size_t m = shading.inner_nodes();
        const size_t rows = (m + 3) / 4 * 4, columns = (m + 31) / 32 * 32;
        const size_t inversion = (rows * columns * 1009 / 1000 + 26 * rows + 24 * columns) * 8 + 16 * m + 64;
        // A raster has fewer lines than 16 to a cell at either end, 4 to each in between, and the centre.
        const size_t lines = 64 * (64 + 4 * static_cast<size_t>(shading.table_w + shading.table_h));
        const size_t taken = peak_of([&] { return lsc2d_calibration_wrapper(frame.data(), &shading.info); });
        expect_within(taken, 8 * m * m + 48 * m + inversion + lines, 2);
        lsc2d_calib_param param;
        lsc2d_calib_param_default(&param, step, shading.info.filter_radius, 100);
        EXPECT_EQ(peak_of([&] {
                      return lsc2d_calibration_beta(const_cast<uint16_t*>(frame.data()), 640, 480,
                                                    shading.info.lsc_table, shading.table_w, shading.table_h,
                                                    &param);
                  }),
                  taken);
    }
}

TEST(HeaderMemory, OfSampling) {
    for (const Size& size : sizes) {
        SCOPED_TRACE(size.width);
        const size_t w = static_cast<size_t>(size.width), r = static_cast<size_t>(size.radius);
        const std::vector<uint16_t> plane = lens_frame(size.width, size.height, 800);
        const imfilter_t box{ZERKLSC_FILTER_BOX, size.radius, ZERKLSC_BOUNDARY_MIRROR, nullptr};
        int32_t grid_w = 0, grid_h = 0, count = 0;
        lsc2d_grid_samples(size.width, size.height, size.step, size.step, &grid_w, &grid_h);
        std::vector<float> samples(static_cast<size_t>(grid_w) * static_cast<size_t>(grid_h));
        pix_point* points = nullptr;
        ASSERT_EQ(init_center_points(size.width, size.height, &points, &count), 0);
        const size_t cluster = static_cast<size_t>(count);
        EXPECT_LE(peak_of([&] {
                      return img_sample_grid(plane.data(), samples.data(), size.width, size.height, size.step,
                                             size.step, grid_w, grid_h, &box);
                  }),
                  4 * (r + 1) + 40 * samples.size() + 4 * (w + 1));
        EXPECT_EQ(peak_of([&] { return img_sample(plane.data(), points, 1, size.width, size.height, &box); }),
                  4 * (r + 1));
        EXPECT_LE(
            peak_of([&] { return img_sample(plane.data(), points, count, size.width, size.height, &box); }),
            4 * (r + 1) + 40 * cluster + 4 * (w + 1));
        release_center_points(points);
        expect_within(peak_of([&] {
                          return calc_otp_table(plane.data(), samples.data(), size.width, size.height,
                                                size.step, size.step, grid_w, grid_h, size.radius);
                      }),
                      4 * samples.size() + 2 * w + 20 * (r + 1) + 64
                          + (size.shared_rows ? 40 * std::max(samples.size(), cluster) + 4 * (w + 1) : 0),
                      2);
    }
}

TEST(HeaderMemory, OfTheFilter) {
    for (const Size& size : sizes) {
        const size_t r = static_cast<size_t>(size.radius), columns = static_cast<size_t>(size.step);
        float sigma = static_cast<float>(size.radius); // a disc wider than the window
        const imfilter_t box{ZERKLSC_FILTER_BOX, size.radius, 0, nullptr};
        const imfilter_t disc{ZERKLSC_FILTER_GAUSSIAN, size.radius, 0, &sigma};
        const int side = size.step + 40;
        std::vector<uint16_t> plane(
            static_cast<size_t>(side + 2 * size.radius + 2) * static_cast<size_t>(side) + columns + 2 * r),
            smooth(plane.size());
        const auto filter_with = [&](const imfilter_t& filter) {
            return peak_of([&] {
                return img_filter(plane.data() + size.radius * side + size.radius, smooth.data(), side,
                                  size.step, &filter);
            });
        };
        EXPECT_LE(filter_with(box), 16 * (columns + 2 * r + 1) + 4 * (r + 1) + 64);
        expect_within(filter_with(disc), (8 * (columns + 2 * r + 1) + 16) * (2 * r + 1) + 4 * (r + 1), 2.5);
    }
}

TEST(HeaderMemory, OfTablesAndStreams) {
    for (const Size& size : sizes) {
        Shading shading(size.width, size.height, size.step, 2);
        const size_t e = shading.tables[0].size();
        const size_t n = shading.inner_nodes();
        const int width = size.width / 2, height = size.height / 2;
        const Shading source(size.width, size.height, 5, 2);
        const lsc2d_grid from{source.info.lsc_table[0], 5, 5, source.table_w - 2, source.table_h - 2};
        const lsc2d_grid to{shading.info.lsc_table[0], size.step, size.step, shading.table_w - 2,
                            shading.table_h - 2};
        EXPECT_EQ(peak_of([&] { return lsc2d_grid_convert(&from, &to, width, height); }), 4 * n + 4 * e);
        const auto described = [&](const Shading& s) {
            return lsc2d_table_desc{static_cast<uint16_t>(width),
                                    static_cast<uint16_t>(height),
                                    s.info.grid,
                                    s.info.grid,
                                    static_cast<uint16_t>(s.table_w),
                                    static_cast<uint16_t>(s.table_h),
                                    s.info.lsc_table[0]};
        };
        const lsc2d_table_desc src = described(source), dst = described(shading);
        const lsc2d_crop crop{0, 0, src.width, src.height};
        EXPECT_EQ(peak_of([&] { return lsc2d_table_mapping(&src, &dst, &crop); }), 4 * n + 4 * e);
        lsc2d_calib_param param;
        lsc2d_calib_param_default(&param, size.step, 0, 100);
        Shading inner(size.width, size.height, size.step, 2);
        EXPECT_EQ(peak_of([&] {
                      return lsc2d_table_preproc(inner.info.lsc_table, shading.info.lsc_table, width, height,
                                                 shading.table_w, shading.table_h, &param);
                  }),
                  4 * n + 4 * e);
        std::vector<uint16_t> plane(static_cast<size_t>(width * height)), corrected(plane.size());
        for (const int columns : {256, width})
            EXPECT_EQ(peak_of([&] {
                          lsc2d_bicubic_correction(plane.data(), corrected.data(), columns, height,
                                                   shading.info.lsc_table[0], size.step, size.step,
                                                   shading.table_w);
                          return 0;
                      }),
                      columns == 256 ? 0 : 32 * static_cast<size_t>(columns));
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
