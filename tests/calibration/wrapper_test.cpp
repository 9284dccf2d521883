#include "zerklsc.h"

#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include "calibration/tables.h"
#include "support/allocations.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// A calibration whose tables and weights start out recognisable.
struct Call {
    lsc2d_info info{};
    Tables tables;

    Call(int32_t algorithm, uint16_t width, uint16_t height, uint16_t grid, int32_t radius,
         int32_t percent = 100)
        : tables(table_size(width, grid), table_size(height, grid)) {
        std::memset(&info, 0x5B, sizeof info);
        info.width = width;
        info.height = height;
        std::copy_n(tables.list, 4, info.lsc_table);
        info.grid = grid;
        info.shading_percent = percent;
        info.filter_radius = radius;
        info.algorithm = algorithm;
    }

    bool weights_untouched() const {
        lnc_bicubic_weight_t_64_tag same;
        std::memset(&same, 0x5B, sizeof same);
        return std::memcmp(&same, &info.weight, sizeof same) == 0;
    }

    static int32_t table_size(int32_t extent, int32_t grid) {
        int32_t w, h;
        lsc2d_table_size(extent / 2, extent / 2, grid, grid, &w, &h);
        return std::max(w, 1);
    }
};

// Brightest at the centre, with a little noise, all samples below 1023.
std::vector<uint16_t> vignetted(int32_t width, int32_t height) {
    Random random(30);
    std::vector<uint16_t> raw;
    for (int32_t k = 0; k < width * height; ++k) {
        const int32_t dx = k % width - width / 2, dy = k / width - height / 2;
        const int32_t level = 900 - 1500 * (dx * dx + dy * dy) / (width * width + height * height);
        raw.push_back(static_cast<uint16_t>(level + random.between(0, 3)));
    }
    return raw;
}

// The first of each pair is refused before anything is written; one sample, node or step less is taken.
TEST(Wrapper, TakesWhatTheMethodCanDoAndRefusesTheRestUntouched) {
    const std::vector<uint16_t> raw(602 * 602, uint16_t{500});
    const struct {
        const char* what;
        uint16_t width, height, grid;
        int32_t radius;
        std::vector<int32_t> refused, taken;
    } cases[] = {
        {"unknown algorithm", 240, 240, 16, 2, {5, -1, INT32_MIN, INT32_MAX}, {0, 1, 2, 3, 4}},
        {"step 0", 240, 240, 0, 2, {0, 1, 2, 3, 4}, {}},
        {"negative radius", 240, 240, 16, -1, {0, 1, 2, 3, 4}, {}},
        {"radius far beyond the plane", 240, 240, 16, INT32_MAX, {0, 1, 2, 3, 4}, {}},
        {"step above a byte", 600, 600, 256, 2, {0, 1, 4}, {2}},
        {"step of a byte", 600, 600, 255, 2, {}, {0, 1, 2, 4}},
        {"radius as wide as the plane", 240, 242, 16, 120, {0, 1, 2, 4}, {}},
        {"radius just below the plane", 240, 242, 16, 119, {}, {0, 1, 2, 4}},
        {"two nodes in a row", 60, 240, 30, 2, {0, 1, 2, 4}, {}},
        {"two rows of nodes", 240, 60, 30, 2, {0, 1, 2, 4}, {}},
        {"three nodes in a row", 62, 240, 30, 2, {}, {1, 2, 4}},
        {"no room for a corner block", 98, 240, 16, 2, {0}, {1}},
        {"room for a corner block", 100, 240, 16, 2, {}, {0}},
        {"no room for a centre cluster", 18, 240, 4, 2, {0, 2, 3, 4}, {1}},
        {"no room for a centre cluster", 240, 19, 4, 2, {0, 2, 3, 4}, {1}},
        {"room for a centre cluster", 20, 21, 4, 9, {}, {2, 4}},
        {"no plane", 1, 240, 16, 0, {0, 1, 2, 3, 4}, {}},
        {"no frame", 0, 0, 16, 0, {0, 1, 2, 3, 4}, {}},
    };
    for (const auto& c : cases) {
        for (const int32_t algorithm : c.refused) {
            Call call(algorithm, c.width, c.height, c.grid, c.radius);
            const AllocationScope scope;
            EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), -1)
                << c.what << ", algorithm " << algorithm;
            EXPECT_TRUE(call.tables.all_untouched() && call.weights_untouched())
                << c.what << ' ' << algorithm;
            EXPECT_TRUE(scope.leftovers().empty()) << c.what << ", algorithm " << algorithm;
        }
        for (const int32_t algorithm : c.taken) {
            Call call(algorithm, c.width, c.height, c.grid, c.radius);
            const AllocationScope scope;
            EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0)
                << c.what << ", algorithm " << algorithm;
            EXPECT_TRUE(call.tables.all(1023, 1025)) << c.what << ", algorithm " << algorithm;
        }
    }
    EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), nullptr), -1);
    for (int missing = 0; missing <= 4; ++missing) {
        Call call(missing, 240, 240, 16, 2);
        if (missing < 4)
            call.info.lsc_table[missing] = nullptr;
        EXPECT_EQ(lsc2d_calibration_wrapper(missing < 4 ? raw.data() : nullptr, &call.info), -1) << missing;
        EXPECT_TRUE(call.tables.all_untouched()) << missing;
    }
}

