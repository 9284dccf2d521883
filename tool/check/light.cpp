// check_light: the slope of the light, the optical centre, and what is no lens's
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

const char* direction_of(std::array<double, 2> slope) {
    if (std::abs(slope[0]) > std::abs(slope[1]))
        return slope[0] > 0 ? "right" : "left";
    return slope[1] > 0 ? "bottom" : "top";
}

// The largest value of the smooth rest, at the points of a coarse grid.
double largest_rest(const PlaneAnalysis& plane) {
    double largest = 0;
    for (int j = 0; j < 12; ++j)
        for (int i = 0; i < 16; ++i)
            if (const double u = u_of(i, 16, plane.cells.aspect), v = v_of(j, 12, plane.cells.aspect);
                !in_corner(u, v))
                largest = std::max(largest, std::abs(plane.surface.rest_at(u, v)));
    return largest;
}

double edge_over_brightest(const PlaneAnalysis& plane) {
    double brightest = -1e9, edge = 0;
    int count = 0;
    for (int j = 0; j < 12; ++j)
        for (int i = 0; i < 16; ++i) {
            const double value =
                plane.surface.at(u_of(i, 16, plane.cells.aspect), v_of(j, 12, plane.cells.aspect));
            if (i > 4 && i < 11 && j > 3 && j < 8)
                brightest = std::max(brightest, value);
            if ((i == 0 || i == 15) && (j == 0 || j == 11)) {
                edge += value;
                ++count;
            }
        }
    return std::exp(edge / count - brightest);
}

struct Largest {
    double value = 0;
    size_t plane = 0;
    void take(double other, size_t other_plane) {
        if (other > value) {
            value = other;
            plane = other_plane;
        }
    }
};

} // namespace

double fall_of_light(std::array<double, 2> slope, double aspect) {
    const double half_w = 1 / std::sqrt(1 + aspect * aspect), half_h = aspect * half_w;
    const double reach = std::abs(slope[0]) * half_w + std::abs(slope[1]) * half_h;
    return 1 - std::max(1 - reach, 0.0) / (1 + reach);
}

void check_light(const Judgement& judgement) {
    std::array<double, 2> slope{};
    Largest centre, rest, edge, disagreement;
    const double aspect = judgement.analysis.planes[0].cells.aspect;
    for (const PlaneAnalysis& plane : judgement.analysis.planes)
        for (size_t axis = 0; axis < 2; ++axis)
            slope[axis] += plane.surface.light[axis] / 4;
    for (size_t p = 0; p < 4; ++p) {
        const PlaneAnalysis& plane = judgement.analysis.planes[p];
        const auto& c = plane.surface.centre;
        centre.take(std::hypot(c[0], c[1]) / 2 * std::sqrt(1 + aspect * aspect), p);
        rest.take(largest_rest(plane), p);
        edge.take(edge_over_brightest(plane), p);
        disagreement.take(std::hypot(plane.surface.light[0] - slope[0], plane.surface.light[1] - slope[1]),
                          p);
    }
    const FlatCapture& capture = judgement.capture;
    judgement.add(
        "fall-off", capture.colour(edge.plane), 100 * edge.value,
        "the frame does not fall off towards its edge as behind a lens: it may be corrected already, or "
        "the light is brighter at the edge");
    judgement.add(
        "uneven-light", "", 100 * fall_of_light(slope, aspect),
        fmt::format("the light is brighter at the {}: even it out, and prove it with a --turned capture",
                    direction_of(slope)));
    judgement.add(
        "optical-centre", capture.colour(centre.plane), 100 * centre.value,
        "the shading is centred far from the middle of the frame: look at the lens's seat and at the light");
    judgement.add("asymmetry", capture.colour(rest.plane), 100 * rest.value,
                  "the shading is not that of a lens: look for a shadow or uneven light");
    judgement.add(
        "plane-disagreement", capture.colour(disagreement.plane), 100 * disagreement.value,
        "the planes do not see the same light: look for coloured light from the side, or for another "
        "pattern");
}

} // namespace zerklsc::tool
