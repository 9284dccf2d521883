// check_capture
#include "check/checks.h"

namespace zerklsc::tool {

Findings check_capture(const FlatCapture& capture, const Analysis& analysis, const Outliers& outliers,
                       const CheckLimits& limits) {
    Findings findings;
    const Judgement judgement{capture, analysis, limits, findings};
    check_saturation(judgement);
    check_brightness(judgement);
    check_dead_regions(judgement);
    check_light(judgement);
    check_scene(judgement);
    check_defects(judgement, outliers);
    check_black_level(judgement);
    check_colours(judgement);
    check_grid(judgement);
    return findings;
}

} // namespace zerklsc::tool
