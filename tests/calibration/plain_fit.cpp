#include "calibration/plain_fit.h"

#include <algorithm>
#include <cmath>

namespace zerklsc::testing {
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

float kernel(float x) {
    const float a = std::fabs(x), a2 = a * a, a3 = a2 * a;
    if (a <= 1.0f)
        return (1.5f * a3 - 2.5f * a2) + 1.0f;
    return a <= 2.0f ? (2.5f * a2 - 4.0f * a) + (-0.5f * a3 + 2.0f) : 0.0f;
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

Matrix<float> border_tying(size_t nx, size_t ny) {
    const size_t mx = nx - 2, my = ny - 2;
    const Matrix<float> row = extension(nx), column = extension(ny);
    Matrix<float> rows{nx * my, mx * my}, columns{nx * ny, nx * my};
    for (size_t j = 0; j < my; ++j)
        for (size_t i = 0; i < nx; ++i)
            for (size_t l = 0; l < mx; ++l)
                rows.at(j * nx + i, j * mx + l) = row.at(i, l);
    for (size_t i = 0; i < nx; ++i)
        for (size_t j = 0; j < ny; ++j)
            for (size_t l = 0; l < my; ++l)
                columns.at(j * nx + i, l * nx + i) = column.at(j, l);
    return multiply<float, float>(columns, rows);
}

Matrix<double> basis(const std::vector<pix_point>& points, int nx, int ny, int step) {
    Matrix<double> b{points.size(), static_cast<size_t>(nx) * static_cast<size_t>(ny)};
    const float per_step = 1.0f / static_cast<float>(step);
    for (size_t p = 0; p < points.size(); ++p)
        for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i)
                b.at(p, static_cast<size_t>(j * nx + i)) =
                    static_cast<double>(kernel(points[p].x * per_step + 1.0f - static_cast<float>(i)))
                    * static_cast<double>(kernel(points[p].y * per_step + 1.0f - static_cast<float>(j)));
    return b;
}

std::vector<pix_point> centre_patch(int pw, int ph) {
    const int s = std::max(1, std::min(pw, ph) >> 7);
    const int cx = static_cast<int>(static_cast<float>(pw) * 0.1f / static_cast<float>(s));
    const int cy = static_cast<int>(static_cast<float>(ph) * 0.1f / static_cast<float>(s));
    std::vector<pix_point> points;
    for (int side = 0; side < 4; ++side)
        for (int r = 0; r < cy; ++r)
            for (int c = 0; c < cx; ++c)
                points.push_back({static_cast<int16_t>(side & 1 ? pw / 2 + 1 + s * c : pw / 2 - 1 - s * c),
                                  static_cast<int16_t>(side & 2 ? ph / 2 + 1 + s * r : ph / 2 - 1 - s * r),
                                  0});
    return points;
}

std::vector<uint16_t> plane_of(const std::vector<uint16_t>& image, int width, int height, int k) {
    std::vector<uint16_t> plane;
    for (int y = k / 2; y < height / 2 * 2; y += 2)
        for (int x = k % 2; x < width / 2 * 2; x += 2)
            plane.push_back(
                image[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]);
    return plane;
}

Matrix<float> targets(const std::vector<uint16_t>& plane, int pw, int ph, std::vector<pix_point> points,
                      const lsc2d_calib_param& param) {
    const imfilter_t filter = {param.filter_type, param.filter_radius, param.boundary_mode, nullptr};
    std::vector<pix_point> centre = centre_patch(pw, ph);
    img_sample(plane.data(), centre.data(), static_cast<int>(centre.size()), pw, ph, &filter);
    img_sample(plane.data(), points.data(), static_cast<int>(points.size()), pw, ph, &filter);
    uint16_t peak = 0;
    for (const pix_point& p : centre)
        peak = std::max(peak, p.value);
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

template <class T>
int plain_matrix_inv(T* a, int n) {
    std::vector<T> b(static_cast<size_t>(n) * static_cast<size_t>(n));
    std::vector<int> rows, columns;
    const auto re = [&](int i, int j) -> T& { return a[i * n + j]; };
    const auto im = [&](int i, int j) -> T& { return b[static_cast<size_t>(i * n + j)]; };
    const auto swap = [&](int i, int j, int p, int q) {
        std::swap(re(i, j), re(p, q));
        std::swap(im(i, j), im(p, q));
    };
    for (int k = 0; k < n; ++k) {
        T d = 0;
        int r = k, c = k;
        for (int i = k; i < n; ++i)
            for (int j = k; j < n; ++j)
                if (const T m = re(i, j) * re(i, j) + im(i, j) * im(i, j); m > d)
                    d = m, r = i, c = j;
        if (d == 0)
            return -1;
        rows.push_back(r), columns.push_back(c);
        for (int j = 0; j < n && r != k; ++j)
            swap(k, j, r, j);
        for (int i = 0; i < n && c != k; ++i)
            swap(i, k, i, c);
        re(k, k) = re(k, k) / d;
        im(k, k) = -im(k, k) / d;
        for (int j = 0; j < n; ++j) {
            if (j == k)
                continue;
            const T p = re(k, j) * re(k, k), q = im(k, j) * im(k, k);
            const T s = (re(k, j) + im(k, j)) * (re(k, k) + im(k, k));
            re(k, j) = p - q;
            im(k, j) = s - p - q;
        }
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n && i != k; ++j) {
                if (j == k)
                    continue;
                const T p = re(k, j) * re(i, k), q = im(k, j) * im(i, k);
                const T s = (re(k, j) + im(k, j)) * (re(i, k) + im(i, k));
                re(i, j) -= p - q;
                im(i, j) -= s - p - q;
            }
        for (int i = 0; i < n; ++i) {
            if (i == k)
                continue;
            const T p = re(i, k) * re(k, k), q = im(i, k) * im(k, k);
            const T s = (re(i, k) + im(i, k)) * (re(k, k) + im(k, k));
            re(i, k) = -(p - q);
            im(i, k) = -(s - p - q);
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        const int r = rows[static_cast<size_t>(k)], c = columns[static_cast<size_t>(k)];
        for (int j = 0; j < n && c != k; ++j)
            swap(k, j, c, j);
        for (int i = 0; i < n && r != k; ++i)
            swap(i, k, i, r);
    }
    return 0;
}

template int plain_matrix_inv(float* a, int n);
template int plain_matrix_inv(double* a, int n);

std::vector<std::vector<uint16_t>> plain_fit(const std::vector<uint16_t>& image, int width, int height,
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
    std::vector<std::vector<uint16_t>> tables;
    if (plain_matrix_inv(inverse.v.data(), static_cast<int>(inverse.rows)) != 0)
        return tables;
    for (int k = 0; k < 4; ++k) {
        const Matrix<float> t = targets(plane_of(image, width, height, k), pw, ph, points, param);
        const Matrix<float> inner = multiply<double, float>(inverse, multiply<double, double>(design_t, t));
        const Matrix<float> nodes = multiply<float, float>(tying, inner);
        std::vector<uint16_t>& table = tables.emplace_back();
        std::transform(nodes.v.begin(), nodes.v.end(), std::back_inserter(table), stored);
    }
    return tables;
}

} // namespace zerklsc::testing
