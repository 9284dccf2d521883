// Buffers that end at an unreadable page, so that the first access beyond them stops the test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace zerklsc::testing {

enum class Against { front, back };

// `count` elements with an unreadable page directly before the first or directly behind the last. The slack
// at the other side, up to a page, holds a pattern; intact() says whether it still does.
template <class T>
class Guarded {
  public:
    explicit Guarded(size_t count, Against side = Against::back) : count_(count) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t bytes = count * sizeof(T);
        room_ = (bytes + page - 1) / page * page;
        mapped_ = room_ + 2 * page;
        base_ = static_cast<uint8_t*>(
            mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (base_ == MAP_FAILED || mprotect(base_, page, PROT_NONE) != 0
            || mprotect(base_ + page + room_, page, PROT_NONE) != 0)
            std::abort();
        usable_ = base_ + page;
        std::fill(usable_, usable_ + room_, pattern);
        data_ = reinterpret_cast<T*>(side == Against::front ? usable_ : usable_ + room_ - bytes);
    }

    Guarded(const std::vector<T>& values, Against side) : Guarded(values.size(), side) {
        std::copy(values.begin(), values.end(), data_);
    }

    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded() { munmap(base_, mapped_); }

    T* data() { return data_; }
    size_t size() const { return count_; }
    T& operator[](size_t i) { return data_[i]; }
    T* begin() { return data_; }
    T* end() { return data_ + count_; }
    std::vector<T> copy() const { return std::vector<T>(data_, data_ + count_); }

    // Whether the slack around the elements is as it was made.
    bool intact() const {
        const uint8_t* first = reinterpret_cast<const uint8_t*>(data_);
        const uint8_t* last = reinterpret_cast<const uint8_t*>(data_ + count_);
        const auto kept = [](uint8_t b) { return b == pattern; };
        return std::all_of(static_cast<const uint8_t*>(usable_), first, kept)
               && std::all_of(last, static_cast<const uint8_t*>(usable_ + room_), kept);
    }

  private:
    static constexpr uint8_t pattern = 0xA5;
    size_t count_;
    size_t room_ = 0;
    size_t mapped_ = 0;
    uint8_t* base_ = nullptr;
    uint8_t* usable_ = nullptr;
    T* data_ = nullptr;
};

} // namespace zerklsc::testing
