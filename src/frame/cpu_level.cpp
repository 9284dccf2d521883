#include "frame/cpu_level.h"

#include <cstdlib>
#include <cstring>

#if defined(__arm__)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace zerklsc {
namespace {

CpuLevel processor_level() {
#if defined(__x86_64__) || defined(__i386__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")
        && __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq"))
        return CpuLevel::avx512;
    if (__builtin_cpu_supports("avx2"))
        return CpuLevel::avx2;
#elif defined(__arm__)
    if ((getauxval(AT_HWCAP) & HWCAP_NEON) != 0)
        return CpuLevel::neon;
#endif
    return CpuLevel::base;
}

CpuLevel allowed_level() {
    const char* const word = std::getenv("ZERKLSC_CPU");
    if (word == nullptr)
        return CpuLevel::avx512;
    if (std::strcmp(word, "base") == 0)
        return CpuLevel::base;
    if (std::strcmp(word, "neon") == 0)
        return CpuLevel::neon;
    if (std::strcmp(word, "avx2") == 0)
        return CpuLevel::avx2;
    return CpuLevel::avx512;
}

} // namespace

CpuLevel cpu_level() {
    const CpuLevel has = processor_level();
    const CpuLevel may = allowed_level();
    return has < may ? has : may;
}

} // namespace zerklsc
