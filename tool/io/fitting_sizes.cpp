// packed_row_bytes, headerless_layout, fitting_sizes
#include "io/fitting_sizes.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

struct Size {
    int width, height;
};

// Readouts of common sensors, full, binned and video.
constexpr std::array<Size, 43> common_sizes{{
    {640, 480},   {800, 600},   {1280, 720},  {1280, 800},  {1280, 960},  {1280, 1024}, {1296, 972},
    {1456, 1088}, {1600, 1200}, {1640, 1232}, {1920, 1080}, {1920, 1200}, {1936, 1096}, {2048, 1536},
    {2104, 1560}, {2304, 1296}, {2328, 1748}, {2448, 2048}, {2592, 1944}, {2688, 1520}, {2028, 1520},
    {2716, 1528}, {3264, 2448}, {3280, 2464}, {3840, 2160}, {3856, 2180}, {4000, 3000}, {4032, 3024},
    {4056, 3040}, {4096, 2160}, {4096, 3072}, {4112, 3008}, {4160, 3120}, {4208, 3118}, {4208, 3120},
    {4224, 3136}, {4608, 2592}, {4608, 3456}, {4656, 3496}, {5344, 4016}, {5472, 3648}, {8000, 6000},
    {9248, 6944},
}};

// What rows are padded to, in bytes.
constexpr std::array<uint64_t, 7> alignments{1, 4, 16, 32, 64, 128, 256};

constexpr std::array<std::pair<Packing, const char*>, 3> packings{
    {{Packing::words, "words"}, {Packing::raw10, "raw10"}, {Packing::raw12, "raw12"}}};

constexpr size_t most_suggestions = 4;

uint64_t padded(uint64_t bytes, uint64_t alignment) {
    return (bytes + alignment - 1) / alignment * alignment;
}

const char* name_of(Packing packing) {
    return packings[static_cast<size_t>(packing)].second;
}

// The options that name this reading, or nothing where it does not have exactly `size` bytes.
std::string suggestion(uint64_t size, const RawHints& hints, Size frame, Packing packing, bool is_usual) {
    const uint64_t row_bytes = packed_row_bytes(packing, frame.width);
    for (const uint64_t alignment : alignments) {
        const uint64_t stride = padded(row_bytes, alignment);
        const RowLayout layout{frame.width, frame.height, row_bytes, stride,
                               static_cast<uint64_t>(hints.offset)};
        if (!layout.fits(size))
            continue;
        std::string options = fmt::format("--width {} --height {}", frame.width, frame.height);
        if (!is_usual)
            options += fmt::format(" --packing {}", name_of(packing));
        if (stride != row_bytes)
            options += fmt::format(" --stride {}", stride);
        if (hints.offset != 0)
            options += fmt::format(" --offset {}", hints.offset);
        return options;
    }
    return {};
}

// Sizes to try: those that keep to the width or the height that was given come first.
std::vector<Size> candidates(uint64_t size, const RawHints& hints) {
    std::vector<Size> sizes;
    const auto other_side = [&](int side, Packing packing) {
        const uint64_t other =
            (size - std::min(size, static_cast<uint64_t>(hints.offset))) / packed_row_bytes(packing, side);
        return static_cast<int>(std::min<uint64_t>(other, largest_side)) / 2 * 2;
    };
    if (hints.width != 0 && hints.height != 0)
        sizes.push_back({hints.width, hints.height});
    for (const auto& [packing, name] : packings) {
        if (hints.width != 0)
            sizes.push_back({hints.width, other_side(hints.width, packing)});
        if (hints.height != 0 && packing == Packing::words)
            sizes.push_back({other_side(hints.height, packing), hints.height});
    }
    sizes.insert(sizes.end(), common_sizes.begin(), common_sizes.end());
    for (const Size& common : common_sizes)
        sizes.push_back({common.height, common.width});
    std::erase_if(sizes, [](const Size& s) { return s.width < 2 || s.height < 2 || s.width % 2 != 0; });
    return sizes;
}

} // namespace

uint64_t packed_row_bytes(Packing packing, int width) {
    const auto samples = static_cast<uint64_t>(width);
    switch (packing) {
    case Packing::raw10:
        return (samples + 3) / 4 * 5;
    case Packing::raw12:
        return (samples + 1) / 2 * 3;
    case Packing::words:
        break;
    }
    return 2 * samples;
}

RowLayout headerless_layout(const InputFile& file, const RawHints& hints, Packing packing) {
    const std::string found = file.size() ? fitting_sizes(*file.size(), hints, packing) : "";
    const std::string advice = found.empty() ? "give the right --width, --height, --stride and --offset"
                                             : "sizes that would fit: " + found;
    if (hints.width == 0 || hints.height == 0)
        data_failure("{}: does not say its size: {}", file.path(), advice);
    const uint64_t row_bytes = packed_row_bytes(packing, hints.width);
    const auto stride = static_cast<uint64_t>(hints.stride);
    if (hints.stride != 0 && stride < row_bytes)
        data_failure("{}: a --stride of {} bytes is less than a row of {} samples takes, which is {}",
                     file.path(), stride, hints.width, row_bytes);
    const RowLayout layout{hints.width, hints.height, row_bytes, std::max(stride, row_bytes),
                           static_cast<uint64_t>(hints.offset)};
    if (!layout.fits(file.size()))
        data_failure("{}: holds {} bytes, but {} x {} samples ({}) end at byte {}: {}", file.path(),
                     *file.size(), hints.width, hints.height, name_of(packing), layout.longest_end(), advice);
    return layout;
}

std::string fitting_sizes(uint64_t size, const RawHints& hints, Packing packing) {
    std::vector<std::string> found;
    const auto try_all = [&](bool usual) {
        for (const Size& frame : candidates(size, hints))
            for (const auto& [other, name] : packings) {
                if ((other == packing) != usual)
                    continue;
                const std::string options = suggestion(size, hints, frame, other, usual);
                if (!options.empty() && std::ranges::find(found, options) == found.end())
                    found.push_back(options);
            }
    };
    try_all(true);
    try_all(false);
    found.resize(std::min(found.size(), most_suggestions));
    return fmt::format("{}", fmt::join(found, "; "));
}

} // namespace zerklsc::tool
