// Which instruction set the kernels of this call use: the one place where that is decided.
#pragma once

namespace zerklsc {

// In rising order; a processor family has `base` and some of the others.
enum class CpuLevel { base, neon, avx2, avx512 };

// The highest level that the processor has and that the environment variable ZERKLSC_CPU (base, neon, avx2,
// avx512) allows. Nothing is kept: a test may change the variable between two calls.
CpuLevel cpu_level();

} // namespace zerklsc

// A kernel that zerklsc_add_kernel() compiles for every level lives in the namespace of that level.
//   ZERKLSC_EACH_LEVEL(DECLARE)  expands DECLARE(level) for each, to declare it
//   ZERKLSC_KERNEL(name)         is the function of that name for this processor
#if defined(__x86_64__) || defined(__i386__)
#define ZERKLSC_EACH_LEVEL(DECLARE) DECLARE(base) DECLARE(avx2) DECLARE(avx512)
#define ZERKLSC_KERNEL(name)                                                                                 \
    (zerklsc::cpu_level() == zerklsc::CpuLevel::avx512 ? zerklsc::avx512::name                               \
     : zerklsc::cpu_level() == zerklsc::CpuLevel::avx2 ? zerklsc::avx2::name                                 \
                                                       : zerklsc::base::name)
#elif defined(__arm__)
#define ZERKLSC_EACH_LEVEL(DECLARE) DECLARE(base) DECLARE(neon)
#define ZERKLSC_KERNEL(name)                                                                                 \
    (zerklsc::cpu_level() == zerklsc::CpuLevel::neon ? zerklsc::neon::name : zerklsc::base::name)
#else
#define ZERKLSC_EACH_LEVEL(DECLARE) DECLARE(base)
#define ZERKLSC_KERNEL(name) (zerklsc::base::name)
#endif
