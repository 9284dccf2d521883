// Any bytes as the DNG that gain maps are put into: refused in words, or copied with every byte but the
// pointers that must change, into a file whose maps are those of the tables.
#include <cmath>

#include "convert/dng.h"
#include "convert/shading_file.h"
#include "support/input.h"
#include "support/memory_file.h"
#include "support/reader.h"

namespace {

using namespace zerklsc::fuzz;
using namespace zerklsc::tool;

constexpr int largest_frame = 4096;
constexpr uint16_t gain = 1536; // of every node: 1.5

// Tables for the frame that the file says it has.
GainTables tables_for(const std::string& path) {
    InputFile file(path);
    DngMosaic mosaic(file);
    const FrameSize size = mosaic.size();
    if (size.width > largest_frame || size.height > largest_frame)
        data_failure("{}: would take long", path);
    GainTables tables = empty_tables(size.width, size.height, 255, mosaic.pattern());
    for (auto& gains : tables.gains)
        gains.assign(tables.table_size(), gain);
    return tables;
}

// The pointer to a directory has four bytes, an entry that is replaced twelve.
void expect_copy(const std::string& copy, const std::string& bytes) {
    size_t changed = 0;
    for (size_t i = 0; i < bytes.size(); ++i)
        changed += copy.size() <= i || copy[i] != bytes[i] ? 1 : 0;
    expect(changed <= 12);
}

// Other tags that the reader needs, as the black level, may be damaged in the file and in its copy.
void expect_maps(const std::string& copy) {
    const MemoryFile file(copy);
    InputFile input(file.path());
    read_or_refused([&] {
        const ShadingFile shading = read_gain_maps(input);
        for (const GainSurface& surface : shading.sets.at(0).by_colour)
            expect(std::abs(surface(0.3, 0.6) - 1.5) <= 1e-5); // taps of single precision
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool replace = (input.take<uint8_t>() & 1) != 0;
    const std::string bytes = input.rest();
    const MemoryFile file(bytes);
    return read_or_refused([&] {
        const std::string copy = insert_gain_maps(file.path(), tables_for(file.path()), "tables", replace);
        expect_copy(copy, bytes);
        expect_maps(copy);
    });
}
