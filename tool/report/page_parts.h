// The files beside this one that make up the pages, embedded when the tool is built.
#pragma once

namespace zerklsc::tool::page_parts {

extern const char* const page;
extern const char* const report_sections;
extern const char* const lot_sections;
extern const char* const style;
extern const char* const common_script;
extern const char* const report_script;
extern const char* const lot_script;
extern const char* const uplot_style;
extern const char* const uplot_script;

} // namespace zerklsc::tool::page_parts
