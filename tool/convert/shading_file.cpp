// read_shading_file, shading_format_names
#include "convert/shading_file.h"

#include "failure.h"
#include "io/tiff_file.h"

namespace zerklsc::tool {
namespace {

bool is_yaml(const InputFile& file) {
    const std::string extension = extension_of(file.path());
    return extension == ".yaml" || extension == ".yml" || file.head().starts_with("%YAML");
}

// The tuning files of Raspberry Pi name their algorithms "rpi.something".
bool is_raspberry_pi(std::string_view head) {
    return head.find("\"rpi.") != std::string_view::npos
           && head.find("zerklsc-tables") == std::string_view::npos;
}

} // namespace

std::optional<ShadingFile> read_shading_file(const std::string& path, [[maybe_unused]] FrameSize size) {
    // Standard input can be read only once, and is for table files.
    if (path == "-")
        return std::nullopt;
    InputFile file(path);
    if (begins_tiff(file.head()) || extension_of(path) == ".dng") {
        ShadingFile maps = read_gain_maps(file);
        file.expect_unchanged();
        return maps;
    }
    if (is_yaml(file)) {
#ifdef ZERKLSC_WITH_YAML
        return read_rkisp1(path, size);
#else
        data_failure("{}: this zerklsc was built without libyaml, and reads no YAML", path);
#endif
    }
    if (is_raspberry_pi(file.head()))
        return read_alsc(path);
    return std::nullopt;
}

std::string shading_format_names() {
#ifdef ZERKLSC_WITH_YAML
    return "rkisp1, alsc, DNG gain maps";
#else
    return "alsc, DNG gain maps";
#endif
}

} // namespace zerklsc::tool
