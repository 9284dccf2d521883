// Random numbers that are the same on every machine and do not depend on the order in which they are drawn.
#pragma once

#include <cstdint>

namespace zerklsc::tool {

// A well-mixed 64-bit word for a place in a numbered stream (the finaliser of SplitMix64: G. Steele, D. Lea,
// C. Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014).
constexpr uint64_t random_word(uint64_t stream, uint64_t place) {
    uint64_t z = stream * 0xD1B54A32D192ED03u + (place + 1) * 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

// A whole number from 0 to limit - 1.
constexpr int random_below(uint64_t stream, uint64_t place, int limit) {
    return static_cast<int>((random_word(stream, place) >> 32) * static_cast<uint64_t>(limit) >> 32);
}

// Nearly normal, mean 0 and deviation 1, never beyond +-4.9: the sum of eight 16-bit numbers.
constexpr double random_normal(uint64_t stream, uint64_t place) {
    int sum = 0;
    for (uint64_t half = 0; half < 2; ++half)
        for (uint64_t word = random_word(stream, 2 * place + half); word != 0; word >>= 16)
            sum += static_cast<int>(word & 0xFFFF);
    constexpr double mean = 4 * 65535.0;
    constexpr double deviation = 53509.8998;
    return (sum - mean) / deviation;
}

} // namespace zerklsc::tool
