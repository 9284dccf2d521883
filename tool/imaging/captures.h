// Several captures of one module.
#pragma once

#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// A data failure where the captures differ in size, depth, pattern, black or white level.
void check_alike(const std::vector<RawFrame>& captures);

// The mean of alike captures, sample by sample, rounded to nearest. `left_out` is the number of one that is
// not part of it, or -1. The name is that of the first capture.
RawFrame mean_of(const std::vector<RawFrame>& captures, int left_out = -1);

} // namespace zerklsc::tool
