#pragma once

#include "bicubic/correction/correction.h"
#include "frame/cpu_level.h"

namespace zerklsc {

// The correction in the fastest form that equals the plain one for its weights, on this processor.
void correct(const Correction& correction);

// The form for weights of which a phase's sum to unity and nothing overflows, by level.
#define ZERKLSC_DECLARE(level)                                                                               \
    namespace level {                                                                                        \
    void correct_cells(const Correction& correction);                                                        \
    }
ZERKLSC_EACH_LEVEL(ZERKLSC_DECLARE)
#undef ZERKLSC_DECLARE

} // namespace zerklsc
