// Whether a flat field is exposed so that gains can be measured from it.
#pragma once

#include "imaging/levels.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// Percent of a channel: a few hot pixels, no more.
constexpr double usual_clip_limit = 0.1;

// Throws a data failure when more than `clip_limit` percent of a channel's samples stand at the white level
// or when a channel's corners are not above the black level; warns about what is only unfavourable. The frame
// still holds its black level, which is known as its pattern is; `levels` are what is above that.
void check_exposure(const RawFrame& frame, const FrameLevels& levels, double clip_limit);

} // namespace zerklsc::tool