TEST(Wrapper, FlatFrameNeedsNoCorrectionNorACopy) {
    const std::vector<uint16_t> raw(4208 * 3120, uint16_t{700});
    for (const int32_t radius : {0, 4, 7, 16}) {
        Call call(radius == 7 ? 4 : 2, 4208, 3120, 64, radius);
        const AllocationScope scope;
        ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0);
        EXPECT_TRUE(call.tables.all(1024, 1024)) << "radius " << radius;
        EXPECT_LT(scope.peak_bytes(), 64u * 1024);
    }
}

// A flat frame but for two nodes: one half as bright as the rest, and one that asks for more than the highest
// gain. The methods that sample follow them, and all follow the shading model, on the border too.
TEST(Wrapper, ShadesAndLimitsEachTableAndOnlyReadsTheFrame) {
    std::vector<uint16_t> flat(128 * 110, uint16_t{512}), marked = flat;
    marked[static_cast<size_t>((2 * 24 + 1) * 128 + 2 * 24)] = 256; // node (3, 3) of plane 2
    marked[static_cast<size_t>(2 * 32 * 128 + 2 * 40 + 1)] = 20;    // node (5, 4) of plane 1
    for (const int32_t algorithm : {2, 3, 4})
        for (const int32_t percent : {100, 80}) {
            const bool samples = algorithm != 3;
            Guarded<uint16_t> raw(samples ? marked : flat, Against::back);
            Call call(algorithm, 128, 110, 8, samples ? 0 : 2, percent);
            const AllocationScope scope;
            ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0) << algorithm;
            for (int c = 0; c < 4; ++c)
                for (int j = -1; j < 9; ++j)
                    for (int i = -1; i < 10; ++i) {
                        const double dx = 8 * i - 32, dy = 8 * j - 27.5, share = percent / 100.0;
                        const double square =
                            1 + (share * share - 1) * (dx * dx + dy * dy) / (32 * 32 + 27.5 * 27.5);
                        const bool half = samples && c == 2 && i == 3 && j == 3;
                        const bool dark = samples && c == 1 && i == 5 && j == 4;
                        const double gain = std::min((half   ? 2
                                                      : dark ? 25.6
                                                             : 1)
                                                         * 1024 * std::sqrt(square),
                                                     double{ZERKLSC_HIGHEST_GAIN});
                        ASSERT_NEAR(call.tables.table[c][static_cast<size_t>((j + 1) * 11 + i + 1)], gain, 1)
                            << "algorithm " << algorithm << ", plane " << c << ", node " << i << ' ' << j;
                    }
            EXPECT_EQ(raw.copy(), samples ? marked : flat);
            EXPECT_EQ(call.weights_untouched(), algorithm != 4);
        }
}

// The model's factor is the percentage in the corner of the planes, where the first inner node lies, and 1 in
// their centre.
TEST(Wrapper, CornersKeepTheShadingPercentage) {
    const std::vector<uint16_t> raw = vignetted(192, 128);
    const int32_t w = Call::table_size(192, 16);
    for (int32_t algorithm = 2; algorithm <= 4; ++algorithm) {
        Call whole(algorithm, 192, 128, 16, 2, 100), kept(algorithm, 192, 128, 16, 2, 80);
        ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &whole.info), 0);
        ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &kept.info), 0);
        for (int c = 0; c < 4; ++c) {
            const Guarded<uint16_t>&a = whole.tables.table[c], &b = kept.tables.table[c];
            EXPECT_NEAR(b.copy()[static_cast<size_t>(w + 1)], 0.8 * a.copy()[static_cast<size_t>(w + 1)], 1);
            EXPECT_EQ(b.copy()[static_cast<size_t>(3 * w + 4)], a.copy()[static_cast<size_t>(3 * w + 4)]);
        }
    }
}

} // namespace
