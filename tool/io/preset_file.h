// A preset as it stands in its file: names with their values, as words.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

struct PresetItem {
    std::string section; // of a command; empty for what counts everywhere
    std::string name;
    std::vector<std::string> values;
};

// The items of a TOML file of at most 1 MiB, in its order. A usage failure for what is no TOML.
std::vector<PresetItem> read_preset(const std::string& path);

} // namespace zerklsc::tool
