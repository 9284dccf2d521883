// The page of zerklsc report: one HTML file that needs nothing else.
#pragma once

#include <string>
#include <vector>

#include "preview/rows.h"

namespace zerklsc::tool {

// `document` is the JSON from which the page takes its numbers; the rows become maps.
std::string encode_page(const std::string& document, const std::vector<PanelRow>& rows);

} // namespace zerklsc::tool
