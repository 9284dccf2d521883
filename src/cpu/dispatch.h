// How a kernel that zerklsc_add_kernel() compiles once for each instruction set is declared and chosen. It is
// defined in the namespace zerklsc::ZERKLSC_INSTRUCTION_SET, which is that of the instruction set.
//
//   ZERKLSC_DECLARE_KERNEL(name, type)  inside the namespace zerklsc: declares the function `name` of that
//                                       function type for each instruction set
//   ZERKLSC_KERNEL(name)                a pointer to the one for this processor
//
// The same with NARROW for kernels on vectors of 16 bytes, which gain nothing from longer registers and are
// there for base and neon only.
#pragma once

#include "cpu/instruction_set.h"

#define ZERKLSC_DECLARE_IN(set, name, ...)                                                                   \
    namespace set {                                                                                          \
    using name##_type = __VA_ARGS__;                                                                         \
    name##_type name;                                                                                        \
    }

#if defined(__x86_64__) || defined(__i386__)
#define ZERKLSC_DECLARE_KERNEL(name, ...)                                                                    \
    ZERKLSC_DECLARE_IN(base, name, __VA_ARGS__)                                                              \
    ZERKLSC_DECLARE_IN(avx2, name, __VA_ARGS__)                                                              \
    ZERKLSC_DECLARE_IN(avx512, name, __VA_ARGS__)
#define ZERKLSC_KERNEL(name)                                                                                 \
    zerklsc::kernel_of_three(zerklsc::base::name, zerklsc::avx2::name, zerklsc::avx512::name)
#define ZERKLSC_DECLARE_NARROW_KERNEL(name, ...) ZERKLSC_DECLARE_IN(base, name, __VA_ARGS__)
#define ZERKLSC_NARROW_KERNEL(name) (&zerklsc::base::name)

namespace zerklsc {

template <class Kernel>
Kernel* kernel_of_three(Kernel* base, Kernel* avx2, Kernel* avx512) {
    const InstructionSet set = instruction_set();
    return set == InstructionSet::avx512 ? avx512 : set == InstructionSet::avx2 ? avx2 : base;
}

} // namespace zerklsc

#elif defined(__arm__)
#define ZERKLSC_DECLARE_KERNEL(name, ...)                                                                    \
    ZERKLSC_DECLARE_IN(base, name, __VA_ARGS__)                                                              \
    ZERKLSC_DECLARE_IN(neon, name, __VA_ARGS__)
#define ZERKLSC_KERNEL(name)                                                                                 \
    (zerklsc::instruction_set() == zerklsc::InstructionSet::neon ? &zerklsc::neon::name                      \
                                                                 : &zerklsc::base::name)
#define ZERKLSC_DECLARE_NARROW_KERNEL(name, ...) ZERKLSC_DECLARE_IN(neon, name, __VA_ARGS__)
#define ZERKLSC_NARROW_KERNEL(name) (&zerklsc::neon::name)

#else
#define ZERKLSC_DECLARE_KERNEL(name, ...) ZERKLSC_DECLARE_IN(base, name, __VA_ARGS__)
#define ZERKLSC_KERNEL(name) (&zerklsc::base::name)
#define ZERKLSC_DECLARE_NARROW_KERNEL ZERKLSC_DECLARE_KERNEL
#define ZERKLSC_NARROW_KERNEL ZERKLSC_KERNEL
#endif
