// Any bytes as the DNG that gain maps are put into: refused in words, or copied with every byte but the
// pointers that must change, into a file whose maps are those of the tables.
#include <cmath>
#include <cstdlib>
#include <string>

#include "convert/dng.h"
#include "convert/shading_file.h"
#include "failure.h"
#include "support/input.h"
#include "support/memory_file.h"

namespace {

using namespace zerklsc::tool;
using zerklsc::fuzz::MemoryFile;

constexpr int largest_frame = 4096;
constexpr uint16_t gain = 1536; // of every node: 1.5

// Tables for the frame that the file says it has.
GainTables tables_for(const std::string& path) {
    InputFile file(path);
    TiffFile tiff(file);
    const TiffDirectory directory = tiff.mosaic_directory();
    const FrameSize size = mosaic_size(tiff, directory);
    if (size.width > largest_frame || size.height > largest_frame)
        data_failure("{}: would take long", path);
    GainTables tables;
    tables.raw_width = size.width;
    tables.raw_height = size.height;
    tables.step = 255;
    tables.pattern = mosaic_pattern(tiff, directory);
    tables.set_table_size();
    for (auto& gains : tables.gains)
        gains.assign(tables.table_size(), gain);
    return tables;
}

// The pointer to a directory has four bytes, an entry that is replaced twelve.
void expect_copy(const std::string& copy, const std::string& bytes) {
    size_t changed = 0;
    for (size_t i = 0; i < bytes.size(); ++i)
        changed += copy.size() <= i || copy[i] != bytes[i] ? 1 : 0;
    if (changed > 12)
        std::abort();
}

// Other tags that the reader needs, as the black level, may be damaged in the file and in its copy.
void expect_maps(const std::string& copy) {
    const MemoryFile file(copy);
    InputFile input(file.path());
    ShadingFile shading;
    try {
        shading = read_gain_maps(input);
    } catch (const Failure&) {
        return;
    }
    for (const GainSurface& surface : shading.sets.at(0).by_colour)
        if (std::abs(surface(0.3, 0.6) - 1.5) > 1e-6)
            std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const bool replace = (input.take<uint8_t>() & 1) != 0;
    const std::vector<uint8_t> rest = input.rest();
    const std::string bytes(rest.begin(), rest.end());
    const MemoryFile file(bytes);
    std::string copy;
    try {
        copy = insert_gain_maps(file.path(), tables_for(file.path()), "tables", replace);
    } catch (const Failure&) {
        return 0; // Refused in words, as it should be.
    }
    expect_copy(copy, bytes);
    expect_maps(copy);
    return 0;
}
