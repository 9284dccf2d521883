// strip_count, is_in_one_piece, check_jpeg_sizes, read_blocks
#include "io/tiff_blocks.h"

#include <algorithm>

#include "failure.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

constexpr uint16_t image_width = 256, image_height = 257, strip_offsets = 273, rows_per_strip = 278,
                   strip_bytes = 279, tile_width = 322, tile_height = 323, tile_offsets = 324;
constexpr uint64_t most_blocks = uint64_t{1} << 16;

bool fits(double value) {
    return value >= 0 && value <= UINT32_MAX;
}

uint64_t number(TiffFile& tiff, const TiffDirectory& directory, uint16_t tag, uint64_t missing) {
    const TiffEntry* const entry = directory.find(tag);
    const auto values = entry == nullptr ? std::vector<double>{} : tiff.numbers(*entry, 1);
    return values.empty() || !fits(values[0]) ? missing : static_cast<uint64_t>(values[0]);
}

bool is_tiled(const TiffDirectory& directory) {
    return directory.find(tile_offsets) != nullptr;
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

Blocks blocks_of(TiffFile& tiff, const TiffDirectory& directory) {
    const uint64_t width = number(tiff, directory, image_width, 0),
                   height = number(tiff, directory, image_height, 0);
    const bool tiled = is_tiled(directory);
    Blocks blocks{tiled ? number(tiff, directory, tile_width, 0) : width,
                  tiled ? number(tiff, directory, tile_height, 0)
                        : std::min(number(tiff, directory, rows_per_strip, height), height),
                  0,
                  {}};
    const TiffEntry* const offsets = directory.find(tiled ? tile_offsets : strip_offsets);
    const auto damaged = [&] {
        data_failure("{}: says no strips or tiles of its mosaic: the file is damaged", tiff.path());
    };
    if (blocks.width == 0 || blocks.height == 0 || offsets == nullptr)
        damaged();
    blocks.across = (width + blocks.width - 1) / blocks.width;
    const uint64_t count = blocks.across * ((height + blocks.height - 1) / blocks.height);
    if (count > most_blocks || offsets->count != count)
        data_failure("{}: names {} strips or tiles, but its mosaic of {} x {} has {} of {} x {}", tiff.path(),
                     offsets->count, width, height, count, blocks.width, blocks.height);
    blocks.offsets = tiff.numbers(*offsets, offsets->count);
    if (blocks.offsets.empty() || !std::ranges::all_of(blocks.offsets, fits))
        damaged();
    if (blocks.across == 1 && follow_each_other(blocks, width)) {
        blocks.height = height;
        blocks.offsets.resize(1);
    }
    return blocks;
}

// All of the mosaic, whatever number of rows a strip is said to have.
Blocks one_strip(TiffFile& tiff, const TiffDirectory& directory) {
    return {number(tiff, directory, image_width, 0),
            number(tiff, directory, image_height, 0),
            1,
            {static_cast<double>(number(tiff, directory, strip_offsets, 0))}};
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

uint32_t strip_count(const TiffDirectory& directory) {
    const TiffEntry* const offsets = directory.find(strip_offsets);
    return is_tiled(directory) || offsets == nullptr ? 0 : offsets->count;
}

bool is_in_one_piece(TiffFile& tiff, const TiffDirectory& directory) {
    if (strip_count(directory) <= 1)
        return strip_count(directory) == 1;
    const TiffEntry* const offsets = directory.find(strip_offsets);
    const TiffEntry* const bytes = directory.find(strip_bytes);
    if (bytes == nullptr || offsets->count > most_blocks || bytes->count != offsets->count)
        return false;
    const auto begin = tiff.numbers(*offsets, offsets->count), size = tiff.numbers(*bytes, bytes->count);
    for (size_t k = 1; k < std::min(begin.size(), size.size()); ++k)
        if (begin[k] != begin[k - 1] + size[k - 1])
            return false;
    return true;
}

void check_jpeg_sizes(TiffFile& tiff, const TiffDirectory& directory) {
    constexpr uint64_t tolerance = 2; // for writers that round sizes up
    const Blocks blocks = is_tiled(directory) ? blocks_of(tiff, directory) : one_strip(tiff, directory);
    for (const double offset : blocks.offsets)
        if (jpeg_samples(tiff, static_cast<uint64_t>(offset)) > tolerance * blocks.width * blocks.height)
            data_failure("{}: promises more compressed samples than the {} x {} of a strip or tile: the file "
                         "is damaged",
                         tiff.path(), blocks.width, blocks.height);
}

std::vector<uint16_t> read_blocks(InputFile& file, TiffFile& tiff, const TiffDirectory& directory,
                                  const SampleArea& area) {
    const Blocks blocks = blocks_of(tiff, directory);
    if (area.left + area.width > number(tiff, directory, image_width, 0)
        || area.top + area.height > number(tiff, directory, image_height, 0))
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
        std::vector<uint16_t> part = read_word_rows(file, layout, tiff.big_endian());
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
