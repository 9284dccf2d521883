// matrix_inv
#include "calibration/matrix_inv.h"

#include <algorithm>

#include "calibration/complex_inversion.h"
#include "calibration/real_inversion.h"
#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {

// Works on a copy, so that complex arithmetic can start anew where real arithmetic does not settle the bits;
// the copy's memory then holds the imaginary parts.
template <class T>
Inversion invert_matrix(T* a, int32_t n) {
    const uint64_t count = static_cast<uint64_t>(n) * static_cast<uint64_t>(n);
    const Scratch<T> work = allocate<T>(count);
    const Scratch<PivotPlace> order = allocate<PivotPlace>(static_cast<uint64_t>(n));
    if (work == nullptr || order == nullptr)
        return Inversion::no_memory;
    std::copy_n(a, count, work.get());
    const RealMatrix<T> real = {work.get(), n};
    bool regular = invert(real, order.get());
    if (!settled(real, regular))
        regular = invert(ComplexMatrix<T>{a, work.get(), n}, order.get());
    else if (regular)
        std::copy_n(work.get(), count, a);
    return regular ? Inversion::done : Inversion::singular;
}

template Inversion invert_matrix<float>(float* a, int32_t n);
template Inversion invert_matrix<double>(double* a, int32_t n);

} // namespace zerklsc

template <class T>
int matrix_inv(T* a, int n) {
    if (n <= 0)
        return 0;
    return zerklsc::invert_matrix(a, n) == zerklsc::Inversion::done ? 0 : -1;
}

template int matrix_inv<float>(float* a, int n);
template int matrix_inv<double>(double* a, int n);
