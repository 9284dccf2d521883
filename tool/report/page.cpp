// encode_page
#include "report/page.h"

#include "io/base64.h"
#include "io/json_value.h"
#include "preview/png.h"
#include "preview/sheet.h"
#include "report/page_parts.h"

namespace zerklsc::tool {
namespace {

std::string data_uri(const Canvas& canvas) {
    return "data:image/png;base64," + base64_of(encode_png(canvas));
}

JsonValue maps_of(const std::vector<PanelRow>& rows) {
    JsonValue list = JsonValue::array();
    for (const PanelRow& row : rows) {
        JsonValue panels = JsonValue::array();
        for (const Panel& panel : row.panels)
            panels.add(JsonValue::object({{"caption", panel.caption},
                                          {"width", panel.field.width},
                                          {"height", panel.field.height},
                                          {"image", data_uri(draw_map(row, panel))}}));
        list.add(JsonValue::object({{"title", row.title + beyond_scale_text(row)},
                                    {"scale", data_uri(draw_scale_strip(row))},
                                    {"labels", JsonValue::list(row.labels)},
                                    {"panels", std::move(panels)}}));
    }
    return list;
}

// JSON that stays inside its script element: "<" only stands inside its strings.
std::string inside_script(const std::string& json) {
    std::string text;
    for (const char c : json)
        text += c == '<' ? std::string("\\u003c") : std::string(1, c);
    return text;
}

} // namespace

std::string encode_page(PageKind kind, const std::string& document, const std::vector<PanelRow>& rows) {
    const bool report = kind == PageKind::report;
    const std::string title = report ? "Lens-shading report" : "Report of a lot";
    const std::pair<std::string, std::string> fillings[] = {
        {"{{title}}", title},
        {"{{style}}", std::string(page_parts::uplot_style) + page_parts::style},
        {"{{title}}", title},
        {"{{sections}}", report ? page_parts::report_sections : page_parts::lot_sections},
        {"{{document}}", inside_script(document)},
        {"{{maps}}", inside_script(maps_of(rows).text())},
        {"{{uplot}}", page_parts::uplot_script},
        {"{{script}}", std::string(page_parts::common_script)
                           + (report ? page_parts::report_script : page_parts::lot_script)}};
    // From mark to mark, so that no mark is looked for in what has been filled in.
    std::string page, rest = page_parts::page;
    for (const auto& [mark, filling] : fillings) {
        const size_t at = rest.find(mark);
        page += rest.substr(0, at) + filling;
        rest.erase(0, at + mark.size());
    }
    return page + rest;
}

} // namespace zerklsc::tool
