// surface_of
#include "convert/gain_surface.h"

#include <algorithm>
#include <utility>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct Tap {
    size_t node;
    double weight;
};
using Taps = std::vector<Tap>;

// A border node is the next value of the parabola, line or constant through the nodes beside it.
void add_node(Taps& taps, int node, int count, double weight) {
    const bool before = node < 0;
    const auto inward = [&](int i) { return static_cast<size_t>(before ? i : count - 1 - i); };
    if (!before && node < count)
        taps.push_back({static_cast<size_t>(node), weight});
    else if (count == 1)
        taps.push_back({0, weight});
    else if (count == 2)
        taps.insert(taps.end(), {{inward(0), 2 * weight}, {inward(1), -weight}});
    else
        taps.insert(taps.end(), {{inward(0), 3 * weight}, {inward(1), -3 * weight}, {inward(2), weight}});
}

// `position` in nodes, from the first to the last.
void add_inside(Taps& taps, double position, int count, double weight) {
    const int cell = std::clamp(static_cast<int>(position), 0, std::max(count - 2, 0));
    for (int node = cell - 1; node <= cell + 2; ++node)
        if (const auto tap = get_cubic_coef(static_cast<float>(position - node)); tap != 0)
            add_node(taps, std::min(node, count), count, weight * static_cast<double>(tap));
}

Taps taps_at(double fraction, const GridAxis& axis) {
    Taps taps;
    const double last = axis.count - 1, position = (fraction - axis.first) / axis.spacing;
    const double edge = std::clamp(position, 0.0, last);
    if (edge == position || axis.count == 1) {
        add_inside(taps, edge, axis.count, 1);
        return taps;
    }
    const double beyond = std::clamp(position - edge, -last / 2, last / 2);
    add_inside(taps, edge, axis.count, 3);
    add_inside(taps, edge - beyond, axis.count, -3);
    add_inside(taps, edge - 2 * beyond, axis.count, 1);
    return taps;
}

} // namespace

GainSurface surface_of(GainGrid grid) {
    return [grid = std::move(grid)](double x, double y) {
        const Taps columns = taps_at(x, grid.x);
        double gain = 0;
        for (const Tap& row : taps_at(y, grid.y))
            for (const Tap& column : columns)
                gain += row.weight * column.weight
                        * grid.gains[row.node * static_cast<size_t>(grid.x.count) + column.node];
        return gain;
    };
}

} // namespace zerklsc::tool
