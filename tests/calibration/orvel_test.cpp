#include "zerklsc.h"

#include <gtest/gtest.h>

#include "calibration/call.h"
#include "calibration/orvel_plain.h"
#include "support/allocations.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

lsc2d_calib_param usual(int32_t grid, int32_t radius) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, grid, radius, 100);
    return param;
}

// Odd frames, windows over the edges, borders of all kinds, an unknown one too.
TEST(Orvel, EqualsThePlainForm) {
    Random random(20);
    const struct {
        int32_t width, height, grid, radius;
    } cases[] = {{81, 61, 16, 3},
                 {64, 65, 10, 0},
                 {41, 40, 7, 19},
                 {20, 90, 3, 7},
                 {400, 300, 64, 8},
                 {226, 200, 60, 91},
                 // The windows of the centre cluster begin with the plane and end one sample beyond it.
                 {29, 34, 4, 6},
                 {46, 28, 4, 6}};
    for (const auto& c : cases) {
        int32_t w, h;
        lsc2d_table_size(c.width / 2, c.height / 2, c.grid, c.grid, &w, &h);
        for (const Spread spread : {Spread::low, Spread::high, Spread::any}) {
            const Against side = spread == Spread::high ? Against::front : Against::back;
            Guarded<uint16_t> raw(random_samples(random, static_cast<size_t>(c.width * c.height), spread),
                                  side);
            lsc2d_calib_param param = usual(c.grid, c.radius);
            param.shading_type = 77, param.shading_percent = 5; // are not read
            param.boundary_mode = spread == Spread::low;
            param.border_aux = spread == Spread::high ? 0 : spread == Spread::any ? 1 : 7;
            Tables tables(w, h, side), plain(w, h);
            const AllocationScope scope;
            ASSERT_EQ(lsc2d_calibration_orvel(raw.data(), c.width, c.height, tables.list, w, h, &param), 0);
            const size_t sample_bytes = static_cast<size_t>((w - 2) * (h - 2)) * sizeof(float);
            EXPECT_EQ(scope.leftovers(), std::vector<size_t>(4, sample_bytes)) << "left by intent";
            zerklsc::plain::calibrate_orvel(raw.data(), c.width, c.height, plain.list, w, h, param);
            ASSERT_EQ(tables.copy(), plain.copy()) << c.width << 'x' << c.height;
            ASSERT_TRUE(tables.intact());
        }
    }
}

TEST(Orvel, RefusalsWriteAndLeaveNothing) {
    std::vector<uint16_t> raw(80 * 80, uint16_t{50});
    const struct {
        const char* what;
        int32_t width, height, stride_w, stride_h;
        lsc2d_calib_param param;
    } cases[] = {
        {"no plane", 1, 80, 7, 7, usual(10, 0)},
        {"planes too narrow for a centre cluster", 19, 80, 5, 7, usual(10, 0)},
        {"planes too low for a centre cluster", 80, 19, 7, 5, usual(10, 0)},
        {"negative size", -80, 80, 7, 7, usual(10, 0)},
        {"mirrored taps outside", 80, 80, 7, 7, usual(10, 40)},
        {"negative radius", 80, 80, 7, 7, usual(10, -1)},
        {"no step", 80, 80, 7, 7, usual(0, 1)},
        {"negative step", 80, 80, 7, 7, usual(-4, 1)},
        {"two nodes under a quadratic border", 80, 80, 4, 7, usual(10, 1)},
        {"no inner node", 80, 80, 7, 2, usual(10, 1)},
        {"stride that wraps", 80, 80, INT32_MIN, 7, usual(10, 1)},
        {"Gaussian without sigma", 80, 80, 7, 7, {10, 1, 1, 0, 1, 1, 0, 100}},
        {"unknown filter", 80, 80, 7, 7, {10, 2, 1, 0, 1, 1, 0, 100}},
        {"unknown boundary", 80, 80, 7, 7, {10, 0, 1, 2, 1, 1, 0, 100}},
        {"tables beyond all memory", 80, 80, INT32_MAX, INT32_MAX, usual(10, 1)},
    };
    for (const auto& c : cases) {
        Tables tables(7, 7);
        const AllocationScope scope;
        EXPECT_EQ(lsc2d_calibration_orvel(raw.data(), c.width, c.height, tables.list, c.stride_w, c.stride_h,
                                          &c.param),
                  -1)
            << c.what;
        EXPECT_TRUE(tables.all_untouched()) << c.what;
        EXPECT_TRUE(scope.leftovers().empty()) << c.what;
    }
}

} // namespace
