// check_grid: what the step asks of the frame
#include <algorithm>

#include <fmt/format.h>

#include "check/checks.h"
#include "imaging/calibration.h"

namespace zerklsc::tool {

void check_grid(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    const int shorter = std::min(capture.frame.width, capture.frame.height) / 2;
    judgement.add("grid", "", (shorter + capture.step - 1) / capture.step + 1,
                  fmt::format("the grid is coarse for planes of {} x {}: give a smaller --step",
                              capture.frame.width / 2, capture.frame.height / 2));
}

} // namespace zerklsc::tool
