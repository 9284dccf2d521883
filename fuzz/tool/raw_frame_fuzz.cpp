// Every reader of raw frames on any file: the first bytes are the hints of the command line, the rest is the
// file.
#include "io/raw_format.h"
#include "support/input.h"
#include "support/memory_file.h"
#include "support/reader.h"

namespace {

zerklsc::tool::RawHints hints_from(zerklsc::fuzz::Input& input) {
    zerklsc::tool::RawHints hints;
    const uint8_t flags = input.take<uint8_t>();
    if ((flags & 1) != 0) {
        hints.width = input.take<uint8_t>();
        hints.height = input.take<uint8_t>();
        hints.stride = input.take<uint8_t>();
        hints.offset = input.take<uint8_t>();
    }
    if ((flags & 2) != 0)
        hints.bits = 8 + input.take<uint8_t>() % 9;
    if ((flags & 4) != 0)
        hints.packing = static_cast<zerklsc::tool::Packing>(input.take<uint8_t>() % 3);
    hints.big_endian = (flags & 8) != 0;
    hints.left_aligned = (flags & 16) != 0;
    return hints;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    const zerklsc::tool::RawHints hints = hints_from(input);
    const MemoryFile file(input.rest());
    return read_or_refused([&] {
        const auto reading = zerklsc::tool::read_raw_frame(file.path(), hints);
        const auto& frame = reading.frame;
        expect(frame.samples.size() == static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height));
        overridden(reading);
    });
}
