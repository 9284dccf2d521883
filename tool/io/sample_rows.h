// Rows of samples as they stand in a file: whole 16-bit words, bytes, or packed.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "io/byte_sink.h"
#include "io/input_file.h"

namespace zerklsc::tool {

// Where the rows are, in bytes.
struct RowLayout {
    int width = 0;
    int height = 0;
    uint64_t row_bytes = 0; // of the samples of a row
    uint64_t stride = 0;    // from row to row, padding included
    uint64_t offset = 0;    // of the first row

    // The end of the last sample. The padding of the last row may be there or not.
    uint64_t shortest_end() const { return offset + stride * static_cast<uint64_t>(height - 1) + row_bytes; }
    uint64_t longest_end() const { return offset + stride * static_cast<uint64_t>(height); }

    // Whether a file of `size` bytes holds these rows and nothing else; true while the size is not known.
    bool fits(std::optional<uint64_t> size) const {
        return !size || *size == shortest_end() || *size == longest_end();
    }
};

// Makes `width` samples of the bytes of a row.
using UnpackRow = void (*)(const uint8_t* row, uint16_t* samples, size_t width);

// Reads rows that fits() has accepted; a failure when a pipe turns out shorter or longer. Memory grows with
// what a pipe delivers, not with what its header promises.
std::vector<uint16_t> read_rows(InputFile& file, const RowLayout& layout, UnpackRow unpack);

// The same for 16-bit words of either byte order.
std::vector<uint16_t> read_word_rows(InputFile& file, const RowLayout& layout, bool big_endian);

// Writes the samples as words, in blocks.
void write_words(const std::vector<uint16_t>& samples, bool big_endian, const ByteSink& sink);

} // namespace zerklsc::tool
