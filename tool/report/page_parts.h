// The files beside this one that make up the page, embedded when the tool is built.
#pragma once

namespace zerklsc::tool::page_parts {

extern const char* const page_template;
extern const char* const style;
extern const char* const script;
extern const char* const uplot_style;
extern const char* const uplot_script;

} // namespace zerklsc::tool::page_parts
