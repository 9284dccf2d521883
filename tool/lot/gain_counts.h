// The gains of each node in all modules.
#pragma once

#include <cstdint>
#include <vector>

#include "line/result_line.h"
#include "lot/value_counts.h"

namespace zerklsc::tool {

// Modules are counted by the dozen, node by node: one at a time, every count would have left the processor's
// cache before it is needed again.
class GainCounts {
  public:
    // All of one size.
    void add(const ByColour<std::vector<uint16_t>>& gains);

    // Of each node, row by row; empty before the first module.
    const ByColour<std::vector<ValueCounts>>& counts() const;
    ByColour<std::vector<ValueCounts>>& counts();

  private:
    void apply_pending() const;

    mutable ByColour<std::vector<ValueCounts>> counts_;
    mutable std::vector<ByColour<std::vector<uint16_t>>> pending_;
};

} // namespace zerklsc::tool
