// Memory for the buffers and records of a call.
#pragma once

#include <sys/mman.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

#include "zerklsc_driver.h"

namespace zerklsc::testing {

// Bytes of the numbers that a type consists of, or 0 for one that holds other things too.
template <class T>
constexpr size_t number_size = std::is_arithmetic_v<T> ? sizeof(T) : 0;
template <>
inline constexpr size_t number_size<pix_point> = sizeof(uint16_t);
template <>
inline constexpr size_t number_size<lnc_bicubic_weight_t_64_tag> = sizeof(uint16_t);
template <>
inline constexpr size_t number_size<lsc2d_calib_param> = sizeof(int32_t);
template <>
inline constexpr size_t number_size<zerklsc_report> = sizeof(uint32_t);

// What is put into it stands where its elements may, and at no larger multiple. It can be sealed.
class Arena {
  public:
    explicit Arena(size_t size)
        : size_(size),
          base_(static_cast<uint8_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))) {
        if (base_ == MAP_FAILED)
            std::abort();
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() { munmap(base_, size_); }

    template <class T>
    T* put(const std::vector<T>& values) {
        const size_t start = (used_ / (2 * alignof(T)) + 1) * 2 * alignof(T) + alignof(T);
        const size_t bytes = values.size() * sizeof(T);
        used_ = start + bytes;
        if (used_ > size_)
            std::abort();
        protect(PROT_READ | PROT_WRITE);
        std::memcpy(base_ + start, values.data(), bytes);
        protect(sealed_ ? PROT_READ : PROT_READ | PROT_WRITE);
        if (number_size<T> != 0)
            numbers_.push_back({start, bytes, number_size<T>});
        return reinterpret_cast<T*>(base_ + start);
    }

    template <class T>
    T* put(const T& value) {
        return put(std::vector<T>{value});
    }

    // What is in it may be read only.
    void seal() {
        sealed_ = true;
        protect(PROT_READ);
    }

    std::vector<uint8_t> copy() const { return std::vector<uint8_t>(base_, base_ + used_); }

    // FNV-1a (Fowler, Noll, Vo) of all numbers, the low byte of each first on every processor.
    uint64_t digest() const {
        uint64_t hash = 0xCBF29CE484222325u;
        for (const Numbers& n : numbers_)
            for (size_t i = 0; i < n.bytes; ++i) {
                const size_t byte = std::endian::native == std::endian::big ? i ^ (n.size - 1) : i;
                hash = (hash ^ base_[n.start + byte]) * 0x100000001B3u;
            }
        return hash;
    }

  private:
    struct Numbers {
        size_t start, bytes, size;
    };

    void protect(int access) {
        if (mprotect(base_, size_, access) != 0)
            std::abort();
    }

    size_t size_;
    uint8_t* base_;
    size_t used_ = 0;
    bool sealed_ = false;
    std::vector<Numbers> numbers_;
};

} // namespace zerklsc::testing
