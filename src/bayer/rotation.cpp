// bayer_rotation
#include <cstddef>
#include <cstring>

#include "frame/scratch.h"
#include "zerklsc.h"

namespace {

// Turning a frame without padding by 180 degrees is the same as reading it backwards.
void copy_backwards(const uint16_t* __restrict from, uint16_t* __restrict to, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i)
        to[i] = from[count - 1 - i];
}

} // namespace

int bayer_rotation(unsigned short* raw, int width, int height) {
    if (width < 1 || height < 1)
        return height;
    const uint64_t count = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    zerklsc::Scratch<uint16_t> copy = zerklsc::allocate<uint16_t>(count);
    if (copy == nullptr)
        return -1;
    std::memcpy(copy.get(), raw, static_cast<size_t>(count) * sizeof(uint16_t));
    copy_backwards(copy.get(), raw, static_cast<ptrdiff_t>(count));
    // The copy stays allocated: a call leaves a frame behind, which zerklsc.h says.
    static_cast<void>(copy.release());
    return height;
}
