// mark_of, SerialSet
#include "lot/serial_set.h"

#include <algorithm>

namespace zerklsc::tool {
namespace {

constexpr uint64_t visited_bit = uint64_t{1} << 63;

} // namespace

// FNV-1a (Fowler, Noll, Vo), and the finalizer of MurmurHash3 (A. Appleby), which spreads what differs in few
// bits.
uint64_t mark_of(std::string_view serial) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : serial)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    hash = (hash ^ hash >> 33) * 0xff51afd7ed558ccd;
    hash = (hash ^ hash >> 33) * 0xc4ceb9fe1a85ec53;
    return std::max<uint64_t>((hash ^ hash >> 33) & ~visited_bit, 1);
}

// Where the mark is, or would be.
size_t SerialSet::slot_of(uint64_t mark) const {
    size_t slot = static_cast<size_t>(mark) & (slots_.size() - 1);
    while (slots_[slot] != 0 && (slots_[slot] & ~visited_bit) != mark)
        slot = (slot + 1) & (slots_.size() - 1);
    return slot;
}

void SerialSet::grow() {
    std::vector<uint64_t> old(2 * slots_.size());
    old.swap(slots_);
    for (const uint64_t mark : old)
        if (mark != 0)
            slots_[slot_of(mark & ~visited_bit)] = mark;
}

bool SerialSet::insert(uint64_t mark) {
    if (3 * (size_ + 1) > 2 * slots_.size())
        grow();
    uint64_t& slot = slots_[slot_of(mark)];
    if (slot != 0)
        return false;
    slot = mark;
    ++size_;
    return true;
}

SerialSet::Visit SerialSet::visit(uint64_t mark) {
    uint64_t& slot = slots_[slot_of(mark)];
    if (slot == 0)
        return Visit::unknown;
    if ((slot & visited_bit) != 0)
        return Visit::again;
    slot |= visited_bit;
    ++visited_;
    return Visit::first;
}

std::vector<uint64_t> SerialSet::sorted() const {
    std::vector<uint64_t> marks;
    marks.reserve(size_);
    for (const uint64_t mark : slots_)
        if (mark != 0)
            marks.push_back(mark & ~visited_bit);
    std::ranges::sort(marks);
    return marks;
}

} // namespace zerklsc::tool
