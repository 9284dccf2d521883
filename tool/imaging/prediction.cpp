// correct_capture, predict_levels, worst_flatness
#include "imaging/prediction.h"

#include <algorithm>

namespace zerklsc::tool {

void correct_capture(RawFrame& frame, const GainTables& tables, const std::string& tables_name, Isp isp) {
    scale_to_10_bits(frame);
    subtract_black(frame, BlackLevel(*frame.black));
    correct(frame, tables, tables_name, isp);
}

FrameLevels predict_levels(RawFrame& light, const BlackLevel& black, const GainTables& tables,
                           const std::string& tables_name, Isp isp) {
    scale_light_to_10_bits(light, black);
    correct(light, tables, tables_name, isp);
    return measure_planes(light, {}, usual_blocks(light));
}

double worst_flatness(const FrameLevels& levels) {
    double worst = 0;
    for (const PlaneLevels& plane : levels)
        worst = std::max(worst, plane.flatness());
    return worst;
}

} // namespace zerklsc::tool
