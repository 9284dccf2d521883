// The pages of zerklsc report and zerklsc lot: one HTML file each that needs nothing else.
#pragma once

#include <string>
#include <vector>

#include "preview/rows.h"

namespace zerklsc::tool {

// `document` is the JSON from which the page takes its numbers; the rows become maps.
enum class PageKind { report, lot };
std::string encode_page(PageKind kind, const std::string& document, const std::vector<PanelRow>& rows);

} // namespace zerklsc::tool
