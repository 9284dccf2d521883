// img_filter
#include <algorithm>
#include <cstddef>
#include <numeric>

#include "sampling/mask.h"
#include "sampling/sum_kernels.h"
#include "sampling/window.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// A part of a plane that is filtered; taps are read at their plain positions around it.
struct Region {
    const uint16_t* src;
    uint16_t* dst;
    int32_t rows;
    int32_t columns;
    ptrdiff_t stride;
};

// Strips whose sums stay in the cache; but not so narrow that the margins at their sides are most of the
// work.
int32_t strip_width(const Window& window, int32_t columns) {
    constexpr int32_t cached_sums = 1 << 16;
    constexpr int32_t widest = 2048;
    const int32_t margin = 2 * window.reach_of(0);
    const int32_t cached = window.box ? widest : cached_sums / (margin + 1) - margin;
    return std::min(columns, std::max({std::min(cached, widest), 256, margin}));
}

// A row of boxes that moves down: each step takes one row of samples in and one out.
class Boxes {
  public:
    Boxes(const Window& window, const Region& strip) : window_(window) {
        const ptrdiff_t half = whole_lines((ptrdiff_t{strip.columns} + 1) / 2);
        const ptrdiff_t pairs = whole_lines(half + window.radius);
        memory_ = allocate<uint32_t>(static_cast<uint64_t>(2 * line + 2 * pairs + 4 * half));
        if (memory_ == nullptr)
            return;
        uint32_t* const running = aligned(memory_.get()) + line;
        uint32_t* const sums = running + 2 * pairs;
        running[-1] = 0;
        row_ = {{running + pairs, running}, {sums, sums + half}, {sums + 2 * half, sums + 3 * half}};
    }

    explicit operator bool() const { return memory_ != nullptr; }

    void filter(const Region& strip) {
        const uint16_t* const corner = strip.src - window_.radius * (strip.stride + 1);
        sum_first_row(corner, strip);
        for (int32_t row = 0; row < strip.rows; ++row) {
            const uint16_t* const entering = corner + (row + 2 * window_.radius) * strip.stride;
            const uint16_t* const leaving = row == 0 ? entering : corner + (row - 1) * strip.stride;
            move_(row_, entering, leaving, window_.radius, strip.columns, window_.scale,
                  strip.dst + row * strip.stride);
        }
    }

  private:
    // All parts of the memory start with a cache line: vectors across two of them take a fifth longer.
    static constexpr ptrdiff_t line = cache_line / sizeof(uint32_t);

    static ptrdiff_t whole_lines(ptrdiff_t count) { return (count + line - 1) / line * line; }

    // The sums of the columns stand where the running sums will.
    void sum_first_row(const uint16_t* corner, const Region& strip) {
        const int32_t others = 2 * window_.radius;
        uint32_t* const columns = row_.running[1];
        std::fill_n(columns, strip.columns + others, 0u);
        for (int32_t y = 0; y <= others; ++y)
            add_row_(columns, corner + y * strip.stride, strip.columns + others);
        uint64_t sum = std::accumulate(columns, columns + others, uint64_t{0});
        for (ptrdiff_t x = 0; x < strip.columns; ++x) {
            sum += columns[x + others];
            row_.high[x % 2][x / 2] = static_cast<uint32_t>(sum / box_high_unit);
            row_.low[x % 2][x / 2] = static_cast<uint32_t>(sum % box_high_unit);
            sum -= columns[x];
        }
    }

    const Window& window_;
    Scratch<uint32_t> memory_;
    BoxRow row_ = {};
    AddRow* add_row_ = ZERKLSC_KERNEL(add_row);
    MoveBoxes* move_ = ZERKLSC_KERNEL(move_boxes);
};

// The sums that discs of a size need, and their kernels.
struct NarrowSums {
    using Sum = uint32_t;
    RunningSamples* run_samples = ZERKLSC_KERNEL(running_samples);
    AverageSpans* average;

    explicit NarrowSums(const Window& window)
        : average(window.taps <= max_small_taps ? ZERKLSC_KERNEL(average_small_spans)
                                                : ZERKLSC_KERNEL(average_spans)) {}

    void run(const uint16_t* samples, int32_t count, Sum* sums) const {
        run_samples(samples, count, 1, sums);
    }
};

