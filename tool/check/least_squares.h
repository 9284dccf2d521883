// Small weighted least-squares problems by their normal equations.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace zerklsc::tool {

// Collects equations row . x = right for N unknowns.
template <size_t N>
class NormalEquations {
  public:
    using Vector = std::array<double, N>;

    void add(const Vector& row, double right, double weight) {
        for (size_t i = 0; i < N; ++i) {
            const double scaled = weight * row[i];
            for (size_t j = 0; j <= i; ++j)
                matrix_[i][j] += scaled * row[j];
            right_[i] += scaled * right;
        }
    }

    // Keeps unknown `i` near `value`, as strongly as one equation x_i = value of this weight.
    void hold(size_t i, double value, double weight) {
        matrix_[i][i] += weight;
        right_[i] += weight * value;
    }

    // Adds `factor` of the diagonal to it: the damping of Levenberg and Marquardt.
    void damp(double factor) {
        for (size_t i = 0; i < N; ++i)
            matrix_[i][i] *= 1 + factor;
    }

    // The solution by Cholesky's decomposition. An unknown about which the equations say nothing is 0.
    Vector solve() const {
        auto lower = matrix_;
        for (size_t i = 0; i < N; ++i)
            for (size_t j = 0; j <= i; ++j) {
                double rest = matrix_[i][j];
                for (size_t k = 0; k < j; ++k)
                    rest -= lower[i][k] * lower[j][k];
                if (i == j)
                    lower[i][i] = rest > 1e-13 * matrix_[i][i] ? std::sqrt(rest) : 0;
                else
                    lower[i][j] = lower[j][j] > 0 ? rest / lower[j][j] : 0;
            }
        return back_substitute(lower);
    }

  private:
    using Matrix = std::array<Vector, N>;

    Vector back_substitute(const Matrix& lower) const {
        Vector x{};
        for (size_t i = 0; i < N; ++i) {
            double rest = right_[i];
            for (size_t k = 0; k < i; ++k)
                rest -= lower[i][k] * x[k];
            x[i] = lower[i][i] > 0 ? rest / lower[i][i] : 0;
        }
        for (size_t i = N; i-- > 0;) {
            double rest = x[i];
            for (size_t k = i + 1; k < N; ++k)
                rest -= lower[k][i] * x[k];
            x[i] = lower[i][i] > 0 ? rest / lower[i][i] : 0;
        }
        return x;
    }

    Matrix matrix_{};
    Vector right_{};
};

} // namespace zerklsc::tool
