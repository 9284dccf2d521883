// load_table on any file.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/input.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const int count = static_cast<int8_t>(input.take<uint8_t>());
    const std::vector<uint8_t> text = input.rest();
    const int file = memfd_create("table", 0);
    if (file < 0 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        std::abort();
    std::vector<uint16_t> table = input.buffer<uint16_t>(count);
    load_table(("/proc/self/fd/" + std::to_string(file)).c_str(), table.data(), count);
    close(file);
    return 0;
}
