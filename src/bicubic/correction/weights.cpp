// generate_bicubic_weight_table
#include <cmath>

#include "bicubic/correction/cubic_1d.h"

namespace zerklsc {

// clang-format off
const int16_t fixed_weights[33][3] = {
    {0, 1024, 0}, {-8, 1023, 8}, {-15, 1022, 18}, {-22, 1019, 28},
    {-28, 1014, 40}, {-34, 1009, 52}, {-39, 1003, 65}, {-44, 995, 78},
    {-49, 987, 93}, {-53, 978, 108}, {-57, 967, 124}, {-60, 956, 141},
    {-63, 944, 158}, {-66, 931, 176}, {-68, 918, 194}, {-70, 903, 213},
    {-72, 888, 232}, {-73, 872, 252}, {-74, 856, 272}, {-75, 839, 292},
    {-76, 821, 313}, {-76, 803, 334}, {-76, 784, 356}, {-76, 765, 377},
    {-75, 745, 399}, {-74, 725, 421}, {-73, 704, 443}, {-72, 684, 465},
    {-71, 663, 487}, {-69, 641, 510}, {-68, 620, 532}, {-66, 598, 554},
    {-64, 576, 576},
};
// clang-format on

namespace {

// A weight in halves of the kernel's unit, scaled to 1024 and rounded half up.
int16_t rounded_weight(double twice) {
    return static_cast<int16_t>(std::floor((twice * 1024.0 + 1.0) * 0.5));
}

// The cubic convolution kernel with a = -0.5 at distances 1 + t, t and 1 - t. The order of the terms decides
// the values that fall on a rounding edge.
void fill_row(int16_t row[3], double t) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    row[0] = rounded_weight(t2 + t2 - t - t3);
    row[1] = rounded_weight(-5.0 * t2 + 2.0 + 3.0 * t3);
    row[2] = rounded_weight(t2 * 4.0 + t + -3.0 * t3);
}

} // namespace
} // namespace zerklsc

void generate_bicubic_weight_table(lnc_bicubic_weight_t_64_tag* weights, uint16_t step) {
    *weights = {};
    if (step == 0 || step > zerklsc::highest_step)
        return;
    const double r = 1.0 / step;
    for (int32_t i = 0; i <= step / 2; ++i)
        zerklsc::fill_row(weights->weights[i], i * r);
}
