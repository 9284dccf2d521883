// The sums of rows, column by column.
#include "sampling/sum_kernels.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

void add_row(uint32_t* __restrict sums, const uint16_t* __restrict entering, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        sums[i] += entering[i];
}

void exchange_row(uint32_t* __restrict sums, const uint16_t* __restrict entering,
                  const uint16_t* __restrict leaving, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        sums[i] = sums[i] + entering[i] - leaving[i];
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
