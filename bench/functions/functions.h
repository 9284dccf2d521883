// Every exported function once, whatever it costs: the rows of one table.
#pragma once

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "functions/inputs.h"

namespace zerklsc::bench {

using Work = std::function<void()>;

struct TimedFunction {
    std::string name; // as c++filt writes it
    std::string unit; // what its time is divided by
    double units;     // how many there are of it
    Work fast;
    Work plain; // empty where the function is its own plain form
};

struct Functions {
    std::shared_ptr<Inputs> inputs = std::make_shared<Inputs>(); // which the rows work on
    std::vector<TimedFunction> rows;

    void add(std::string name, std::string unit, double units, Work fast, Work plain = {}) {
        rows.push_back({std::move(name), std::move(unit), units, std::move(fast), std::move(plain)});
    }
};

void add_records(Functions& functions);
void add_frames(Functions& functions);
void add_corrections(Functions& functions);
void add_levels(Functions& functions);
void add_calibration(Functions& functions);
void add_borders(Functions& functions);
void add_tables(Functions& functions);
void add_streams(Functions& functions);

// What is refused takes no time.
inline void done(int64_t status) {
    if (status != 0)
        std::abort();
}

// What the compiler cannot leave out.
inline volatile uint64_t sink;

// Many calls of a function that takes hardly any time.
template <class Call>
Work many(Call call) {
    return [call] {
        uint64_t sum = 0;
        for (int i = 0; i < calls; ++i)
            sum += static_cast<uint64_t>(call(static_cast<uint16_t>(i)));
        sink = sum;
    };
}

} // namespace zerklsc::bench
