// matrix_inv of any matrix, at any instruction set, against its plain form.
#include <cmath>

#include "calibration/inversion/matrix_inv_plain.h"
#include "support/hold_to.h"
#include "support/input.h"

namespace {

using namespace zerklsc::fuzz;

// Any bits, or halves of small numbers, many of which are equal.
template <class T>
std::vector<T> take_matrix(const Input& input, int32_t n, bool small) {
    if (!small)
        return input.buffer<T>(int64_t{n} * n);
    const auto halves = input.buffer<int8_t>(int64_t{n} * n);
    std::vector<T> matrix;
    for (const int8_t half : halves)
        matrix.push_back(static_cast<T>(half) / 2);
    return matrix;
}

// To the bit; what is not a number equals any other such.
template <class T>
bool same(T a, T b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

template <class T>
void compare(std::vector<T> matrix, int32_t n) {
    std::vector<T> expected = matrix;
    const int status = matrix_inv(matrix.data(), n);
    expect(status == zerklsc::plain::matrix_inv(expected.data(), n));
    for (size_t i = 0; i < matrix.size() && status == 0; ++i)
        expect(same(matrix[i], expected[i]));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t choice = input.take<uint8_t>();
    hold_to(choice / 4);
    const int32_t n = input.take<uint8_t>() % 72;
    const bool small = (choice & 2) != 0;
    if ((choice & 1) != 0)
        compare(take_matrix<double>(input, n, small), n);
    else
        compare(take_matrix<float>(input, n, small), n);
    return 0;
}
