#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "zerklsc.h"

namespace {

TEST(Wrapper, AlgorithmChoosesTheCorrectionAndItsStatusIsDropped) {
    // With step 3 the tvessa2 ISP does not reach the end of the cell, and every table differs.
    uint16_t tables[4][64], in[32], out[32], expected[32];
    for (int i = 0; i < 4 * 64; ++i)
        tables[i / 64][i % 64] = static_cast<uint16_t>(1024 * (i / 64 + 1) + 512 * (i % 5));
    for (int i = 0; i < 32; ++i)
        in[i] = static_cast<uint16_t>(7 * i + 1);
    for (int algorithm = -1; algorithm <= 5; ++algorithm) {
        const bool vessal2 = algorithm == 4, known = algorithm >= 0 && algorithm <= 4;
        lsc2d_info info{8, 4, {tables[0], tables[1], tables[2], tables[3]}, {}, 3, 0, 0, algorithm};
        isp_param_tag param{};
        lsc2d_info_to_isp_param(&info, &param);
        // What it does not read.
        info.filter_radius = -7;
        info.shading_percent = 12345;
        std::memset(&info.weight, 0x5A, sizeof info.weight);
        const lsc2d_info before = info;
        std::memset(out, 0x77, sizeof out);
        std::memset(expected, 0x77, sizeof expected);
        ::testing::internal::CaptureStdout();
        if (known)
            (vessal2 ? bicubic_lnc_correction_vessaL2 : bicubic_lnc_correction_tvessa2)(in, expected, &param);
        EXPECT_EQ(lsc2d_correction_wrapper(in, out, &info), known ? 0 : -1);
        EXPECT_EQ(lsc2d_correction_wrapper(nullptr, out, &info), known ? 0 : -1);
        EXPECT_EQ(lsc2d_correction_wrapper(in, out, nullptr), -1);
        const std::string narrow = vessal2 ? "" : "\ncurrent iSliceWidth = 8 is smaller than 128!\n";
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  known ? narrow + narrow + "The lens_correction input data pointer is NULL.\n" : "");
        EXPECT_EQ(std::memcmp(out, expected, sizeof out), 0) << algorithm;
        EXPECT_EQ(std::memcmp(&info.weight, &before.weight, sizeof info.weight), 0) << algorithm;
    }
}

} // namespace
