// Checks that need a second capture, or the tables of another module.
#pragma once

#include "check/checks.h"
#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// A capture with what was measured of it.
struct CheckedFlat {
    const RawFrame& frame;
    const Analysis& analysis;
};

// Drift, movement and duplicates between a capture and another one of the same module and light.
void check_repetition(const Judgement& judgement, const CheckedFlat& other);

// The black level from the noise that two captures do not share: fixed patterns cancel. It replaces the
// finding of the single capture.
void check_black_level_of_pair(const Judgement& judgement, const CheckedFlat& other);

// The slope of the light, by a capture for which the module was turned by 180 degrees under the same light:
// the lens's shading turns with the module, the light does not.
void check_turned(const Judgement& judgement, const CheckedFlat& turned);

// The shading against that of a reference module: as it is, turned, mirrored, with exchanged planes.
void check_reference(const Judgement& judgement, const GainTables& reference);

} // namespace zerklsc::tool
