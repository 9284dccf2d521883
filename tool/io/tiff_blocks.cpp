// strip_count, is_in_one_piece, check_jpeg_sizes, read_blocks
#include "io/tiff_blocks.h"

#include <algorithm>

#include "failure.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

constexpr uint64_t most_blocks = uint64_t{1} << 16;

bool fits(double value) {
    return value >= 0 && value <= UINT32_MAX;
}

uint64_t number(DngMosaic& mosaic, uint16_t tag, uint64_t missing) {
    const auto values = mosaic.values(tag, 1);
    return values.empty() || !fits(values[0]) ? missing : static_cast<uint64_t>(values[0]);
}

bool is_tiled(const DngMosaic& mosaic) {
    return mosaic.directory.find(tag::tile_offsets) != nullptr;
}

// Equal rectangles, row by row.
struct Blocks {
    uint64_t width, height, across;
    std::vector<double> offsets;
};

// Whether they are as wide as the mosaic and each begins where the one above ends.
bool follow_each_other(const Blocks& blocks, uint64_t width) {
    const auto bytes = static_cast<double>(2 * blocks.width * blocks.height);
    for (size_t k = 1; k < blocks.offsets.size(); ++k)
        if (blocks.offsets[k] != blocks.offsets[k - 1] + bytes)
            return false;
    return blocks.width == width;
}

Blocks blocks_of(DngMosaic& mosaic) {
    const uint64_t width = number(mosaic, tag::image_width, 0), height = number(mosaic, tag::image_length, 0);
    const bool tiled = is_tiled(mosaic);
    Blocks blocks{tiled ? number(mosaic, tag::tile_width, 0) : width,
                  tiled ? number(mosaic, tag::tile_length, 0)
                        : std::min(number(mosaic, tag::rows_per_strip, height), height),
                  0,
                  {}};
    const TiffEntry* const offsets = mosaic.directory.find(tiled ? tag::tile_offsets : tag::strip_offsets);
    const auto damaged = [&] {
        data_failure("{}: says no strips or tiles of its mosaic: the file is damaged", mosaic.path());
    };
    if (blocks.width == 0 || blocks.height == 0 || offsets == nullptr)
        damaged();
    blocks.across = (width + blocks.width - 1) / blocks.width;
    const uint64_t count = blocks.across * ((height + blocks.height - 1) / blocks.height);
    if (count > most_blocks || offsets->count != count)
        data_failure("{}: names {} strips or tiles, but its mosaic of {} x {} has {} of {} x {}",
                     mosaic.path(), offsets->count, width, height, count, blocks.width, blocks.height);
    blocks.offsets = mosaic.tiff.numbers(*offsets, offsets->count);
    if (blocks.offsets.empty() || !std::ranges::all_of(blocks.offsets, fits))
        damaged();
    if (blocks.across == 1 && follow_each_other(blocks, width)) {
        blocks.height = height;
        blocks.offsets.resize(1);
    }
    return blocks;
}

// All of the mosaic, whatever number of rows a strip is said to have.
Blocks one_strip(DngMosaic& mosaic) {
    return {number(mosaic, tag::image_width, 0),
            number(mosaic, tag::image_length, 0),
            1,
            {static_cast<double>(number(mosaic, tag::strip_offsets, 0))}};
}

// The most samples that a header of a JPEG promises before its scan; 0 where none begins there.
uint64_t jpeg_samples(TiffFile& tiff, uint64_t at) {
    constexpr uint64_t begin_of_image = 0xFFD8, begin_of_scan = 0xFFDA;
    constexpr int most_segments = 64;
    const auto word = [&](uint64_t from) { return tiff.word(from, 1) << 8 | tiff.word(from + 1, 1); };
    if (word(at) != begin_of_image)
        return 0;
    at += 2;
    uint64_t most = 0;
    for (int segments = 0; word(at) >= 0xFF00 && word(at) != begin_of_scan; ++segments) {
        if (segments == most_segments)
            return UINT64_MAX;
        const bool is_frame = word(at) == 0xFFC0 || word(at) == 0xFFC1 || word(at) == 0xFFC3;
        if (is_frame)
            most = std::max(most, word(at + 5) * word(at + 7) * tiff.word(at + 9, 1));
        at += 2 + word(at + 2);
    }
    return most;
}

} // namespace

