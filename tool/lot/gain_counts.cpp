// GainCounts
#include "lot/gain_counts.h"

namespace zerklsc::tool {

void GainCounts::add(const ByColour<std::vector<uint16_t>>& gains) {
    constexpr size_t most_pending = 48;
    pending_.push_back(gains);
    if (pending_.size() == most_pending)
        apply_pending();
}

void GainCounts::apply_pending() const {
    for (size_t c = 0; c < counts_.size() && !pending_.empty(); ++c) {
        counts_[c].resize(pending_.front()[c].size());
        for (size_t node = 0; node < counts_[c].size(); ++node)
            for (const auto& gains : pending_)
                counts_[c][node].add(gains[c][node]);
    }
    pending_.clear();
}

const ByColour<std::vector<ValueCounts>>& GainCounts::counts() const {
    apply_pending();
    return counts_;
}

ByColour<std::vector<ValueCounts>>& GainCounts::counts() {
    apply_pending();
    return counts_;
}

} // namespace zerklsc::tool
