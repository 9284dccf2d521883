// How often each whole number came: a histogram that loses nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zerklsc::tool {

// Of any number of values, in any order, and of parts that are added to each other. The memory grows with the
// range of the values, never with their number: counts stand in pages of 64 neighbouring values.
class ValueCounts {
  public:
    void add(int32_t value, uint32_t count = 1);
    void add(const ValueCounts& other);

    uint64_t total() const { return total_; }

    // Calls `visit(value, count)` for each value that came, from the smallest on.
    template <class Visit>
    void each(const Visit& visit) const {
        for (size_t page = 0; page < firsts_.size(); ++page)
            for (int i = 0; i < page_size; ++i)
                if (const uint32_t count = counts_[page * page_size + static_cast<size_t>(i)]; count != 0)
                    visit(firsts_[page] + i, count);
    }

  private:
    static constexpr int page_size = 64;

    size_t page_of(int32_t first);

    std::vector<int32_t> firsts_;  // the first value of each page, rising
    std::vector<uint32_t> counts_; // page after page
    uint64_t total_ = 0;
    size_t recent_ = 0; // the page of the last value, where the next one often is too
};

// The middle value, or the mean of the two middle ones. This and what follows is 0 of no values.
double median_of(const ValueCounts& values);
double mean_of(const ValueCounts& values);
// With n - 1 below, as of a sample; 0 of one value.
double standard_deviation_of(const ValueCounts& values);
// The standard deviation that a normal distribution with this median absolute deviation has (check/robust.h).
double robust_deviation_of(const ValueCounts& values);
// The smallest value that at least `fraction` of the values do not exceed.
int32_t quantile_of(const ValueCounts& values, double fraction);

} // namespace zerklsc::tool
