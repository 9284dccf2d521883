// The plain form of the matrix inversion.
#include "calibration/inversion/matrix_inv_plain.h"

#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace zerklsc::plain {

template <class T>
int matrix_inv(T* a, int n) {
    std::vector<T> b(static_cast<size_t>(n) * static_cast<size_t>(n));
    std::vector<int> rows, columns;
    const auto re = [&](int i, int j) -> T& { return a[i * n + j]; };
    const auto im = [&](int i, int j) -> T& { return b[static_cast<size_t>(i * n + j)]; };
    const auto product = [&](int i, int j, int g, int h) {
        const T p = re(i, j) * re(g, h), q = im(i, j) * im(g, h);
        const T s = (re(i, j) + im(i, j)) * (re(g, h) + im(g, h));
        return std::pair<T, T>(p - q, s - p - q);
    };
    const auto exchange = [&](int r, int c, int k) {
        for (int j = 0; j < n && r != k; ++j)
            std::swap(re(k, j), re(r, j)), std::swap(im(k, j), im(r, j));
        for (int i = 0; i < n && c != k; ++i)
            std::swap(re(i, k), re(i, c)), std::swap(im(i, k), im(i, c));
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
        exchange(r, c, k);
        re(k, k) = re(k, k) / d;
        im(k, k) = -im(k, k) / d;
        for (int j = 0; j < n; ++j)
            if (j != k)
                std::tie(re(k, j), im(k, j)) = product(k, j, k, k);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                if (i != k && j != k) {
                    const auto [x, y] = product(k, j, i, k);
                    re(i, j) -= x;
                    im(i, j) -= y;
                }
        for (int i = 0; i < n; ++i)
            if (i != k) {
                const auto [x, y] = product(i, k, k, k);
                re(i, k) = -x;
                im(i, k) = -y;
            }
    }
    for (int k = n - 1; k >= 0; --k)
        exchange(columns[static_cast<size_t>(k)], rows[static_cast<size_t>(k)], k);
    return 0;
}

template int matrix_inv(float* a, int n);
template int matrix_inv(double* a, int n);

} // namespace zerklsc::plain
