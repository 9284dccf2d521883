// Which instruction set the kernels use: the one place where that is decided.
#pragma once

namespace zerklsc {

// In rising order; a processor family has `base` and some of the others.
enum class InstructionSet { base, neon, avx2, avx512 };

// What a processor of the x86 family offers, and its operating system saves.
struct X86Features {
    bool avx2, avx512f, avx512bw, avx512vl, avx512dq;
};

// The compiler takes AVX-512 to include AVX2, so a processor must have both.
constexpr InstructionSet highest_of(const X86Features& has) {
    if (!has.avx2)
        return InstructionSet::base;
    return has.avx512f && has.avx512bw && has.avx512vl && has.avx512dq ? InstructionSet::avx512
                                                                       : InstructionSet::avx2;
}

// The highest one that the processor has. A build with ZERKLSC_CPU_OVERRIDE goes no higher than the
// environment variable ZERKLSC_CPU (base, neon, avx2, avx512) allows, which a test may change between two
// calls; another word ends the program.
InstructionSet instruction_set();

// Whether kernels may use vectors of 16 bytes. They are in the base of every family but 32-bit ARM.
inline bool has_vectors() {
#if defined(__arm__)
    return instruction_set() == InstructionSet::neon;
#else
    return true;
#endif
}

} // namespace zerklsc
