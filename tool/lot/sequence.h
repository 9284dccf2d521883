// What became of the modules of a lot one after the other.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "line/result_line.h"
#include "lot/value_counts.h"

namespace zerklsc::tool {

// The number at the end of a serial, or before what is no digit there: 17 of "A0017-B". At most 18 digits of
// it; nothing of a serial without a digit.
std::optional<uint64_t> serial_number(std::string_view serial);

// Neighbours in the order of their serial numbers.
struct SequenceBlock {
    uint64_t modules = 0, good = 0; // good: pass or warn
    ByColour<ValueCounts> corner_gain;
    std::array<ValueCounts, 2> centre; // x, y, the sum of the four colours

    void add(const SequenceBlock& other);
};

// A lot in blocks of 2^shift serial numbers each. The shift is the smallest that makes `most_blocks` enough,
// so that it depends on the lot alone, not on the order in which its modules came.
class Sequence {
  public:
    static constexpr uint64_t most_blocks = 64;

    void add(uint64_t number, const SequenceBlock& block);
    void add(const Sequence& other);

    int shift() const { return shift_; }
    // By their serial numbers, shifted.
    const std::map<uint64_t, SequenceBlock>& blocks() const { return blocks_; }
    // Of a file that holds it; false where no sequence is like that.
    bool set(uint64_t shift, std::map<uint64_t, SequenceBlock> blocks);

  private:
    void shift_to(int shift);
    void fit();

    int shift_ = 0;
    std::map<uint64_t, SequenceBlock> blocks_;
};

} // namespace zerklsc::tool
