// correct_once ISP FORM BITS STEP ROWS: a single correction, whose instructions bench/arm_counts.py counts.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bicubic/correction/correction.h"
#include "frames.h"

int main(int argc, char** argv) {
    using namespace zerklsc;
    if (argc != 6) {
        std::fputs("usage: zerklsc_correct_once tvessa2|vessaL2 kernel|plain BITS STEP ROWS\n", stderr);
        return 2;
    }
    const bool is_tvessa2 = std::strcmp(argv[1], "tvessa2") == 0;
    const bool is_plain = std::strcmp(argv[2], "plain") == 0;
    const int bits = std::atoi(argv[3]), step = std::atoi(argv[4]), rows = std::atoi(argv[5]);
    constexpr int width = 4000, height = 16;
    bench::Tables tables(width, height, step, is_tvessa2 ? 2 : 4);
    std::vector<uint16_t> frame(size_t{width} * height);
    for (size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<uint16_t>(i * 40503 >> 7 & ((1U << bits) - 1));
    isp_param_tag param{};
    lsc2d_info_to_isp_param(&tables.info, &param);
    generate_bicubic_weight_table(&param.weight, param.grid);
    Correction correction = is_tvessa2 ? tvessa2_correction(frame.data(), frame.data(), param)
                                       : vessal2_correction(frame.data(), frame.data(), param);
    correction.end_row = rows;
    (is_plain ? plain::correct : fastest_form(correction))(correction);
}
