// Working memory of one call, from malloc, freed when it leaves its scope.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace zerklsc {

struct FreeScratch {
    void operator()(void* p) const { std::free(p); }
};

template <class T>
using Scratch = std::unique_ptr<T[], FreeScratch>;

// `count` elements, uninitialised; null when they cannot be had or are more bytes than pointers can be apart.
// Zero elements are one element, so that null always means failure.
template <class T>
Scratch<T> allocate(uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(T))
        return nullptr;
    const size_t bytes = static_cast<size_t>(count) * sizeof(T);
    return Scratch<T>(static_cast<T*>(std::malloc(bytes != 0 ? bytes : sizeof(T))));
}

// `height` rows of `width` elements, neither of them negative.
template <class T>
Scratch<T> allocate(int32_t width, int32_t height) {
    return allocate<T>(static_cast<uint64_t>(width) * static_cast<uint64_t>(height));
}

constexpr size_t cache_line = 64;

// The first address from p on where a cache line starts.
template <class T>
T* aligned(T* p) {
    const size_t over = reinterpret_cast<uintptr_t>(p) % cache_line;
    return p + (over == 0 ? 0 : (cache_line - over) / sizeof(T));
}

} // namespace zerklsc
