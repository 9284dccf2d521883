// A lot's summary as a file, which runs over parts of a lot write and a later run merges.
#pragma once

#include <string>
#include <string_view>

#include "lot/summary.h"

namespace zerklsc::tool {

// One line of JSON for people, then the summary in bytes and a CRC-32. The same modules give the same bytes.
std::string encode_summary(LotSummary summary);

// Whether the first bytes of a file are those of a summary.
bool is_summary(std::string_view head);

// A data failure, which names it, for what is no summary of this version.
LotSummary decode_summary(std::string_view bytes, const std::string& name);

} // namespace zerklsc::tool
