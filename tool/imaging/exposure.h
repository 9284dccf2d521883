// Whether a flat field is exposed so that gains can be measured from it.
#pragma once

#include "imaging/levels.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// Percent of a channel: a few hot pixels, no more.
constexpr double usual_clip_limit = 0.1;

// Throws a data failure when more than `clip_limit` percent of a channel's samples stand at full scale or
// when a channel's corners are not above the black level; warns about what is only unfavourable. The frame
// still holds its black level.
void check_exposure(const RawFrame& frame, BayerPattern pattern, const BlackLevel& black, double clip_limit);

} // namespace zerklsc::tool
