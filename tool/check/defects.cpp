// check_defects: dust, defective pixels and lines
#include <algorithm>

#include <fmt/format.h>

#include "check/checks.h"
#include "check/outliers.h"

namespace zerklsc::tool {

void check_defects(const Judgement& judgement, const Outliers& outliers) {
    const FlatCapture& capture = judgement.capture;
    size_t samples = 0, lines = 0, where = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        samples += outliers.samples[plane].size();
        lines += outliers.rows[plane].size() + outliers.columns[plane].size();
        if (outliers.dust_spots[plane] > outliers.dust_spots[where])
            where = plane;
    }
    const double all = 4.0 * judgement.analysis.tiles.samples();
    judgement.add("dust", capture.colour(where), outliers.dust_spots[where],
                  "there is dust or a scratch: clean the diffuser, the lens and the sensor's cover");
    judgement.add("defects", "", 100 * static_cast<double>(samples) / all,
                  fmt::format("{} samples stand out: correct them before calibrating", samples));
    judgement.add("dead-lines", "", static_cast<double>(lines),
                  "whole rows or columns of a plane stand out: correct them before calibrating");
}

} // namespace zerklsc::tool
