// What matrix_inv() does, with the reason of a failure.
#pragma once

#include <cstdint>

namespace zerklsc {

enum class Inversion { done, singular, no_memory };

// Inverts the n x n matrix in place, n > 0; for T float and double.
template <class T>
Inversion invert_matrix(T* a, int32_t n);

} // namespace zerklsc
