// Reproducible hostile input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zerklsc::testing {

// SplitMix64 (Steele, Lea, Flood 2014): the same numbers on every machine and standard library.
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed) {}

    uint64_t next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    // Both ends included.
    int64_t between(int64_t low, int64_t high) {
        return low + static_cast<int64_t>(next() % (static_cast<uint64_t>(high - low) + 1));
    }

    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }

  private:
    uint64_t state_;
};

// Near the minimum, near the maximum, anywhere: where kernels go wrong.
enum class Spread { low, high, any };

inline std::vector<uint16_t> random_samples(Random& random, size_t count, Spread spread = Spread::any) {
    std::vector<uint16_t> samples(count);
    for (uint16_t& s : samples) {
        const int64_t low = spread == Spread::high ? 65535 - 8 : 0;
        const int64_t high = spread == Spread::low ? 8 : 65535;
        s = static_cast<uint16_t>(random.between(low, high));
    }
    return samples;
}

} // namespace zerklsc::testing
