// The sums of many windows, row by row of the planes.
#include "sampling/window_sums.h"

#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "sampling/boundary.h"

namespace zerklsc {
namespace {

// The running sums of the planes that share a buffer row, which give the sum of any span of it.
class RunningRow {
  public:
    explicit RunningRow(const PlaneSet& planes)
        : planes_(planes), sums_(allocate<uint32_t>(static_cast<uint64_t>(planes.interleave)
                                                    * (static_cast<uint64_t>(planes.width) + 1))) {}

    explicit operator bool() const { return sums_ != nullptr; }

    void run_along(int32_t y, int32_t parity) {
        run_(planes_.row(y, parity), planes_.interleave * planes_.width, planes_.interleave, sums_.get());
    }

    // Adds the samples left .. right of each plane, wherever the boundary rule finds those outside.
    void add_span(int64_t left, int64_t right, int32_t mode, uint64_t* sums) const {
        if (left >= 0 && right < planes_.width)
            return add(static_cast<int32_t>(left), static_cast<int32_t>(right - left) + 1, 1, sums);
        for (const Run& run : tap_runs(planes_.width, left, right, mode))
            add(run.first, run.count, static_cast<uint64_t>(run.weight), sums);
    }

  private:
    void add(int32_t first, int32_t count, uint64_t weight, uint64_t* sums) const {
        const uint32_t* const start = sums_.get() + ptrdiff_t{first} * planes_.interleave;
        const uint32_t* const end = start + ptrdiff_t{count} * planes_.interleave;
        for (int32_t c = 0; c < planes_.interleave; ++c)
            sums[c] += weight * (end[c] - start[c]);
    }

    const PlaneSet& planes_;
    Scratch<uint32_t> sums_;
    RunningSamples* run_ = ZERKLSC_KERNEL(running_samples);
};

// Windows with the same centre row, and where their sums go.
struct Line {
    const WindowCentre* centres;
    ptrdiff_t count;
    uint64_t* sums;
};

// Adds the row of the windows at distance dy from their centres, which lies on the running row.
[[gnu::noinline]] void add_row(const RunningRow& row, const PlaneSet& planes, const Window& window,
                               const Line& line, int64_t dy, int32_t parity) {
    const int32_t reach = window.reach_of(static_cast<int32_t>(dy));
    uint64_t* sums = line.sums + parity * planes.interleave;
    for (ptrdiff_t i = 0; reach >= 0 && i < line.count; ++i, sums += planes.count())
        row.add_span(int64_t{line.centres[i].x} - reach, int64_t{line.centres[i].x} + reach,
                     window.boundary_mode, sums);
}

// Calls work(dy) for every row of a window around y that is read at plane row `row`: that row itself, and
// those beyond an edge that the boundary rule moves there.
template <class Work>
void each_distance(const PlaneSet& planes, const Window& window, int64_t y, int64_t row, Work work) {
    const int64_t top = y - window.radius, bottom = y + window.radius, last = int64_t{planes.height} - 1;
    if (row >= top && row <= bottom)
        work(row - y);
    if (window.boundary_mode == ZERKLSC_BOUNDARY_CLAMP) {
        for (int64_t at = top; row == 0 && at <= std::min<int64_t>(bottom, -1); ++at)
            work(at - y);
        for (int64_t at = std::max(top, last + 1); row == last && at <= bottom; ++at)
            work(at - y);
        return;
    }
    if (row > 0 && -row >= top && -row <= bottom)
        work(-row - y);
    if (row < last && 2 * last - row >= top && 2 * last - row <= bottom)
        work(2 * last - row - y);
}

// The line that begins with window k.
Line line_from(ptrdiff_t k, const WindowCentre* centres, int64_t count, uint64_t* sums,
               const PlaneSet& planes) {
    ptrdiff_t end = k + 1;
    while (end < count && centres[end].y == centres[k].y)
        ++end;
    return {centres + k, end - k, sums + k * planes.count()};
}

// The lines of a list of windows.
struct Lines {
    Scratch<Line> line;
    ptrdiff_t count = 0;
};

Lines lines_of(const WindowCentre* centres, int64_t count, uint64_t* sums, const PlaneSet& planes) {
    Lines lines{allocate<Line>(static_cast<uint64_t>(count))};
    for (ptrdiff_t k = 0; lines.line != nullptr && k < count; ++lines.count) {
        Line& line = lines.line.get()[lines.count];
        line = line_from(k, centres, count, sums, planes);
        k += line.count;
    }
    return lines;
}

// Adds one row of the planes to all windows that lie on it.
void add_plane_row(RunningRow& running, const PlaneSet& planes, const Window& window, const Lines& lines,
                   int32_t row) {
    for (int32_t parity = 0; parity < planes.interleave; ++parity) {
        bool is_run = false;
        for (ptrdiff_t k = 0; k < lines.count; ++k) {
            const Line& line = lines.line.get()[k];
            each_distance(planes, window, line.centres->y, row, [&](int64_t dy) {
                if (!is_run)
                    running.run_along(row, parity);
                is_run = true;
                add_row(running, planes, window, line, dy, parity);
            });
        }
    }
}

} // namespace

// In units of a sample that is read with many others: reading a window takes one for each tap, and so much
// for each of its rows; a row that is run along takes some for each sample, and each span on it so much.
bool rows_should_be_shared(const PlaneSet& planes, const Window& window, int64_t count) {
    constexpr double row_of_disc = 600, run = 8, span = 40;
    const double rows = 2.0 * window.radius + 1;
    const double one_by_one = static_cast<double>(window.taps) + (window.box ? 0.0 : row_of_disc * rows);
    const double samples = static_cast<double>(planes.width) * planes.height * planes.count();
    return samples * run + static_cast<double>(count) * rows * span < static_cast<double>(count) * one_by_one;
}

Scratch<uint64_t> sum_row_by_row(const PlaneSet& planes, const Window& window, const WindowCentre* centres,
                                 int64_t count) {
    const uint64_t all = static_cast<uint64_t>(count) * static_cast<uint64_t>(planes.count());
    Scratch<uint64_t> sums = allocate<uint64_t>(all);
    RunningRow running(planes);
    if (sums == nullptr || !running)
        return nullptr;
    const Lines lines = lines_of(centres, count, sums.get(), planes);
    if (lines.line == nullptr)
        return nullptr;
    std::fill_n(sums.get(), all, uint64_t{0});
    for (int32_t row = 0; row < planes.height; ++row)
        add_plane_row(running, planes, window, lines, row);
    return sums;
}

} // namespace zerklsc
