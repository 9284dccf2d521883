// Correcting a frame exactly as one of the two ISP generations does.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// The values are those of isp_param_tag.isp_type.
enum class Isp { tvessa2 = 3, vessal2 = 4 };

const char* name_of(Isp isp);
// The generation for which an algorithm makes its tables.
Isp isp_of_algorithm(int algorithm);

// Corrects a 10-bit frame whose black level has been taken off. `tables_name` is for messages. Throws a data
// failure when frame, tables and ISP do not go together, and warns where the ISP does less than the tables
// ask for.
void correct(RawFrame& frame, GainTables tables, const std::string& tables_name, Isp isp);

} // namespace zerklsc::tool
