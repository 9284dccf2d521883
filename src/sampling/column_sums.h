// The sums of the columns under a window that moves down a plane, shared by all windows of a row.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
#include "sampling/sum_kernels.h"

namespace zerklsc {

// The largest radius of a box whose full-scale samples sum up within 32 bits.
constexpr int32_t max_shared_radius = 127;

// Where `interleave` planes share the rows, their columns stand side by side.
class ColumnSums {
  public:
    // Room for `width` samples of each row, which are `stride` apart, and windows of `rows` rows; both are at
    // least 1.
    ColumnSums(int32_t width, ptrdiff_t stride, int32_t rows, int32_t interleave);

    // False when there is no memory.
    explicit operator bool() const { return sums_ != nullptr && running_ != nullptr; }

    // Starts anew with `width` columns, row 0 of which starts at `first`.
    void start(const uint16_t* first, int32_t width);

    // Sums up the rows from `top` on, which is not above that of the call before.
    void move_to(int32_t top);

    // The sum of each column, modulo 2^32.
    const uint32_t* columns() const { return sums_.get(); }

    // The sums of all columns to the left of each sample, modulo 2^32, until the next move: the sum of a
    // window is the difference of the two at its edges.
    const uint32_t* running_sums();

  private:
    const uint16_t* row(int32_t y) const { return first_ + y * stride_; }

    const uint16_t* first_ = nullptr;
    int32_t width_;
    ptrdiff_t stride_;
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
