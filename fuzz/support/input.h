// Reads records and buffers out of the bytes of one fuzzing input.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::fuzz {

// Of every input.
inline void expect(bool condition) {
    if (!condition)
        std::abort();
}

// More elements than this are not tried: an input describes its buffers, it does not hold them whole.
constexpr int64_t most_elements = 1 << 14;

class Input {
  public:
    Input(const uint8_t* data, size_t size) : data_(data), left_(size) {}

    // Zeros follow the last byte.
    template <class T>
    T take() {
        T value{};
        const size_t bytes = std::min(left_, sizeof(T));
        if (bytes != 0)
            std::memcpy(&value, data_, bytes);
        skip(bytes);
        return value;
    }

    // Mostly small, as sizes are; one byte, or five for any number.
    int32_t number() {
        const uint8_t tag = take<uint8_t>();
        return tag < 248 ? tag : take<int32_t>();
    }

    // Exactly `count` elements on the heap, so that the first access beyond them is found. The bytes that are
    // left are used over and over.
    template <class T>
    std::vector<T> buffer(int64_t count) const {
        std::vector<T> elements(static_cast<size_t>(std::max<int64_t>(count, 0)));
        uint8_t* const bytes = reinterpret_cast<uint8_t*>(elements.data());
        const size_t size = elements.size() * sizeof(T);
        for (size_t done = 0; left_ != 0 && done < size; done += left_)
            std::memcpy(bytes + done, data_, std::min(left_, size - done));
        return elements;
    }

    std::string rest() const { return std::string(reinterpret_cast<const char*>(data_), left_); }

  private:
    void skip(size_t bytes) {
        data_ += bytes;
        left_ -= bytes;
    }

    const uint8_t* data_;
    size_t left_;
};

// How many elements a table of these sizes has; -1 when that is more than is tried.
inline int64_t elements_of(int64_t width, int64_t height) {
    if (width <= 0 || height <= 0)
        return 0;
    return width <= most_elements && height <= most_elements / width ? width * height : -1;
}

// A record's step and size.
template <class Record>
void take_geometry(Input& input, Record& record) {
    record.grid = static_cast<uint16_t>(input.number());
    record.width = static_cast<uint16_t>(input.number());
    record.height = static_cast<uint16_t>(input.number());
}

// Of each of the record's tables, which the library sizes.
inline int64_t table_entries(const lsc2d_info& info) {
    int32_t table_w = 0, table_h = 0;
    lsc2d_table_size(info.width / 2, info.height / 2, info.grid, info.grid, &table_w, &table_h);
    return elements_of(table_w, table_h);
}

// The four tables that the record points to from now on.
template <class Record>
std::array<std::vector<uint16_t>, 4> take_tables(const Input& input, Record& record, int64_t entries) {
    std::array<std::vector<uint16_t>, 4> tables;
    for (size_t k = 0; k < tables.size(); ++k) {
        tables[k] = input.buffer<uint16_t>(entries);
        record.lsc_table[k] = tables[k].data();
    }
    return tables;
}

} // namespace zerklsc::fuzz
