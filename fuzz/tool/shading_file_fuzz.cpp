// Every reader of tuning files, gain maps and table files on any file: the first byte says which, the rest
// is the file.
#include <cmath>

#include "convert/shading_file.h"
#include "io/table_json.h"
#include "io/table_text.h"
#include "support/input.h"
#include "support/memory_file.h"
#include "support/reader.h"

namespace {

using namespace zerklsc::fuzz;
using namespace zerklsc::tool;

void check_gains(const GainTables& tables) {
    for (const auto& gains : tables.gains)
        expect(gains.size() == tables.table_size());
}

void read_as_text(const std::string& path) {
    GainTables tables = empty_tables(64, 48, 16);
    read_table_text(path, tables);
    check_gains(tables);
}

// What was accepted has a finite gain everywhere.
void read_as_shading(const std::string& path, uint8_t kind) {
    InputFile file(path);
    std::optional<ShadingFile> shading;
    if (kind == 0)
        shading = read_gain_maps(file);
    else if (kind == 1)
        shading = read_alsc(path);
    else
        shading = read_shading_file(path, {64, 48}); // YAML begins with "%YAML"
    if (!shading)
        return;
    for (const ShadingSet& set : shading->sets)
        for (const GainSurface& surface : set.by_colour)
            for (const double at : {-0.1, 0.0, 0.3, 1.0, 1.2})
                expect(std::isfinite(surface(at, 1 - at)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t kind = input.take<uint8_t>() % 5;
    const MemoryFile file(input.rest());
    const std::string path = file.path();
    return read_or_refused([&] {
        if (kind == 3)
            read_as_text(path);
        else if (kind == 4)
            check_gains(read_table_json(path));
        else
            read_as_shading(path, kind);
    });
}
