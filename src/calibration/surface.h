// The bicubic surface over a grid of nodes, as a linear function of its inner nodes.
//
// A position on the plane is interpolated from 4 x 4 nodes. The nodes of the border are not free: each is the
// linear extrapolation of the nearest two inner nodes of its row and column. So every position, and every
// node, depends on few inner nodes; sums over all of them would only add exact zeros.
#pragma once

#include <cstdint>

namespace zerklsc {

// The nodes that a surface is interpolated from: columns and rows of nodes, border included, at least 4 of
// each. The inner nodes are numbered row by row.
struct SurfaceGrid {
    int32_t width;
    int32_t height;

    int32_t inner_width() const { return width - 2; }
    int32_t inner_height() const { return height - 2; }
    int64_t inner_count() const { return int64_t{inner_width()} * inner_height(); }
};

// The weights of four consecutive nodes of a row or column at one position; those of all others are zero.
struct AxisTaps {
    int32_t first;
    float weight[4];
};

// The taps at plane position `position` among `nodes` nodes that are 1 / per_step samples apart, node 1 at 0.
AxisTaps axis_taps(int32_t position, float per_step, int32_t nodes);

// One row of the design matrix: the weights of the inner nodes at one position. Up to 4 x 4 are not zero.
struct DesignRow {
    int32_t x; // first inner column and row
    int32_t y;
    int32_t columns;
    int32_t rows;
    double weight[4][4]; // [row][column]
};

DesignRow design_row(const AxisTaps& x, const AxisTaps& y, const SurfaceGrid& grid);

// normal += row * row^T, with `normal` inner_count() x inner_count().
void add_to_normal_matrix(const DesignRow& row, const SurfaceGrid& grid, double* normal);

// right += row * gains, for the four channels: `right` has four elements for each inner node, `gains` has
// four.
void add_to_right_sides(const DesignRow& row, const SurfaceGrid& grid, const float* gains, double* right);

// The value of node (i, j) from the inner nodes, all finite.
float node_value(int32_t i, int32_t j, const SurfaceGrid& grid, const float* inner);

} // namespace zerklsc
