#include <cstring>
#include <utility>
#include <vector>

#include "flat_field.h"
#include "support/allocations.h"

namespace zerklsc::testing {
namespace {

// Every colour and direction is different.
int uneven(int x, int y) {
    return 400 + 60 * position_of(x, y) + x - 2 * y / 3;
}

using FrontEnd = decltype(&lsc2d_calibration_halvane);
using Generator = decltype(&bicubic_lnc_param_gen_halvane);

TEST(FrontEnds, RunTheGeneratorWithWordsZeroTwoAndSevenAndTablesInPlaneOrder) {
    const std::pair<FrontEnd, Generator> pairs[] = {
        {lsc2d_calibration_orvel_otp, bicubic_lnc_param_gen_orvel_otp},
        {lsc2d_calibration_halvane, bicubic_lnc_param_gen_halvane}};
    for (const auto& [front_end, generator] : pairs) {
        FlatField direct(120, 104, 8), field(120, 104, 8);
        for (FlatField* f : {&direct, &field})
            f->paint(uneven);
        direct.param.bayer_pattern = 2;
        direct.param.filter_radius = 3;
        direct.param.shading_percent = 70;
        EXPECT_EQ(direct.run(generator), "");
        uint32_t calib[8] = {0x20108, 9, 3, 11, 13, 17, 19, 70};
        uint16_t** const pointers = field.param.lsc_table;
        uint16_t* tables[4] = {pointers[0], pointers[2], pointers[1], pointers[3]};
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, tables, 5, 6, 2, calib), 0);
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(field.tables[k]->copy(), direct.tables[k]->copy()) << k;
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, nullptr, 0, 0, 2, calib), -1);
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, tables, 0, 0, 2, nullptr), -1);
        EXPECT_EQ(front_end(field.raw.data(), 120, 104, tables, 0, 0, 4, calib), -1);
    }
}

struct OtpCall {
    uint32_t grid_w = 9, grid_h = 8; // of 60 x 52 samples
    uint32_t calib[3] = {8, 3, 70};
    std::vector<std::unique_ptr<Guarded<uint8_t>>> bytes;
    uint8_t* out[4];

    // From an odd address on: the gains need not be aligned.
    OtpCall() {
        for (uint8_t*& table : out)
            table = bytes.emplace_back(std::make_unique<Guarded<uint8_t>>(9 * 8 * 2 + 1))->data() + 1;
    }

    int32_t run(FlatField& f) {
        return lsc2d_otp_table(f.raw.data(), f.param.width, f.param.height, out, grid_w, grid_h, calib);
    }

    bool untouched() const {
        const auto kept = [](const auto& b) { return b->copy() == std::vector<uint8_t>(145, 0xA5); };
        return std::all_of(bytes.begin(), bytes.end(), kept);
    }
};

TEST(OtpTable, TakesThreeWordsOfItsOwnAndPacksTheInnerNodesInPlaneOrder) {
    FlatField field(120, 104, 8);
    field.paint(uneven);
    OtpCall call;
    ASSERT_EQ(call.run(field), 0);
    field.param.filter_radius = 3;
    field.param.shading_percent = 70;
    field.run(bicubic_lnc_param_gen_orvel_otp);
    for (int position = 0; position < 4; ++position)
        for (int j = 0; j < 8; ++j)
            for (int i = 0; i < 9; ++i) {
                uint16_t gain;
                std::memcpy(&gain, call.out[position] + 2 * (9 * j + i), 2);
                ASSERT_EQ(gain, field.gain(position, i, j)) << position << ' ' << i << ',' << j;
            }
}

TEST(OtpTable, RefusalsAndFailedAllocationsTouchNothingAndNothingIsLeftBehind) {
    FlatField field(120, 104, 8);
    void (*const spoil[])(OtpCall&) = {
        [](OtpCall& c) { c.grid_w = 10; },      [](OtpCall& c) { c.grid_h = 0xFFFFFFFF; },
        [](OtpCall& c) { c.calib[0] = 0x100; }, [](OtpCall& c) { c.calib[1] = 52; },
        [](OtpCall& c) { c.out[3] = nullptr; },
    };
    for (const auto change : spoil) {
        OtpCall call;
        change(call);
        EXPECT_EQ(call.run(field), -1);
        EXPECT_TRUE(call.untouched());
    }
    OtpCall call;
    EXPECT_EQ(lsc2d_otp_table(field.raw.data(), 120, 104, nullptr, 9, 8, call.calib), -1);
    EXPECT_EQ(lsc2d_otp_table(field.raw.data(), 120, 104, call.out, 9, 8, nullptr), -1);
    EXPECT_EQ(lsc2d_otp_table(nullptr, 120, 104, call.out, 9, 8, call.calib), -1);
    for (size_t n = 0, failed = 1; failed != 0; ++n) {
        AllocationScope heap(n);
        const int32_t status = call.run(field);
        failed = heap.failed();
        EXPECT_TRUE(heap.leftovers().empty());
        EXPECT_EQ(status, failed ? -1 : 0);
        EXPECT_EQ(call.untouched(), failed != 0);
    }
}

} // namespace
} // namespace zerklsc::testing
