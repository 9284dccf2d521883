#include "cpu/instruction_set.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

using zerklsc::highest_of;
using zerklsc::instruction_set;
using zerklsc::InstructionSet;

// AVX2, then AVX-512 F, BW, VL, DQ.
TEST(InstructionSet, OfAnX86ProcessorNeedsAllThatItsKernelsAreCompiledFor) {
    EXPECT_EQ(highest_of({false, false, false, false, false}), InstructionSet::base);
    EXPECT_EQ(highest_of({true, false, false, false, false}), InstructionSet::avx2);
    EXPECT_EQ(highest_of({true, true, true, true, true}), InstructionSet::avx512);
    EXPECT_EQ(highest_of({false, true, true, true, true}), InstructionSet::base);
    EXPECT_EQ(highest_of({true, false, true, true, true}), InstructionSet::avx2);
    EXPECT_EQ(highest_of({true, true, false, true, true}), InstructionSet::avx2);
    EXPECT_EQ(highest_of({true, true, true, false, true}), InstructionSet::avx2);
    EXPECT_EQ(highest_of({true, true, true, true, false}), InstructionSet::avx2);
}

TEST(InstructionSet, TestsHoldItDownForTheCallsThatFollow) {
    unsetenv("ZERKLSC_CPU");
    const InstructionSet highest = instruction_set();
    setenv("ZERKLSC_CPU", "base", 1);
    EXPECT_EQ(instruction_set(), InstructionSet::base);
    setenv("ZERKLSC_CPU", "avx512", 1);
    EXPECT_EQ(instruction_set(), highest);
    // What another processor family has is not this one's.
    setenv("ZERKLSC_CPU", "neon", 1);
    EXPECT_EQ(instruction_set(),
              highest == InstructionSet::neon ? InstructionSet::neon : InstructionSet::base);
    for (const char* const word : {"", "AVX2", "sse2", "avx2 "}) {
        setenv("ZERKLSC_CPU", word, 1);
        EXPECT_DEATH(instruction_set(), "ZERKLSC_CPU is '.*', but must be base, neon, avx2 or avx512");
    }
    unsetenv("ZERKLSC_CPU");
}

} // namespace
