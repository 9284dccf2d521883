// load_table on any file.
#include "support/input.h"
#include "support/memory_file.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const int count = static_cast<int8_t>(input.take<uint8_t>());
    const zerklsc::fuzz::MemoryFile file(input.rest());
    std::vector<uint16_t> table = input.buffer<uint16_t>(count);
    load_table(file.path().c_str(), table.data(), count);
    return 0;
}
