// get_cubic_coef
#include "table/cubic.h"

#include <cmath>

#include "zerklsc.h"

float get_cubic_coef(float x) {
    const float a = std::fabs(x);
    const float a2 = a * a;
    const float a3 = a2 * a;
    if (a <= 1.0f)
        return (1.5f * a3 - 2.5f * a2) + 1.0f;
    if (a <= 2.0f)
        return (2.5f * a2 - 4.0f * a) + (-0.5f * a3 + 2.0f);
    return 0.0f;
}

zerklsc::Taps zerklsc::cubic_taps(float t) {
    return {get_cubic_coef(-1.0f - t), get_cubic_coef(-t), get_cubic_coef(1.0f - t),
            get_cubic_coef(2.0f - t)};
}
