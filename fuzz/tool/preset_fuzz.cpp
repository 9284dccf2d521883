// Any bytes as a preset: its items have names, or a message says why there are none.
#include "io/preset_file.h"
#include "support/input.h"
#include "support/memory_file.h"
#include "support/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    const MemoryFile file(Input(data, size).rest());
    return read_or_refused([&] {
        for (const zerklsc::tool::PresetItem& item : zerklsc::tool::read_preset(file.path()))
            expect(item.name.find('\n') == std::string::npos);
    });
}
