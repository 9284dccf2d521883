// read_rows, read_word_rows, write_words
#include "io/sample_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {
namespace {

// Small enough to stay in the processor's cache between reading and unpacking.
constexpr uint64_t block_bytes = uint64_t{1} << 18;
// What is allocated at once for a pipe, whose length nobody has checked.
constexpr uint64_t pipe_samples = uint64_t{1} << 20;

void swap_bytes(std::span<uint16_t> words) {
    for (uint16_t& word : words)
        word = static_cast<uint16_t>(word << 8 | word >> 8);
}

void expect_end(InputFile& file, const RowLayout& layout) {
    if (file.size())
        return;
    std::vector<std::byte> padding(static_cast<size_t>(layout.longest_end() - layout.shortest_end()));
    if (file.read_some(layout.shortest_end(), padding) == padding.size())
        file.expect_end(layout.longest_end());
}

void copy_words(const uint8_t* row, uint16_t* samples, size_t width) {
    std::memcpy(samples, row, 2 * width);
}

// Words without padding need no unpacking: they are read where they stay.
std::vector<uint16_t> read_words(InputFile& file, const RowLayout& layout) {
    const uint64_t count = static_cast<uint64_t>(layout.width) * static_cast<uint64_t>(layout.height);
    const uint64_t block = file.size() ? count : pipe_samples;
    std::vector<uint16_t> samples;
    if (file.size())
        reserve_frame(samples, static_cast<size_t>(count));
    while (samples.size() < count) {
        const size_t done = samples.size();
        samples.resize(static_cast<size_t>(std::min(count, done + block)));
        file.read(layout.offset + 2 * uint64_t{done},
                  std::as_writable_bytes(std::span(samples).subspan(done)));
    }
    return samples;
}

} // namespace

std::vector<uint16_t> read_rows(InputFile& file, const RowLayout& layout, UnpackRow unpack) {
    const auto width = static_cast<size_t>(layout.width);
    const auto height = static_cast<uint64_t>(layout.height);
    const uint64_t rows = std::max<uint64_t>(block_bytes / layout.stride, 1);
    std::vector<uint8_t> block;
    std::vector<uint16_t> samples;
    if (file.size()) {
        reserve_frame(samples, width * static_cast<size_t>(height));
        samples.resize(width * static_cast<size_t>(height));
    }
    for (uint64_t y = 0; y < height; y += rows) {
        const uint64_t count = std::min(rows, height - y);
        block.resize(static_cast<size_t>((count - 1) * layout.stride + layout.row_bytes));
        file.read(layout.offset + y * layout.stride, std::as_writable_bytes(std::span(block)));
        samples.resize(std::max(samples.size(), width * static_cast<size_t>(y + count)));
        for (uint64_t i = 0; i < count; ++i)
            unpack(block.data() + i * layout.stride, samples.data() + (y + i) * width, width);
    }
    expect_end(file, layout);
    return samples;
}

std::vector<uint16_t> read_word_rows(InputFile& file, const RowLayout& layout, bool big_endian) {
    const bool dense = layout.stride == layout.row_bytes;
    std::vector<uint16_t> samples = dense ? read_words(file, layout) : read_rows(file, layout, copy_words);
    if (dense)
        expect_end(file, layout);
    if (big_endian != (std::endian::native == std::endian::big))
        swap_bytes(samples);
    return samples;
}

void write_words(const std::vector<uint16_t>& samples, bool big_endian, const ByteSink& sink) {
    const bool swapped = big_endian != (std::endian::native == std::endian::big);
    std::vector<uint16_t> block;
    for (size_t at = 0; at < samples.size(); at += block.size()) {
        const size_t count =
            std::min(samples.size() - at, static_cast<size_t>(block_bytes / sizeof(uint16_t)));
        block.assign(samples.begin() + static_cast<std::ptrdiff_t>(at),
                     samples.begin() + static_cast<std::ptrdiff_t>(at + count));
        if (swapped)
            swap_bytes(block);
        sink({reinterpret_cast<const char*>(block.data()), block.size() * sizeof(uint16_t)});
    }
}

} // namespace zerklsc::tool
