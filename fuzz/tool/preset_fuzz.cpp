// Any bytes as a preset: its items have names, or a message says why there are none.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "failure.h"
#include "io/preset_file.h"
#include "support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::tool;
    const int file = memfd_create("preset", 0);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size))
        std::abort();
    try {
        for (const PresetItem& item : read_preset("/proc/self/fd/" + std::to_string(file)))
            if (item.name.find('\n') != std::string::npos)
                std::abort();
    } catch (const Failure&) {
        // Refused in words, as it should be.
    }
    close(file);
    return 0;
}
