// The matrix inversion as it is defined: complex arithmetic, element by element.
#pragma once

namespace zerklsc::plain {

// As ::matrix_inv(), for T float and double.
template <class T>
int matrix_inv(T* a, int n);

} // namespace zerklsc::plain
