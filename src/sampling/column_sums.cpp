// Column sums under a moving window.
#include "sampling/column_sums.h"

#include <algorithm>

namespace zerklsc {

ColumnSums::ColumnSums(int32_t width, ptrdiff_t stride, int32_t rows, int32_t interleave)
    : width_(width), stride_(stride), rows_(rows), interleave_(interleave),
      sums_(allocate<uint32_t>(width, 1)),
      running_(allocate<uint32_t>(static_cast<uint64_t>(width) + static_cast<uint64_t>(interleave))),
      add_row_(ZERKLSC_KERNEL(add_row)), exchange_row_(ZERKLSC_KERNEL(exchange_row)) {}

void ColumnSums::start(const uint16_t* first, int32_t width) {
    first_ = first;
    width_ = width;
    filled_ = false;
}

// An exchanged row is two rows read, so that a move of more than half a window starts anew.
void ColumnSums::move_to(int32_t top) {
    if (filled_ && top - top_ <= rows_ / 2) {
        for (int32_t y = top_; y < top; ++y)
            exchange_row_(sums_.get(), row(y + rows_), row(y), width_);
    } else {
        std::fill_n(sums_.get(), width_, 0u);
        for (int32_t y = top; y < top + rows_; ++y)
            add_row_(sums_.get(), row(y), width_);
    }
    filled_ = true;
    top_ = top;
}

const uint32_t* ColumnSums::running_sums() {
    const uint32_t* const sums = sums_.get();
    uint32_t* const running = running_.get();
    std::fill_n(running, interleave_, 0u);
    for (ptrdiff_t i = 0; i < width_; ++i)
        running[i + interleave_] = running[i] + sums[i];
    return running;
}

} // namespace zerklsc
