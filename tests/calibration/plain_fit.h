// The surface fit and the matrix inversion as they are defined: dense matrices, complex arithmetic.
#pragma once

#include <cstdint>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::testing {

// As matrix_inv().
template <class T>
int plain_matrix_inv(T* a, int n);

// The four tables of nx x ny nodes, or none where the normal matrix is singular.
std::vector<std::vector<uint16_t>> plain_fit(const std::vector<uint16_t>& image, int width, int height,
                                             int nx, int ny, const lsc2d_calib_param& param);

} // namespace zerklsc::testing
