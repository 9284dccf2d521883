// What every bit of the results relies on in the arithmetic that the compiler makes.
#include <cfloat>
#include <limits>

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);
static_assert(FLT_EVAL_METHOD == 0,
              "float and double must be computed in their own precision: on 32-bit x86 with "
              "-msse2 -mfpmath=sse, elsewhere without -fexcess-precision=standard");

#if defined(__FAST_MATH__)
#error "-ffast-math changes the results"
#endif
