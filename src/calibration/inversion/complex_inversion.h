// The matrix inversion in the form that defines it: Gauss-Jordan elimination with full pivoting, carried out
// in complex arithmetic whose imaginary part starts at zero.
//
// It is seldom run. For most matrices real arithmetic gives the same bits (elimination.h); this form
// decides the others, where the sign of a zero or a value that is not finite comes out of the complex
// products.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "calibration/inversion/pivot.h"

namespace zerklsc {

template <class T>
struct Complex {
    T re;
    T im;
};

// The product with three multiplications instead of four.
template <class T>
Complex<T> operator*(Complex<T> a, Complex<T> b) {
    const T p = a.re * b.re;
    const T q = a.im * b.im;
    const T s = (a.re + a.im) * (b.re + b.im);
    return {p - q, s - p - q};
}

// An n x n matrix whose real and imaginary parts stand in two arrays.
template <class T>
struct ComplexMatrix {
    T* re;
    T* im;
    int32_t n;

    size_t index(int32_t i, int32_t j) const {
        return static_cast<size_t>(i) * static_cast<size_t>(n) + static_cast<size_t>(j);
    }
    Complex<T> get(int32_t i, int32_t j) const { return {re[index(i, j)], im[index(i, j)]}; }

    void set(int32_t i, int32_t j, Complex<T> v) const {
        re[index(i, j)] = v.re;
        im[index(i, j)] = v.im;
    }

    void swap_rows(int32_t i, int32_t k) const {
        for (int32_t j = 0; j < n && i != k; ++j)
            swap(index(i, j), index(k, j));
    }

    void swap_columns(int32_t j, int32_t k) const {
        for (int32_t i = 0; i < n && j != k; ++i)
            swap(index(i, j), index(i, k));
    }

  private:
    void swap(size_t a, size_t b) const {
        std::swap(re[a], re[b]);
        std::swap(im[a], im[b]);
    }
};

// The first element in row-major order, from (k, k) on, with the largest squared magnitude.
template <class T>
Pivot<T> find_pivot(const ComplexMatrix<T>& a, int32_t k) {
    Pivot<T> best{T{0}, {k, k}};
    for (int32_t i = k; i < a.n; ++i) {
        for (int32_t j = k; j < a.n; ++j) {
            const Complex<T> v = a.get(i, j);
            const T d = v.re * v.re + v.im * v.im;
            if (d > best.square)
                best = {d, {i, j}};
        }
    }
    return best;
}

// One step of the elimination, with the pivot at (k, k) and its squared magnitude d.
template <class T>
void eliminate(const ComplexMatrix<T>& a, int32_t k, T d) {
    const Complex<T> found = a.get(k, k);
    const Complex<T> pivot = {found.re / d, -found.im / d};
    a.set(k, k, pivot);
    for (int32_t j = 0; j < a.n; ++j)
        if (j != k)
            a.set(k, j, a.get(k, j) * pivot);
    for (int32_t i = 0; i < a.n; ++i) {
        if (i == k)
            continue;
        const Complex<T> factor = a.get(i, k);
        for (int32_t j = 0; j < a.n; ++j) {
            if (j == k)
                continue;
            const Complex<T> product = a.get(k, j) * factor;
            const Complex<T> v = a.get(i, j);
            a.set(i, j, {v.re - product.re, v.im - product.im});
        }
        const Complex<T> v = factor * pivot;
        a.set(i, k, {-v.re, -v.im});
    }
}

// Inverts a.re in place; a.im, of any content, and `order` with room for n pivots are working memory. False
// for a singular matrix.
template <class T>
bool invert(const ComplexMatrix<T>& a, Position* order) {
    std::fill(a.im, a.im + a.index(a.n, 0), T{0});
    for (int32_t k = 0; k < a.n; ++k) {
        const Pivot<T> pivot = find_pivot(a, k);
        if (pivot.square == T{0})
            return false;
        order[k] = pivot.position;
        a.swap_rows(k, pivot.position.row);
        a.swap_columns(k, pivot.position.column);
        eliminate(a, k, pivot.square);
    }
    for (int32_t k = a.n - 1; k >= 0; --k) {
        a.swap_rows(k, order[k].column);
        a.swap_columns(k, order[k].row);
    }
    return true;
}

} // namespace zerklsc