uint32_t strip_count(const DngMosaic& mosaic) {
    const TiffEntry* const offsets = mosaic.directory.find(tag::strip_offsets);
    return is_tiled(mosaic) || offsets == nullptr ? 0 : offsets->count;
}

bool is_in_one_piece(DngMosaic& mosaic) {
    if (strip_count(mosaic) <= 1)
        return strip_count(mosaic) == 1;
    const TiffEntry* const offsets = mosaic.directory.find(tag::strip_offsets);
    const TiffEntry* const bytes = mosaic.directory.find(tag::strip_byte_counts);
    if (bytes == nullptr || offsets->count > most_blocks || bytes->count != offsets->count)
        return false;
    const auto begin = mosaic.tiff.numbers(*offsets, offsets->count),
               size = mosaic.tiff.numbers(*bytes, bytes->count);
    for (size_t k = 1; k < std::min(begin.size(), size.size()); ++k)
        if (begin[k] != begin[k - 1] + size[k - 1])
            return false;
    return true;
}

void check_jpeg_sizes(DngMosaic& mosaic) {
    constexpr uint64_t tolerance = 2; // for writers that round sizes up
    const Blocks blocks = is_tiled(mosaic) ? blocks_of(mosaic) : one_strip(mosaic);
    for (const double offset : blocks.offsets)
        if (jpeg_samples(mosaic.tiff, static_cast<uint64_t>(offset))
            > tolerance * blocks.width * blocks.height)
            data_failure("{}: promises more compressed samples than the {} x {} of a strip or tile: the file "
                         "is damaged",
                         mosaic.path(), blocks.width, blocks.height);
}

std::vector<uint16_t> read_blocks(InputFile& file, DngMosaic& mosaic, const SampleArea& area) {
    const Blocks blocks = blocks_of(mosaic);
    if (area.left + area.width > number(mosaic, tag::image_width, 0)
        || area.top + area.height > number(mosaic, tag::image_length, 0))
        data_failure("{}: contradicts itself: its active area reaches beyond its frame", file.path());
    if (2 * area.width * area.height > file.size().value_or(0))
        data_failure("{}: holds {} bytes, too few for {} x {} samples: the file is truncated", file.path(),
                     file.size().value_or(0), area.width, area.height);
    std::vector<uint16_t> samples;
    for (size_t k = 0; k < blocks.offsets.size(); ++k) {
        // What the area has of the block, in samples of the mosaic.
        const uint64_t block_left = k % blocks.across * blocks.width,
                       block_top = k / blocks.across * blocks.height;
        const uint64_t left = std::max(block_left, area.left), top = std::max(block_top, area.top);
        const uint64_t right = std::min(block_left + blocks.width, area.left + area.width);
        const uint64_t bottom = std::min(block_top + blocks.height, area.top + area.height);
        if (left >= right || top >= bottom)
            continue;
        const RowLayout layout{static_cast<int>(right - left), static_cast<int>(bottom - top),
                               2 * (right - left), 2 * blocks.width,
                               static_cast<uint64_t>(blocks.offsets[k])
                                   + 2 * ((top - block_top) * blocks.width + left - block_left)};
        if (layout.shortest_end() > file.size().value_or(0))
            data_failure("{}: holds {} bytes, but a strip or tile ends at byte {}: the file is truncated",
                         file.path(), file.size().value_or(0), layout.shortest_end());
        std::vector<uint16_t> part = read_word_rows(file, layout, mosaic.tiff.big_endian());
        if (part.size() == area.width * area.height)
            return part;
        samples.resize(static_cast<size_t>(area.width * area.height));
        for (uint64_t y = top; y < bottom; ++y)
            std::copy_n(part.begin() + static_cast<std::ptrdiff_t>((y - top) * (right - left)), right - left,
                        samples.begin()
                            + static_cast<std::ptrdiff_t>((y - area.top) * area.width + left - area.left));
    }
    return samples;
}

} // namespace zerklsc::tool
