#include "io/preset_file.h"

#include <sstream>

#include <CLI/CLI.hpp>

#include "failure.h"
#include "io/input_file.h"

namespace zerklsc::tool {
namespace {

// Of where a section begins and ends.
bool is_mark(const CLI::ConfigItem& item) {
    return item.name == "++" || item.name == "--";
}

} // namespace

std::vector<PresetItem> read_preset(const std::string& path) {
    constexpr uint64_t largest_preset = 1 << 20;
    std::istringstream text(read_file(path, largest_preset));
    std::vector<PresetItem> items;
    try {
        for (CLI::ConfigItem& item : CLI::ConfigTOML().from_config(text))
            if (!is_mark(item))
                items.push_back({item.parents.empty() ? "" : item.parents.front(), item.name, item.inputs});
    } catch (const CLI::Error& error) {
        usage_failure("--preset: {}: {}", path, error.what());
    }
    return items;
}

} // namespace zerklsc::tool
