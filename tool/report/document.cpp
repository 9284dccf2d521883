// channels_of, sections_of, otp_of
#include "report/document.h"

#include <cmath>

#include "imaging/otp_stream.h"
#include "io/levels_json.h"

namespace zerklsc::tool {
namespace {

double ratio(double value, double whole) {
    return whole > 0 ? rounded(value / whole) : 0;
}

JsonValue levels_json(Colour colour, const PlaneLevels& levels) {
    JsonValue corners = JsonValue::array();
    for (const double corner : levels.corners())
        corners.add(ratio(corner, levels.centre()));
    JsonValue blocks = JsonValue::array();
    for (int j = 0; j < levels.coarse.rows; ++j) {
        JsonValue row = JsonValue::array();
        for (int i = 0; i < levels.coarse.columns; ++i)
            row.add(levels.mean > 0 ? rounded(levels.coarse.at(i, j) / levels.mean - 1) : 0);
        blocks.add(std::move(row));
    }
    JsonValue json = json_of(colour, levels);
    json.add("corners", std::move(corners));
    json.add("blocks", std::move(blocks));
    return json;
}

// A line from (left, top) to (right, bottom), in parts of the plane's width and height.
struct Line {
    const char* name;
    double left, top, right, bottom;
};

constexpr Line lines[] = {{"horizontal", 0, 0.5, 1, 0.5},
                          {"vertical", 0.5, 0, 0.5, 1},
                          {"diagonal, top left to bottom right", 0, 0, 1, 1},
                          {"diagonal, bottom left to top right", 0, 1, 1, 0}};

// As many points as there are blocks along the line, of a diagonal across: an odd number, so that one is the
// centre.
int last_point(const Line& line, const PlaneLevels& levels) {
    return (line.left == line.right ? levels.fine.rows : levels.fine.columns) - 1;
}

JsonValue along(const Line& line, const PlaneLevels& levels) {
    JsonValue values = JsonValue::array();
    const int last = last_point(line, levels);
    for (int k = 0; k <= last; ++k) {
        const double t = last > 0 ? double(k) / last : 0.5;
        const double u = (line.left + t * (line.right - line.left)) * (levels.fine.columns - 1);
        const double v = (line.top + t * (line.bottom - line.top)) * (levels.fine.rows - 1);
        values.add(ratio(levels.fine.at(static_cast<int>(std::lround(u)), static_cast<int>(std::lround(v))),
                         levels.centre()));
    }
    return values;
}

JsonValue along_by_colour(const Line& line, const FrameLevels& levels, BayerPattern pattern) {
    JsonValue list = JsonValue::array();
    for (const Colour colour : all_colours)
        list.add(along(line, levels_of(levels, pattern, colour)));
    return list;
}

JsonValue places_along(const Line& line, const PlaneLevels& levels) {
    JsonValue places = JsonValue::array();
    const int last = last_point(line, levels);
    for (int k = 0; k <= last; ++k)
        places.add(last > 0 ? rounded(200.0 * k / last - 100) : 0);
    return places;
}

} // namespace

JsonValue channels_of(const FrameLevels& before, const FrameLevels& after, const GainTables& tables) {
    JsonValue list = JsonValue::array();
    for (const Colour colour : all_colours)
        list.add(JsonValue::object(
            {{"colour", name_of(colour)},
             {"before", levels_json(colour, levels_of(before, tables.pattern, colour))},
             {"after", levels_json(colour, levels_of(after, tables.pattern, colour))},
             {"largest_gain", rounded(tables.largest_gain(plane_of_colour(tables.pattern, colour)))}}));
    return list;
}

JsonValue sections_of(const FrameLevels& before, const FrameLevels& after, BayerPattern pattern) {
    JsonValue list = JsonValue::array();
    for (const Line& line : lines)
        list.add(JsonValue::object({{"name", line.name},
                                    {"place", places_along(line, before[0])},
                                    {"before", along_by_colour(line, before, pattern)},
                                    {"after", along_by_colour(line, after, pattern)}}));
    return list;
}

JsonValue otp_of(const GainTables& tables) {
    JsonValue list = JsonValue::array();
    for (int mode = lowest_precision_mode; mode <= highest_precision_mode; ++mode)
        list.add(JsonValue::object({{"mode", mode},
                                    {"stream_size", static_cast<uint64_t>(stream_size(tables, mode))},
                                    {"unstored_nodes", unstored_nodes(tables, mode)},
                                    {"channels", json_of(stream_loss(tables, mode))}}));
    return list;
}

} // namespace zerklsc::tool
