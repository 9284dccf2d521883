#pragma once

#include "bicubic/correction/correction.h"
#include "cpu/dispatch.h"

namespace zerklsc {

// The correction in the fastest form that equals the plain one for its weights, on this processor.
void correct(const Correction& correction);

// The form for weights of which a phase's sum to unity and nothing overflows.
ZERKLSC_DECLARE_KERNEL(correct_cells, void(const Correction& correction))

} // namespace zerklsc
