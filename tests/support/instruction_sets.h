// The instruction sets that a test can hold the library to on this processor.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "cpu/instruction_set.h"

namespace zerklsc::testing {

// The words of ZERKLSC_CPU after which the library uses just that instruction set. The variable is left
// unset.
inline std::vector<std::string> instruction_set_words() {
    const struct {
        const char* word;
        InstructionSet set;
    } all[] = {{"base", InstructionSet::base},
               {"neon", InstructionSet::neon},
               {"avx2", InstructionSet::avx2},
               {"avx512", InstructionSet::avx512}};
    std::vector<std::string> words;
    for (const auto& [word, set] : all) {
        setenv("ZERKLSC_CPU", word, 1);
        if (instruction_set() == set)
            words.emplace_back(word);
    }
    unsetenv("ZERKLSC_CPU");
    return words;
}

// Calls call(word) with the library held to each of them.
template <class Call>
void on_each_instruction_set(const Call& call) {
    for (const std::string& word : instruction_set_words()) {
        setenv("ZERKLSC_CPU", word.c_str(), 1);
        call(word);
    }
    unsetenv("ZERKLSC_CPU");
}

} // namespace zerklsc::testing
