// update_table_border
#include "table/border.h"

#include <algorithm>

#include "table/cubic.h"
#include "table/extrapolation.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

enum class Line { row, column };

// How the last node of each line of nodes follows from the value measured in the last cell, at the fraction
// of the cell that the taps are for. What is left of that value is multiplied by `scale`.
struct EdgeRule {
    int32_t mode;
    Line line;
    Taps taps;
    float scale;
};

// The reciprocal of the weight that the last node has in what was measured at fraction t.
float edge_scale(int32_t mode, float t, const Taps& taps) {
    const auto [c0, c1, c2, c3] = taps;
    if (mode == ZERKLSC_EDGE_LINEAR)
        return 1.0f / t;
    return mode == ZERKLSC_EDGE_CUBIC_QUADRATIC ? 1.0f / (c2 + 3.0f * c3) : 1.0f / (c3 + c3 + c2);
}

EdgeRule edge_rule(int32_t mode, Line line, int32_t size, int32_t step) {
    const int64_t remainder = (int64_t{size} - 1) % step;
    const float t = static_cast<float>(remainder) / static_cast<float>(step);
    const Taps taps = cubic_taps(t);
    return {mode, line, taps, edge_scale(mode, t, taps)};
}

// The cubic rule for a border that is quadratic. It sums its terms in another order along a row than along a
// column; both orders are part of the result, for they round differently.
float cubic_quadratic(float m, float p, float q, const EdgeRule& rule) {
    const auto [c0, c1, c2, c3] = rule.taps;
    const float sum = rule.line == Line::row ? p * (3.0f * c3) - q * c3 + m - (p * c1 + q * c0)
                                             : p * (3.0f * c3) - q * c0 - q * c3 + (m - p * c1);
    return sum * rule.scale;
}

// The node at the end of a line; the nodes before it are `inward` elements apart.
float corrected(const float* last, ptrdiff_t inward, const EdgeRule& rule) {
    const float m = last[0];
    const float p = last[inward];
    if (rule.mode == ZERKLSC_EDGE_LINEAR)
        return (m - p) * rule.scale + p;
    const float q = last[2 * inward];
    if (rule.mode == ZERKLSC_EDGE_CUBIC_QUADRATIC)
        return cubic_quadratic(m, p, q, rule);
    const auto [c0, c1, c2, c3] = rule.taps;
    return (p * (c3 - c1) + m - q * c0) * rule.scale;
}

// `count` nodes that end their lines, `apart` elements from each to the next. The rule comes by value: the
// nodes cannot alias it then.
void correct_each(float* last, ptrdiff_t apart, int32_t count, ptrdiff_t inward, EdgeRule rule) {
    for (int32_t i = 0; i < count; ++i)
        last[i * apart] = corrected(&last[i * apart], inward, rule);
}

// Objects, not functions: the walk around the border is then compiled for each of them.
constexpr auto linear = [](const float* edge, ptrdiff_t inward) { return edge[0] + edge[0] - edge[inward]; };

constexpr auto quadratic = [](const float* edge, ptrdiff_t inward) {
    return (edge[0] - edge[inward]) * 3.0f + edge[2 * inward];
};

View<float> inner_nodes(View<float> bordered) {
    return {&bordered.at(ZERKLSC_BORDER, ZERKLSC_BORDER), bordered.width - 2 * ZERKLSC_BORDER,
            bordered.height - 2 * ZERKLSC_BORDER, bordered.stride};
}

int32_t nodes_needed(int32_t edge_mode, int32_t fill_mode) {
    if (fill_mode == ZERKLSC_FILL_QUADRATIC || edge_mode == ZERKLSC_EDGE_CUBIC_LINEAR
        || edge_mode == ZERKLSC_EDGE_CUBIC_QUADRATIC)
        return 3;
    return fill_mode == ZERKLSC_FILL_LINEAR || edge_mode == ZERKLSC_EDGE_LINEAR ? 2 : 1;
}

} // namespace

bool border_possible(const PlaneGrid& plane, int32_t grid_w, int32_t grid_h, int32_t edge_mode,
                     int32_t fill_mode) {
    const auto [fewest, most] = std::minmax(grid_w, grid_h);
    return plane.step_x >= 1 && plane.step_y >= 1 && fewest >= nodes_needed(edge_mode, fill_mode)
           && most <= INT32_MAX - 2 * ZERKLSC_BORDER;
}

void correct_edges(View<float> inner, const PlaneGrid& plane, int32_t edge_mode) {
    if (edge_mode < ZERKLSC_EDGE_LINEAR || edge_mode > ZERKLSC_EDGE_CUBIC_QUADRATIC)
        return;
    // With a remainder of 1 the last sample falls on the node before the last one, which keeps what was
    // measured there too.
    if (plane.width % plane.step_x != 1) {
        const EdgeRule rule = edge_rule(edge_mode, Line::row, plane.width, plane.step_x);
        correct_each(&inner.at(inner.width - 1, 0), inner.stride, inner.height, -1, rule);
    }
    if (plane.height % plane.step_y != 1) {
        const EdgeRule rule = edge_rule(edge_mode, Line::column, plane.height, plane.step_y);
        correct_each(inner.row(inner.height - 1), 1, inner.width, -inner.stride, rule);
    }
}

void fill_border(View<float> table, int32_t fill_mode) {
    if (fill_mode == ZERKLSC_FILL_LINEAR)
        extrapolate_border(table, linear);
    else if (fill_mode == ZERKLSC_FILL_QUADRATIC)
        extrapolate_border(table, quadratic);
}

} // namespace zerklsc

int32_t update_table_border(const float* inner, float* table, int32_t width, int32_t height, int32_t step_x,
                            int32_t step_y, int32_t grid_w, int32_t grid_h, int32_t edge_mode,
                            int32_t fill_mode) {
    using namespace zerklsc;
    const PlaneGrid plane{width, height, step_x, step_y};
    if (!border_possible(plane, grid_w, grid_h, edge_mode, fill_mode))
        return -1;
    const View<float> bordered = packed_view(table, grid_w + 2 * ZERKLSC_BORDER, grid_h + 2 * ZERKLSC_BORDER);
    const View<float> nodes = inner_nodes(bordered);
    const View<const float> measured = packed_view(inner, grid_w, grid_h);
    for (int32_t y = 0; y < grid_h; ++y)
        std::copy_n(measured.row(y), grid_w, nodes.row(y));
    correct_edges(nodes, plane, edge_mode);
    fill_border(bordered, fill_mode);
    return 0;
}
