// LensSurface, fit_lens_surface
#include "check/lens_surface.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

#include "check/least_squares.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

constexpr size_t powers = std::tuple_size_v<decltype(LensSurface::radial)>;
constexpr size_t first_centre = powers, first_light = powers + 2, unknowns = powers + 4;
constexpr double expected_centre = 0.08;
constexpr double expected_light = 0.1;
// The squared distance of a corner from a displaced optical centre.
constexpr double largest_r2 = 1.3;
// The points of a frame of usual size, of which all terms can be told.
constexpr double many_points = 1200;
// What no lens follows more closely: below this, residuals are not told apart.
constexpr double model_error = 0.002;

struct Point {
    double u, v, value;
};

std::vector<Point> points_of(const LogCells& cells) {
    std::vector<Point> points;
    size_t at = 0;
    for (int j = 0; j < cells.rows; ++j)
        for (int i = 0; i < cells.columns; ++i, ++at)
            if (cells.values[at] != no_light)
                points.push_back({cells.u_at(i), cells.v_at(j), static_cast<double>(cells.values[at])});
    return points;
}

double light_at(const LensSurface& s, double u, double v) {
    return std::max(1 + s.light[0] * u + s.light[1] * v, 0.05);
}

// Chebyshev's polynomials of the squared distance from the optical centre: unlike its powers they hardly
// resemble each other, so that few steps lead to the best of them. None exceeds 1 where the frame is.
std::array<double, powers> polynomials(double r2) {
    const double t = 2 * r2 / largest_r2 - 1;
    std::array<double, powers> values{1, t};
    for (size_t k = 2; k < powers; ++k)
        values[k] = 2 * t * values[k - 1] - values[k - 2];
    return values;
}

// The derivative of the radial part by the squared distance, with T' of degree k being k times the
// polynomial U of the second kind of degree k - 1.
double radial_slope(const LensSurface& s, double r2) {
    const double t = 2 * r2 / largest_r2 - 1;
    double before = 0, second_kind = 1, slope = 0;
    for (size_t k = 1; k < powers; ++k) {
        slope += s.radial[k] * static_cast<double>(k) * second_kind;
        before = std::exchange(second_kind, 2 * t * second_kind - before);
    }
    return slope * 2 / largest_r2;
}

std::array<double, unknowns> derivatives(const LensSurface& s, double u, double v) {
    const double du = u - s.centre[0], dv = v - s.centre[1];
    const double r2 = du * du + dv * dv;
    std::array<double, unknowns> d{};
    std::ranges::copy(polynomials(r2), d.begin());
    const double slope = radial_slope(s, r2), light = light_at(s, u, v);
    d[first_centre] = -2 * du * slope;
    d[first_centre + 1] = -2 * dv * slope;
    d[first_light] = u / light;
    d[first_light + 1] = v / light;
    return d;
}

std::array<double, 15> monomials(double u, double v) {
    const double u2 = u * u, v2 = v * v;
    return {1,      u,      v,       u2,         u * v,   v2,         u2 * u, u2 * v,
            u * v2, v2 * v, u2 * u2, u2 * u * v, u2 * v2, u * v2 * v, v2 * v2};
}

// Huber's weights first, which lead to the one minimum of a convex problem, then the biweight, which forgets
// what is far away.
double weight_of(double residual, double scale, int round) {
    if (round < 6)
        return std::min(1.0, scale / std::max(std::abs(residual), 1e-12));
    return biweight(residual / (biweight_reach * scale));
}

constexpr int rounds = 16;

double scale_of(const std::vector<Point>& points, const LensSurface& surface, std::vector<float>& residuals) {
    residuals.clear();
    for (const Point& p : points)
        residuals.push_back(static_cast<float>(p.value - surface.at(p.u, p.v)));
    return std::max(deviation_from(residuals, 0), model_error);
}

void step(const std::vector<Point>& points, double scale, int round, LensSurface& surface) {
    NormalEquations<unknowns> equations;
    for (const Point& p : points) {
        const double residual = p.value - surface.lens_at(p.u, p.v);
        equations.add(derivatives(surface, p.u, p.v), residual, weight_of(residual, scale, round));
    }
    // As strongly against few points as against many.
    const double hold = scale * scale * 40 * std::min(1.0, static_cast<double>(points.size()) / many_points);
    for (size_t axis = 0; axis < 2; ++axis) {
        equations.hold(first_centre + axis, -surface.centre[axis],
                       hold / (expected_centre * expected_centre));
        equations.hold(first_light + axis, -surface.light[axis], hold / (expected_light * expected_light));
    }
    equations.damp(round < 3 ? 0.05 : 1e-6);
    const auto change = equations.solve();
    for (size_t i = 0; i < powers; ++i)
        surface.radial[i] += change[i];
    for (size_t axis = 0; axis < 2; ++axis) {
        surface.centre[axis] =
            std::clamp(surface.centre[axis] + std::clamp(change[first_centre + axis], -0.1, 0.1), -0.6, 0.6);
        surface.light[axis] =
            std::clamp(surface.light[axis] + std::clamp(change[first_light + axis], -0.2, 0.2), -0.7, 0.7);
    }
}

void fit_rest(const std::vector<Point>& points, LensSurface& surface) {
    std::vector<float> residuals;
    for (int round = 3; round < 10; ++round) {
        const double scale = scale_of(points, surface, residuals);
        NormalEquations<15> equations;
        for (const Point& p : points) {
            const double weight = weight_of(p.value - surface.at(p.u, p.v), scale, round);
            equations.add(monomials(p.u, p.v), p.value - surface.lens_at(p.u, p.v), weight);
        }
        surface.rest = equations.solve();
    }
}

} // namespace

double LensSurface::lens_at(double u, double v) const {
    const double du = u - centre[0], dv = v - centre[1];
    const auto terms = polynomials(du * du + dv * dv);
    const double lens = std::inner_product(terms.begin(), terms.end(), radial.begin(), 0.0);
    return lens + std::log(light_at(*this, u, v));
}

double LensSurface::at(double u, double v) const {
    const double smooth = lens_at(u, v) + rest_at(u, v);
    if (!in_corner(u, v))
        return smooth;
    const double inward = corners_begin / std::sqrt(u * u + v * v);
    return std::min(smooth, lens_at(inward * u, inward * v) + rest_at(inward * u, inward * v));
}

double LensSurface::rest_at(double u, double v) const {
    const auto terms = monomials(u, v);
    double sum = 0;
    for (size_t i = 0; i < terms.size(); ++i)
        sum += rest[i] * terms[i];
    return sum;
}

double u_of(double i, double columns, double aspect) {
    return ((2 * i + 1) / columns - 1) / std::sqrt(1 + aspect * aspect);
}

double v_of(double j, double rows, double aspect) {
    return ((2 * j + 1) / rows - 1) * aspect / std::sqrt(1 + aspect * aspect);
}

LensSurface fit_lens_surface(const LogCells& cells) {
    LensSurface surface;
    const std::vector<Point> points = points_of(cells);
    if (points.size() < 2 * unknowns)
        return surface;
    std::vector<float> values(points.size());
    std::ranges::transform(points, values.begin(),
                           [](const Point& p) { return static_cast<float>(p.value); });
    surface.radial[0] = median_of(values);
    for (int round = 0; round < rounds; ++round)
        step(points, scale_of(points, surface, values), round, surface);
    if (points.size() >= 60)
        fit_rest(points, surface);
    return surface;
}

} // namespace zerklsc::tool
