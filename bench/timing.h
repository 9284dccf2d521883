// Times within one process, one thread: medians of runs taken in turn, so that a drift of the machine hits
// all alike.
#pragma once

#include <time.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace zerklsc::bench {

// The processor time of this thread: what else the machine does in between does not count.
inline double thread_seconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

inline double seconds_of(const std::function<void()>& work) {
    const double start = thread_seconds();
    work();
    return thread_seconds() - start;
}

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The median time of each piece of work: one uncounted run of each, then rounds of all of them in turn until
// `budget` seconds are spent, three rounds at the least. Short work is repeated within a round until it takes
// a millisecond.
inline std::vector<double> medians_in_turn(const std::vector<std::function<void()>>& works, double budget) {
    std::vector<int> repeats;
    for (const auto& work : works) {
        work();
        const double once = seconds_of(work);
        repeats.push_back(once >= 1e-3 ? 1
                                       : static_cast<int>(std::min(1e-3 / std::max(once, 1e-8), 1e5)) + 1);
    }
    std::vector<std::vector<double>> times(works.size());
    double spent = 0;
    for (int round = 0; round < 3 || (spent < budget && round < 1000); ++round)
        for (size_t i = 0; i < works.size(); ++i) {
            const double time = seconds_of([&] {
                for (int r = 0; r < repeats[i]; ++r)
                    works[i]();
            });
            spent += time;
            times[i].push_back(time / repeats[i]);
        }
    std::vector<double> medians;
    for (auto& t : times)
        medians.push_back(median(std::move(t)));
    return medians;
}

} // namespace zerklsc::bench
