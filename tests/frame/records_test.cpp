#include "zerklsc.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

lsc2d_info example_info(uint16_t tables[4]) {
    lsc2d_info info{};
    info.width = 4000;
    info.height = 3000;
    for (int c = 0; c < 4; ++c)
        info.lsc_table[c] = &tables[c];
    std::memset(&info.weight, 0x5B, sizeof info.weight);
    info.grid = 64;
    info.shading_percent = 80;
    info.filter_radius = 8;
    info.algorithm = 4;
    return info;
}

TEST(Records, DefaultsFillEveryField) {
    lsc2d_calib_param param;
    std::memset(&param, 0xFF, sizeof param);
    lsc2d_calib_param_default(&param, 64, 7, 90);
    const int32_t expected[8] = {64, 0, 7, 0, 1, 1, 0, 90};
    EXPECT_EQ(std::memcmp(&param, expected, sizeof expected), 0);
}

TEST(Records, TablesChangePlacesOnTheWayOutAndBack) {
    uint16_t tables[4];
    const lsc2d_info info = example_info(tables);
    isp_param_tag param{};
    lsc2d_info_to_isp_param(&info, &param);
    const int order[4] = {0, 2, 1, 3};
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(param.lsc_table[k], &tables[order[k]]) << k;
    EXPECT_EQ(std::memcmp(&param.weight, &info.weight, sizeof info.weight), 0);

    lsc2d_info back{};
    isp_param_to_lsc2d_info(&back, &param);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(back.lsc_table[c], &tables[c]) << c;
    EXPECT_EQ(back.width, 4000);
    EXPECT_EQ(back.height, 3000);
    EXPECT_EQ(back.grid, 64);
    EXPECT_EQ(back.shading_percent, 80);
    EXPECT_EQ(back.filter_radius, 8);
    EXPECT_EQ(std::memcmp(&back.weight, &info.weight, sizeof info.weight), 0);
}

TEST(Records, AlgorithmChoosesTheIspType) {
    uint16_t tables[4];
    lsc2d_info info = example_info(tables);
    const struct {
        int32_t algorithm;
        int isp_type;
    } cases[] = {{0, 3}, {1, 3}, {2, 3}, {3, 3}, {4, 4}, {5, 77}, {7, 77}, {-1, 77}, {INT32_MIN, 77}};
    for (const auto& c : cases) {
        isp_param_tag param{};
        param.isp_type = 77;
        info.algorithm = c.algorithm;
        lsc2d_info_to_isp_param(&info, &param);
        EXPECT_EQ(param.isp_type, c.isp_type) << c.algorithm;
    }
}

TEST(Records, ConversionLeavesTheFieldsThatAreTheCallers) {
    uint16_t tables[4];
    const lsc2d_info info = example_info(tables);
    isp_param_tag param;
    std::memset(&param, 0xC3, sizeof param);
    lsc2d_info_to_isp_param(&info, &param);
    EXPECT_EQ(param.reserved_0, 0xC3C3C3C3u);
    EXPECT_EQ(param.reserved_1, 0xC3C3C3C3u);
    EXPECT_EQ(param.blc[3], 0xC3);
    EXPECT_EQ(param.isp_algorithm, static_cast<int32_t>(0xC3C3C3C3));
    EXPECT_EQ(param.bayer_pattern, 0xC3);
    isp_param_tag same;
    std::memset(&same, 0xC3, sizeof same);
    EXPECT_EQ(std::memcmp(&param.corner_ratio, &same.corner_ratio, sizeof same.corner_ratio), 0);
}

TEST(Records, WayBackTakesTheAlgorithmFromTheIspRecord) {
    uint16_t tables[4];
    lsc2d_info info = example_info(tables);
    isp_param_tag param{};
    param.isp_algorithm = 1;
    lsc2d_info_to_isp_param(&info, &param);
    isp_param_to_lsc2d_info(&info, &param);
    EXPECT_EQ(info.algorithm, 1);
}

} // namespace
