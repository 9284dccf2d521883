#include "zerklsc.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "calibration/inversion/matrix_inv_plain.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

template <class T>
class MatrixInv : public ::testing::Test {};
using Elements = ::testing::Types<float, double>;
TYPED_TEST_SUITE(MatrixInv, Elements);

// Equal to the bit; what is not a number equals any other such.
template <class T>
bool same(T a, T b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

// What differs from the plain form at some instruction set: an element of the inverse, or -2 for the status;
// -1 for nothing.
template <class T>
int mismatch(const std::vector<T>& a, int n) {
    std::vector<T> expected = a;
    const int status = zerklsc::plain::matrix_inv(expected.data(), n);
    int found = -1;
    on_each_instruction_set([&](const std::string& level) {
        Guarded<T> actual(a, level[0] == 'a' ? Against::front : Against::back);
        const int actual_status = matrix_inv(actual.data(), n);
        const auto [at, other] = std::mismatch(actual.begin(), actual.end(), expected.begin(), same<T>);
        if (actual_status != status)
            found = -2;
        else if (status == 0 && at != actual.end())
            found = static_cast<int>(at - actual.begin());
    });
    return found;
}

template <class T>
std::vector<T> random_matrix(Random& random, int n) {
    std::vector<T> a(static_cast<size_t>(n * n));
    for (T& v : a)
        v = static_cast<T>(2.0 * random.unit() - 1.0);
    return a;
}

TYPED_TEST(MatrixInv, TimesTheMatrixIsOne) {
    Random random(5);
    for (size_t n = 1; n <= 12; ++n) {
        std::vector<TypeParam> a = random_matrix<TypeParam>(random, static_cast<int>(n));
        for (size_t i = 0; i < n; ++i) // large enough for a good condition, and not where the search begins
            a[i * n + (i + 1) % n] += static_cast<TypeParam>(2 * n);
        std::vector<TypeParam> inverse = a;
        ASSERT_EQ(matrix_inv(inverse.data(), static_cast<int>(n)), 0);
        for (size_t k = 0; k < n * n; ++k) {
            double sum = 0;
            for (size_t l = 0; l < n; ++l)
                sum += static_cast<double>(a[k / n * n + l]) * static_cast<double>(inverse[l * n + k % n]);
            EXPECT_NEAR(sum, k / n == k % n,
                        64 * static_cast<double>(std::numeric_limits<TypeParam>::epsilon()));
        }
    }
}

TYPED_TEST(MatrixInv, EqualsThePlainFormToTheBit) {
    Random random(1);
    for (const int n : {1, 2, 3, 7, 8, 9, 23, 24, 25, 31, 32, 33, 40, 63, 64, 65, 97, 130, 203})
        EXPECT_EQ(mismatch(random_matrix<TypeParam>(random, n), n), -1) << n;
}

// Few distinct values make equal candidates for the pivot and exact zeros, whose signs the imaginary part
// decides.
TYPED_TEST(MatrixInv, TiesAndZerosComeOutAsInThePlainForm) {
    Random random(2);
    for (int run = 0; run < 150; ++run) {
        const int n = static_cast<int>(random.between(1, run % 10 == 0 ? 80 : 24));
        std::vector<TypeParam> a(static_cast<size_t>(n * n));
        for (TypeParam& v : a)
            v = static_cast<TypeParam>(random.between(-2, 2)) * (run % 2 ? TypeParam{-0.5} : TypeParam{1});
        EXPECT_EQ(mismatch(a, n), -1) << run;
    }
}

// Squares and products that overflow or vanish, and input that is not finite, wherever it stands.
TYPED_TEST(MatrixInv, ExtremeValuesEndAsInThePlainForm) {
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    const T wild[] = {Limits::infinity(), -Limits::infinity(),  Limits::quiet_NaN(),      Limits::max(),
                      Limits::min(),      Limits::denorm_min(), std::sqrt(Limits::max()), -T{0}};
    Random random(3);
    for (int run = 0; run < 300; ++run) {
        const int n = static_cast<int>(random.between(2, run % 10 == 0 ? 80 : 20));
        std::vector<T> a = random_matrix<T>(random, n);
        for (int64_t count = random.between(1, 1 + run % 40); count > 0; --count)
            a[static_cast<size_t>(random.between(0, n * n - 1))] =
                wild[random.between(0, std::size(wild) - 1)];
        EXPECT_EQ(mismatch(a, n), -1) << run;
    }
}

TYPED_TEST(MatrixInv, SingularMatricesAreRefusedEmptyOnesAreNot) {
    using T = TypeParam;
    std::vector<T> a = {1, 2, 2, 4};
    EXPECT_EQ(matrix_inv(a.data(), 2), -1);
    std::vector<T> zeros(100);
    EXPECT_EQ(matrix_inv(zeros.data(), 10), -1);
    // The square of its only element vanishes.
    T tiny = std::numeric_limits<T>::min();
    EXPECT_EQ(matrix_inv(&tiny, 1), -1);
    EXPECT_EQ(matrix_inv<T>(nullptr, 0), 0);
    EXPECT_EQ(matrix_inv<T>(nullptr, -3), 0);
}

} // namespace
