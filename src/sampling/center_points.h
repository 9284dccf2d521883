// The cluster of points around the optical centre of a plane.
#pragma once

#include <cstdint>

namespace zerklsc {

// A raster of 2 * columns by 2 * rows points, symmetric about the centre with a gap of two samples across it.
struct CentreCluster {
    int32_t x; // the centre, on which no point stands
    int32_t y;
    int32_t step;
    int32_t columns; // to each side of the centre
    int32_t rows;

    int64_t points() const { return 4 * int64_t{columns} * rows; }

    // Raster column i, counted from the left, and row j, counted from the top. Points store 16 bits, so that
    // a position beyond them wraps.
    int16_t column(int32_t i) const { return along(x, i - columns); }
    int16_t row(int32_t j) const { return along(y, j - rows); }

  private:
    int16_t along(int32_t centre, int32_t k) const {
        const int64_t offset = k < 0 ? -1 + (int64_t{k} + 1) * step : 1 + int64_t{k} * step;
        return static_cast<int16_t>(centre + offset);
    }
};

CentreCluster centre_cluster(int32_t width, int32_t height);

} // namespace zerklsc
