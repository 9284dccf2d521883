// What the kernels of both directions share: blocks of eight neighbouring nodes, one vector each. Sums and
// differences wrap.
#pragma once

#include <cstddef>

#include "compress/half_kernels.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

static_assert(lanes<Words> == block_nodes);

// Calls block(c) for blocks that cover columns 0 .. width - 1. The last block overlaps the one before it, so
// that no block leaves the row: block(c) must not change what it reads.
template <class Block>
void for_each_block(ptrdiff_t width, Block block) {
    const ptrdiff_t last = width - block_nodes;
    for (ptrdiff_t c = 0; c < last; c += block_nodes)
        block(c);
    block(last);
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
