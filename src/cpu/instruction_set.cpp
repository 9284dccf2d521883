#include "cpu/instruction_set.h"

#if defined(__arm__)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

#if defined(ZERKLSC_CPU_OVERRIDE)
#include <cstdio>
#include <cstdlib>
#include <cstring>
#endif

namespace zerklsc {
namespace {

InstructionSet find_highest() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    const auto has = [](int supported) { return supported != 0; };
    return highest_of({has(__builtin_cpu_supports("avx2")), has(__builtin_cpu_supports("avx512f")),
                       has(__builtin_cpu_supports("avx512bw")), has(__builtin_cpu_supports("avx512vl")),
                       has(__builtin_cpu_supports("avx512dq"))});
#elif defined(__arm__)
    return (getauxval(AT_HWCAP) & HWCAP_NEON) != 0 ? InstructionSet::neon : InstructionSet::base;
#else
    return InstructionSet::base;
#endif
}

// A constant that the loader initialises: no lock, nothing to find again. Whatever runs before it, which is
// only an earlier constructor of the same program, sees `base`, and `base` gives the same results.
const InstructionSet highest = find_highest();

#if defined(ZERKLSC_CPU_OVERRIDE)
InstructionSet allowed() {
    static constexpr const char* words[] = {"base", "neon", "avx2", "avx512"};
    const char* const word = std::getenv("ZERKLSC_CPU");
    if (word == nullptr)
        return InstructionSet::avx512;
    for (int i = 0; i < 4; ++i)
        if (std::strcmp(word, words[i]) == 0)
            return static_cast<InstructionSet>(i);
    std::fprintf(stderr, "zerklsc: ZERKLSC_CPU is '%s', but must be base, neon, avx2 or avx512\n", word);
    std::abort();
}
#endif

} // namespace

InstructionSet instruction_set() {
#if defined(ZERKLSC_CPU_OVERRIDE)
    const InstructionSet may = allowed();
#if !defined(__arm__)
    if (may == InstructionSet::neon)
        return InstructionSet::base;
#endif
    return highest < may ? highest : may;
#else
    return highest;
#endif
}

} // namespace zerklsc