struct WideSums {
    using Sum = uint64_t;
    AverageWideSpans* average = ZERKLSC_KERNEL(average_wide_spans);

    explicit WideSums(const Window&) {}

    static void run(const uint16_t* samples, int32_t count, Sum* sums) {
        sums[0] = 0;
        for (ptrdiff_t i = 0; i < count; ++i)
            sums[i + 1] = sums[i] + samples[i];
    }
};

// The running sums of the rows under a disc serve all discs that they lie under: row y stands in place y %
// height.
template <class Kernels>
class Discs {
  public:
    using Sum = typename Kernels::Sum;

    Discs(const Window& window, const Region& strip)
        : kernels_(window), window_(window), half_height_(window.radius), half_width_(window.reach_of(0)) {
        while (window.reach_of(half_height_) < 0)
            --half_height_;
        length_ = ptrdiff_t{strip.columns} + 2 * half_width_ + 1;
        sums_ = allocate<Sum>(static_cast<uint64_t>(length_) * static_cast<uint64_t>(height()));
        spans_ = allocate<SpanRow<Sum>>(static_cast<uint64_t>(height()));
    }

    explicit operator bool() const { return sums_ != nullptr && spans_ != nullptr; }

    void filter(const Region& strip) {
        for (int32_t y = -half_height_; y < half_height_; ++y)
            enter_row(strip, y);
        for (int32_t row = 0; row < strip.rows; ++row) {
            enter_row(strip, row + half_height_);
            for (int32_t dy = -half_height_; dy <= half_height_; ++dy) {
                const int32_t reach = window_.reach_of(dy);
                spans_.get()[dy + half_height_] = {centre(row + dy) - reach, centre(row + dy) + reach + 1};
            }
            kernels_.average(spans_.get(), height(), strip.columns, window_.scale,
                             strip.dst + row * strip.stride);
        }
    }

  private:
    int32_t height() const { return 2 * half_height_ + 1; }

    // The sum up to the first sample of the strip in row y.
    Sum* centre(int32_t y) const {
        return sums_.get() + (y + half_height_) % height() * length_ + half_width_;
    }

    // Runs along the samples of row y that lie under a disc: the caller need not have any beyond them.
    void enter_row(const Region& strip, int32_t y) {
        const int32_t outside = y < 0 ? -y : y < strip.rows ? 0 : y - strip.rows + 1;
        const int32_t reach = window_.reach_of(outside);
        kernels_.run(strip.src + y * strip.stride - reach, strip.columns + 2 * reach, centre(y) - reach);
    }

    Kernels kernels_;
    const Window& window_;
    int32_t half_height_; // rows to either side of the centre row
    int32_t half_width_;  // of the centre row, the widest
    ptrdiff_t length_ = 0;
    Scratch<Sum> sums_;
    Scratch<SpanRow<Sum>> spans_;
};

// False when there is no memory, with nothing written.
template <class Windows>
bool filter_strips(const Region& region, const Window& window) {
    Region strip = region;
    strip.columns = strip_width(window, region.columns);
    Windows windows(window, strip);
    if (!windows)
        return false;
    for (int32_t left = region.columns; left > 0; left -= strip.columns) {
        strip.columns = std::min(strip.columns, left);
        windows.filter(strip);
        strip.src += strip.columns;
        strip.dst += strip.columns;
    }
    return true;
}

} // namespace

// s1 is both the row stride and the number of rows, s2 the number of columns: callers pass width and height
// of a square plane, or choose the covered region with them.
int32_t img_filter(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t* filter) {
    // The boundary mode is not consulted: the caller provides the margin.
    imfilter_t any_boundary = *filter;
    any_boundary.boundary_mode = ZERKLSC_BOUNDARY_CLAMP;
    const Window window = make_window(any_boundary);
    const Region region = {src, dst, s1, s2, s1};
    if (!window)
        return -1;
    if (s1 < 1 || s2 < 1)
        return 0;
    const bool filtered = window.box                       ? filter_strips<Boxes>(region, window)
                          : window.taps <= max_narrow_taps ? filter_strips<Discs<NarrowSums>>(region, window)
                                                           : filter_strips<Discs<WideSums>>(region, window);
    return filtered ? 0 : -1;
}
