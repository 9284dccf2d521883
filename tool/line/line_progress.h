// How far a batch is, for a person at a terminal.
#pragma once

#include <chrono>
#include <cstdint>

#include "terminal.h"

namespace zerklsc::tool {

class LineProgress {
  public:
    explicit LineProgress(uint64_t modules) : modules_(modules) {}

    void begin() { begun_ = std::chrono::steady_clock::now(); }
    // A module was there already, or is done now.
    void skip() { ++skipped_; }
    void step();
    void clear() { line_.clear(); }

  private:
    ProgressLine line_;
    uint64_t modules_, skipped_ = 0, done_ = 0;
    std::chrono::steady_clock::time_point begun_;
};

} // namespace zerklsc::tool
