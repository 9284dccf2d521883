// What the benchmark measures and what it holds equal first.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/random.h"

namespace zerklsc::bench {

// The instruction sets that a figure may be measured at, by the words that ZERKLSC_CPU takes.
inline constexpr std::array<const char*, 3> levels = {"base", "avx2", "avx512"};

// One row of the table: a piece of work done by the library and by its plain form.
struct Workload {
    std::string name;
    size_t frame_bytes;             // the memcpy that the row is a multiple of; 0: the row has no such figure
    std::function<void()> fast;     // the library, at the level that ZERKLSC_CPU names
    std::function<void()> plain;    // the same by the plain reference; may be empty
    std::array<double, 3> at_most;  // goal by level: multiples of memcpy; 0: none
    std::array<double, 3> at_least; // goal by level: times faster than the plain form; 0: none
};

// One random comparison of a kernel with its plain form, buffers between guard bands. Returns an empty text,
// or the parameters at which they differ.
struct Check {
    std::string name;
    std::function<std::string(testing::Random&)> once;
};

std::vector<Workload> pass_workloads();

// One file of bench/ for each folder of src/ that has kernels.
std::vector<Workload> bayer_workloads();
std::vector<Check> bayer_checks();
std::vector<Workload> calibration_workloads();
std::vector<Check> calibration_checks();
std::vector<Workload> sampling_workloads();
std::vector<Check> sampling_checks();
std::vector<Workload> table_workloads();
std::vector<Check> table_checks();
std::vector<Workload> bicubic_workloads();
std::vector<Check> bicubic_checks();
std::vector<Workload> generator_workloads();
std::vector<Workload> compress_workloads();
std::vector<Check> compress_checks();

} // namespace zerklsc::bench
