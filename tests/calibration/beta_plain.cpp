// The plain form of calibration by the surface fit.
#include "calibration/beta_plain.h"

#include <algorithm>
#include <cmath>

#include "calibration/inversion/matrix_inv_plain.h"
#include "calibration/orvel_plain.h"
#include "sampling/plain.h"

namespace zerklsc::plain {
namespace {

template <class T>
struct Matrix {
    size_t rows, columns;
    std::vector<T> v = std::vector<T>(rows * columns);
    T& at(size_t i, size_t j) { return v[i * columns + j]; }
    T at(size_t i, size_t j) const { return v[i * columns + j]; }
};

// The sums run in Sum, over ascending indices; the factors are widened to Product first.
template <class Product, class Sum, class A, class B>
Matrix<Sum> multiply(const Matrix<A>& a, const Matrix<B>& b) {
    Matrix<Sum> c{a.rows, b.columns};
    for (size_t i = 0; i < a.rows; ++i)
        for (size_t j = 0; j < b.columns; ++j)
            for (size_t l = 0; l < a.columns; ++l)
                c.at(i, j) =
                    static_cast<Sum>(static_cast<Product>(c.at(i, j))
                                     + static_cast<Product>(a.at(i, l)) * static_cast<Product>(b.at(l, j)));
    return c;
}

template <class T>
Matrix<T> transpose(const Matrix<T>& a) {
    Matrix<T> t{a.columns, a.rows};
    for (size_t i = 0; i < a.rows; ++i)
        for (size_t j = 0; j < a.columns; ++j)
            t.at(j, i) = a.at(i, j);
    return t;
}

std::vector<int> lines(int extent, int step, int start) {
    std::vector<int> at;
    for (int x = start; x < step; x += step / 8)
        at.push_back(x);
    for (int x = step; x < extent / 2; x += step / 2)
        at.push_back(x);
    const size_t half = at.size();
    at.push_back(extent / 2);
    for (size_t i = half; i-- > 0;)
        at.push_back((extent - 1) - at[i]);
    return at;
}

// Gives every node of a row of inner nodes with one more at each end.
Matrix<float> extension(size_t nodes) {
    Matrix<float> e{nodes, nodes - 2};
    for (size_t i = 1; i + 1 < nodes; ++i)
        e.at(i, i - 1) = 1.0f;
    e.at(0, 0) = e.at(nodes - 1, nodes - 3) = 2.0f;
    e.at(0, 1) = e.at(nodes - 1, nodes - 4) = -1.0f;
    return e;
}

// The product of the matrices that extend the columns and the rows.
Matrix<float> border_tying(size_t nx, size_t ny) {
    const Matrix<float> row = extension(nx), column = extension(ny);
    Matrix<float> e{nx * ny, (nx - 2) * (ny - 2)};
    for (size_t n = 0; n < e.rows; ++n)
        for (size_t m = 0; m < e.columns; ++m)
            e.at(n, m) = column.at(n / nx, m / (nx - 2)) * row.at(n % nx, m % (nx - 2));
    return e;
}

Matrix<double> basis(const std::vector<pix_point>& points, int nx, int ny, int step) {
    Matrix<double> b{points.size(), static_cast<size_t>(nx) * static_cast<size_t>(ny)};
    const float per_step = 1.0f / static_cast<float>(step);
    for (size_t p = 0; p < points.size(); ++p)
        for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i)
                b.at(p, static_cast<size_t>(j * nx + i)) =
                    static_cast<double>(get_cubic_coef(points[p].x * per_step + 1.0f - static_cast<float>(i)))
                    * static_cast<double>(
                        get_cubic_coef(points[p].y * per_step + 1.0f - static_cast<float>(j)));
    return b;
}

Matrix<float> targets(const uint16_t* plane, int pw, int ph, std::vector<pix_point> points,
                      const lsc2d_calib_param& param) {
    const imfilter_t filter = {param.filter_type, param.filter_radius, param.boundary_mode, nullptr};
    const float peak = brightest_level(plane, pw, ph, filter);
    img_sample(plane, points.data(), static_cast<int>(points.size()), pw, ph, &filter);
    Matrix<float> t{points.size(), 1};
    for (size_t p = 0; p < points.size(); ++p)
        t.at(p, 0) = peak / std::max(static_cast<float>(points[p].value), 1e-7f);
    return t;
}

// 64-bit overflow gives 0, as does what is not a number.
uint16_t stored(float n) {
    const double v = std::floor(static_cast<double>(n * 1024.0f + 0.5f));
    return std::fabs(v) < 9.2e18 ? static_cast<uint16_t>(static_cast<int64_t>(v)) : uint16_t{0};
}

} // namespace

std::vector<std::vector<uint16_t>> calibrate_beta(const std::vector<uint16_t>& image, int width, int height,
                                                  int nx, int ny, const lsc2d_calib_param& param) {
    const int pw = width / 2, ph = height / 2;
    std::vector<pix_point> points;
    for (const int y : lines(ph, param.grid, param.filter_radius))
        for (const int x : lines(pw, param.grid, param.filter_radius))
            points.push_back({static_cast<int16_t>(x), static_cast<int16_t>(y), 0});
    const Matrix<float> tying = border_tying(static_cast<size_t>(nx), static_cast<size_t>(ny));
    const Matrix<double> design = multiply<double, double>(basis(points, nx, ny, param.grid), tying);
    const Matrix<double> design_t = transpose(design);
    Matrix<double> inverse = multiply<double, double>(design_t, design);
    const std::vector<uint16_t> planes = planes_of(image.data(), width, height);
    std::vector<std::vector<uint16_t>> tables;
    if (matrix_inv(inverse.v.data(), static_cast<int>(inverse.rows)) != 0)
        return tables;
    for (size_t k = 0; k < 4; ++k) {
        const Matrix<float> t = targets(&planes[k * planes.size() / 4], pw, ph, points, param);
        const Matrix<float> inner = multiply<double, float>(inverse, multiply<double, double>(design_t, t));
        const Matrix<float> nodes = multiply<float, float>(tying, inner);
        std::vector<uint16_t>& table = tables.emplace_back();
        std::transform(nodes.v.begin(), nodes.v.end(), std::back_inserter(table), stored);
    }
    return tables;
}

} // namespace zerklsc::plain
