// correct_capture, predict_levels, worst_flatness
#include "imaging/prediction.h"

#include <algorithm>

namespace zerklsc::tool {

RawFrame correct_capture(const RawFrame& frame, const GainTables& tables, const std::string& tables_name,
                         Isp isp) {
    RawFrame corrected = frame;
    scale_to_10_bits(corrected);
    subtract_black(corrected, BlackLevel(*corrected.black));
    correct(corrected, tables, tables_name, isp);
    return corrected;
}

FrameLevels predict_levels(const RawFrame& frame, const GainTables& tables, const std::string& tables_name,
                           Isp isp) {
    const RawFrame corrected = correct_capture(frame, tables, tables_name, isp);
    return measure_planes(corrected, {}, usual_blocks(corrected));
}

double worst_flatness(const FrameLevels& levels) {
    double worst = 0;
    for (const PlaneLevels& plane : levels)
        worst = std::max(worst, plane.flatness());
    return worst;
}

} // namespace zerklsc::tool
