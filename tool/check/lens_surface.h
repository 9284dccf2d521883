// The smoothest brightness that a lens and a slightly tilted light can make.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace zerklsc::tool {

// The logarithm of the brightness in cells of a plane, row by row. A cell without light holds `no_light`.
struct LogCells {
    int columns = 0;
    int rows = 0;
    double aspect = 1;        // height of the plane over its width
    std::vector<double> u, v; // where the middles of the columns and of the rows are
    std::vector<float> values;

    double u_at(int column) const { return u[static_cast<size_t>(column)]; }
    double v_at(int row) const { return v[static_cast<size_t>(row)]; }
};

constexpr float no_light = -1e9F;

// Coordinates u and v are from the middle of the plane, in half diagonals.

// The outermost corners, which a housing often vignettes: no smooth surface holds for them.
constexpr double corners_begin = 0.85;
constexpr bool in_corner(double u, double v) {
    return u * u + v * v > corners_begin * corners_begin;
}

// Where a lens's barrel may darken the frame, in all corners alike.
constexpr bool beyond_barrel(double u, double v) {
    constexpr double from = 0.6;
    return u * u + v * v > from * from;
}

// The model is h(r^2) + log(1 + gx u + gy v): h is a polynomial in the even powers of the distance from the
// optical centre up to r^14, which holds the cos^4 law and the wavy shading of small lenses, and the second
// term is light that rises evenly over the frame. A small smooth rest, a polynomial of degree 4 in u and v,
// is what real modules have beside it.
struct LensSurface {
    std::array<double, 8> radial{}; // of Chebyshev's polynomials in r^2, up to r^14
    std::array<double, 2> centre{};
    std::array<double, 2> light{};
    std::array<double, 15> rest{};

    double lens_at(double u, double v) const;
    double rest_at(double u, double v) const;
    // In the corners, where few points hold the polynomials, it is no higher than where they begin.
    double at(double u, double v) const;
};

// Where the middle of column `i` of the plane's `columns` lies, of which the last may be a part; the same for
// rows.
double u_of(double i, double columns, double aspect);
double v_of(double j, double rows, double aspect);

// Robust least squares by iteratively reweighted Gauss-Newton steps (P. W. Holland, R. E. Welsch, "Robust
// regression using iteratively reweighted least-squares", 1977). Where the fall-off is so plain that a
// shifted centre and tilted light look the same, both are made small: the centre is expected within a few
// percent of the frame and the light within 10 %.
LensSurface fit_lens_surface(const LogCells& cells);

} // namespace zerklsc::tool
