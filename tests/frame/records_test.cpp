#include "zerklsc.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

lsc2d_info example_info(uint16_t tables[4]) {
    lsc2d_info info;
    std::memset(&info, 0, sizeof info);
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

// All other fields of the ISP record stay as the caller left them; from one of those comes the algorithm on
// the way back.
TEST(Records, TablesChangePlacesOnTheWayOutAndBack) {
    uint16_t tables[4];
    const lsc2d_info info = example_info(tables);
    isp_param_tag param, expected;
    std::memset(&param, 0xC3, sizeof param);
    param.isp_algorithm = 1;
    std::memcpy(&expected, &param, sizeof expected);
    const size_t order[4] = {0, 2, 1, 3};
    for (size_t k = 0; k < 4; ++k)
        expected.lsc_table[k] = &tables[order[k]];
    expected.weight = info.weight;
    expected.width = 4000;
    expected.height = 3000;
    expected.grid = 64;
    expected.shading_percent = 80;
    expected.filter_radius = 8;
    expected.isp_type = ZERKLSC_ISP_VESSAL2;
    lsc2d_info_to_isp_param(&info, &param);
    EXPECT_EQ(std::memcmp(&param, &expected, sizeof param), 0);

    lsc2d_info back, same = info;
    std::memset(&back, 0, sizeof back);
    same.algorithm = 1;
    isp_param_to_lsc2d_info(&back, &param);
    EXPECT_EQ(std::memcmp(&back, &same, sizeof back), 0);
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

} // namespace
