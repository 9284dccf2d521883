// What zerklsc report says of a module, as JSON.
#pragma once

#include "imaging/gain_tables.h"
#include "imaging/levels.h"
#include "io/json_value.h"

namespace zerklsc::tool {

// By colour: its levels before and after correction, with the corners against the centre, the deviation of
// each coarse block from the mean, and the largest gain.
JsonValue channels_of(const FrameLevels& before, const FrameLevels& after, const GainTables& tables);

// Brightness against the centre along four lines through it, by colour, before and after. Places run from
// -100 to 100 percent of the way from the centre to the edge or corner.
JsonValue sections_of(const FrameLevels& before, const FrameLevels& after, BayerPattern pattern);

// What a stream of each precision mode loses of the tables.
JsonValue otp_of(const GainTables& tables);

} // namespace zerklsc::tool
