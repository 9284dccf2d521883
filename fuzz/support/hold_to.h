// The instruction set as a part of the input.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "support/instruction_sets.h"

namespace zerklsc::fuzz {

// Holds the library to one of those that the processor has.
inline void hold_to(uint8_t choice) {
    static const auto words = testing::instruction_set_words();
    setenv("ZERKLSC_CPU", words[choice % words.size()].c_str(), 1);
}

} // namespace zerklsc::fuzz
