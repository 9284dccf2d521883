#include <cstring>

#include "flat_field.h"

namespace zerklsc::testing {
namespace {

// 60 x 52 samples of a colour, 9 x 8 nodes; every colour and direction is different.
struct UnevenField : FlatField {
    UnevenField() : FlatField(120, 104, 8) {
        paint([](int x, int y) { return 400 + 60 * plane_at(x, y) + x - 2 * y / 3; });
        param.filter_radius = 3;
        param.shading_percent = 70;
    }
};

TEST(FrontEnds, RunTheGeneratorWithWordsZeroTwoAndSevenAndTablesInPlaneOrder) {
    const std::pair<decltype(&lsc2d_calibration_halvane), decltype(&bicubic_lnc_param_gen_halvane)> pairs[] =
        {{lsc2d_calibration_orvel_otp, bicubic_lnc_param_gen_orvel_otp},
         {lsc2d_calibration_halvane, bicubic_lnc_param_gen_halvane}};
    for (const auto& [front_end, generator] : pairs) {
        UnevenField direct, field;
        direct.param.bayer_pattern = 2;
        EXPECT_EQ(direct.run(generator), "");
        uint32_t calib[8] = {0x20108, 9, 3, 11, 13, 17, 19, 70};
        uint16_t* tables[4];
        for (size_t p = 0; p < 4; ++p)
            tables[p] = field.param.lsc_table[pointer_of_plane[p]];
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, tables, 5, 6, 2, calib), 0);
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(field.tables[k]->copy(), direct.tables[k]->copy()) << k;
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, nullptr, 0, 0, 2, calib), -1);
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, tables, 0, 0, 2, nullptr), -1);
    }
}

struct OtpCall {
    uint32_t grid_w = 9, grid_h = 8;
    uint32_t calib[3] = {8, 3, 70};
    Guarded<uint8_t> bytes{4 * 144 + 1};
    // At odd addresses: the gains need not be aligned.
    uint8_t* out[4] = {&bytes[1], &bytes[145], &bytes[289], &bytes[433]};

    int32_t run(FlatField& f) { return lsc2d_otp_table(f.raw.data(), 120, 104, out, grid_w, grid_h, calib); }
    bool is_untouched() const { return bytes.copy() == std::vector<uint8_t>(577, 0xA5); }
};

TEST(OtpTable, TakesThreeWordsOfItsOwnAndPacksTheInnerNodesInPlaneOrder) {
    UnevenField field;
    OtpCall call;
    ASSERT_EQ(call.run(field), 0);
    field.run(bicubic_lnc_param_gen_orvel_otp);
    for (int i = 0; i < 4 * 72; ++i) {
        uint16_t gain;
        std::memcpy(&gain, call.out[i / 72] + 2 * (i % 72), 2);
        EXPECT_EQ(gain, field.gain(i / 72, i % 9, i % 72 / 9)) << i;
    }
}

TEST(OtpTable, RefusalsTouchNothing) {
    UnevenField field;
    OtpCall bad[5];
    bad[0].grid_w = 10;
    bad[1].grid_h = 0xFFFFFFFF;
    bad[2].calib[0] = 0x100;
    bad[3].calib[1] = 52;
    bad[4].out[3] = nullptr;
    for (OtpCall& call : bad)
        EXPECT_TRUE(call.run(field) == -1 && call.is_untouched()) << &call - bad;
    OtpCall call;
    EXPECT_EQ(lsc2d_otp_table(field.raw.data(), 120, 104, nullptr, 9, 8, call.calib), -1);
    EXPECT_EQ(lsc2d_otp_table(field.raw.data(), 120, 104, call.out, 9, 8, nullptr), -1);
}

} // namespace
} // namespace zerklsc::testing
