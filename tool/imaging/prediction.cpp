// correct_capture, predict_levels, worst_flatness
#include "imaging/prediction.h"

#include <algorithm>

namespace zerklsc::tool {

RawFrame correct_capture(RawFrame frame, const GainTables& tables, const std::string& tables_name, Isp isp) {
    scale_to_10_bits(frame);
    subtract_black(frame, BlackLevel(*frame.black));
    correct(frame, tables, tables_name, isp);
    return frame;
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
