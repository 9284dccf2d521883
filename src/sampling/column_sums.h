// The sums of the columns under a window that moves down a plane, shared by all windows of a row.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
#include "sampling/sum_kernels.h"

namespace zerklsc {

// The largest radius of a box whose full-scale samples sum up within 32 bits.
constexpr int32_t max_shared_radius = 127;

// Row y of the plane starts at first + y * stride. Where `interleave` planes share the rows, their columns
// stand side by side.
class ColumnSums {
  public:
    // For `width` samples of each row and windows of `rows` rows; both are at least 1.
    ColumnSums(const uint16_t* first, ptrdiff_t stride, int32_t width, int32_t rows, int32_t interleave);

    // False when there is no memory.
    explicit operator bool() const { return sums_ != nullptr && running_ != nullptr; }

    // Sums up the rows from `top` on, which is not above that of the call before.
    void move_to(int32_t top);

    // The sums of all columns to the left of each sample, modulo 2^32, until the next move: the sum of a
    // window is the difference of the two at its edges.
    const uint32_t* running_sums();

  private:
    const uint16_t* row(int32_t y) const { return first_ + y * stride_; }

    const uint16_t* first_;
    ptrdiff_t stride_;
    int32_t width_;
    int32_t rows_;
    int32_t interleave_;
    bool filled_ = false;
    int32_t top_ = 0;
    Scratch<uint32_t> sums_;
    Scratch<uint32_t> running_;
    AddRow* add_row_;
    ExchangeRow* exchange_row_;
};

} // namespace zerklsc
