// A module's gains as ratios to those of a golden module.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// Each gain divided by the golden one of its node: 1024 where they are equal, rounded half up, at most the
// highest gain. A data failure where both do not have the same nodes, or a golden gain is 0. The names are
// those of messages.
GainTables relative_gains(const GainTables& tables, const std::string& name, const GainTables& golden,
                          const std::string& golden_name);

} // namespace zerklsc::tool
