// serial_number, SequenceBlock, Sequence
#include "lot/sequence.h"

#include <algorithm>
#include <utility>

namespace zerklsc::tool {

std::optional<uint64_t> serial_number(std::string_view serial) {
    constexpr std::string_view digits = "0123456789";
    constexpr size_t most_digits = 18; // that fit 64 bits whatever they are
    const size_t last = serial.find_last_of(digits);
    if (last == std::string_view::npos)
        return {};
    const size_t before = serial.find_last_not_of(digits, last);
    const size_t first = before == std::string_view::npos ? 0 : before + 1;
    uint64_t number = 0;
    for (size_t i = std::max(first, last + 1 - std::min(last + 1, most_digits)); i <= last; ++i)
        number = 10 * number + static_cast<uint64_t>(serial[i] - '0');
    return number;
}

void SequenceBlock::add(const SequenceBlock& other) {
    modules += other.modules;
    good += other.good;
    for (size_t i = 0; i < corner_gain.size(); ++i)
        corner_gain[i].add(other.corner_gain[i]);
    for (size_t i = 0; i < centre.size(); ++i)
        centre[i].add(other.centre[i]);
}

void Sequence::add(uint64_t number, const SequenceBlock& block) {
    blocks_[number >> shift_].add(block);
    fit();
}

void Sequence::add(const Sequence& other) {
    shift_to(std::max(shift_, other.shift_));
    for (const auto& [number, block] : other.blocks_)
        blocks_[number >> (shift_ - other.shift_)].add(block);
    fit();
}

bool Sequence::set(uint64_t shift, std::map<uint64_t, SequenceBlock> blocks) {
    if (shift > 63 || (!blocks.empty() && blocks.rbegin()->first - blocks.begin()->first >= most_blocks))
        return false;
    shift_ = static_cast<int>(shift);
    blocks_ = std::move(blocks);
    return true;
}

void Sequence::shift_to(int shift) {
    if (shift == shift_)
        return;
    std::map<uint64_t, SequenceBlock> wider;
    for (const auto& [number, block] : blocks_)
        wider[number >> (shift - shift_)].add(block);
    blocks_ = std::move(wider);
    shift_ = shift;
}

void Sequence::fit() {
    int shift = shift_;
    const uint64_t first = blocks_.empty() ? 0 : blocks_.begin()->first;
    const uint64_t last = blocks_.empty() ? 0 : blocks_.rbegin()->first;
    while ((last >> (shift - shift_)) - (first >> (shift - shift_)) >= most_blocks)
        ++shift;
    shift_to(shift);
}

} // namespace zerklsc::tool
