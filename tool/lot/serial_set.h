// Which serials have been seen.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace zerklsc::tool {

// A serial as 63 bits: two of a hundred million serials are taken for one with a probability of 1 in 1800.
uint64_t mark_of(std::string_view serial);

// Marks of serials, 12 to 24 bytes each. Each is visited once at most, in a second round.
class SerialSet {
  public:
    // Whether the mark was not there before.
    bool insert(uint64_t mark);

    enum class Visit { first, again, unknown };
    Visit visit(uint64_t mark);

    size_t size() const { return size_; }
    size_t visited() const { return visited_; }
    // All marks, rising.
    std::vector<uint64_t> sorted() const;

  private:
    size_t slot_of(uint64_t mark) const;
    void grow();

    static constexpr size_t least_slots = 1024;

    // 0 where free; the highest bit tells that the mark was visited.
    std::vector<uint64_t> slots_ = std::vector<uint64_t>(least_slots);
    size_t size_ = 0, visited_ = 0;
};

} // namespace zerklsc::tool
