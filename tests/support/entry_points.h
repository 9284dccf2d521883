// Every exported function with input for it: the one list for all that the manual says of every function.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "support/arena.h"
#include "support/random.h"

namespace zerklsc::testing {

// Of a frame, its grid and its windows; whether those are so large that they share the sums of whole rows.
struct Geometry {
    uint16_t width = 132, height = 104;
    int32_t step = 8, radius = 3;
    bool shares_rows = false;
    uint16_t brightest = 1000; // sample of the frame
};

// Buffers and records for one call of any function, filled from a seed. What the call may write lies in
// `written`, all else in `read`, which is sealed.
struct Workbench {
    explicit Workbench(uint64_t seed, const Geometry& geometry = {});

    // Records that are only read, with tables to read or to write.
    lsc2d_info* info(int algorithm, uint16_t** list);
    isp_param_tag* isp(uint16_t** list);
    lsc_otp_info* otp(uint16_t** list, uint8_t* bytes);

    int64_t n() const { return int64_t{gw} * gh; } // nodes of a grid
    int64_t e() const { return int64_t{tw} * th; } // entries of a table

    uint16_t width, height; // of the frame
    int32_t s, r;           // step and radius
    int32_t w = width / 2, h = height / 2, gw, gh, tw, th;
    int32_t order; // of the matrices
    bool shares_rows;
    Arena read, written;
    uint16_t *raw, *frame, *planes[4], *out_planes[4], *tables[4], *out_tables[4];
    int16_t *words[4], *out_words[4];
    float *floats, *out_floats, *matrix;
    double* wide_matrix;
    uint8_t *stream, *out_stream;
    int32_t *mask, *mask_sum;
    imfilter_t *box, *disc;
    pix_point* points;
    lsc2d_calib_param* param;
    shading_t* model;
    uint32_t* calib;
    zerklsc_report* report;
    // Records to write to, with tables to write.
    lsc2d_info* out_info;
    isp_param_tag* out_isp;
};

// What a function does with the heap.
enum class Heap {
    little, // takes a few hundred bytes at most
    taken,  // takes more; without it writes nothing and returns a failure
    left,   // the same, and leaves some of it by intent
    spared, // takes more, and does without
};

struct EntryPoint {
    std::string_view symbols;
    int32_t (*call)(Workbench& b); // what the function returned, if anything
    Heap heap = Heap::little;
    int64_t (*memory)(const Workbench& b) = nullptr; // the bytes that the manual names
    double slack = 1;                                // how many times those may be of what is taken
};

std::span<const EntryPoint> entry_points();

// Of what a call returns and writes for the input of a seed.
uint64_t digest_of(const EntryPoint& entry, uint64_t seed);

} // namespace zerklsc::testing
