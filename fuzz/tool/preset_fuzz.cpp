// Any bytes as a preset: its items have names, or a message says why there are none.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "failure.h"
#include "io/preset_file.h"
#include "support/memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::tool;
    const zerklsc::fuzz::MemoryFile file(std::string_view(reinterpret_cast<const char*>(data), size));
    try {
        for (const PresetItem& item : read_preset(file.path()))
            if (item.name.find('\n') != std::string::npos)
                std::abort();
    } catch (const Failure&) {
        // Refused in words, as it should be.
    }
    return 0;
}
