// LotFindings, widest_spread, usual_spread, document_of
#include "lot/document.h"

#include <algorithm>
#include <cmath>

#include "check/limits.h"
#include "io/levels_json.h"
#include "lot/four_digits.h"
#include "lot/histogram.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

JsonValue number_or_null(const std::optional<double>& value) {
    return value ? JsonValue(rounded(*value)) : JsonValue::null();
}

JsonValue plane_json(const std::string& plane) {
    return plane.empty() ? JsonValue::null() : JsonValue(plane);
}

JsonValue counts_json(const LotSummary& lot) {
    JsonValue counts = JsonValue::object();
    for (size_t i = 0; i < lot.verdicts.size(); ++i)
        counts.add(module_verdict_names[i], lot.verdicts[i]);
    return counts;
}

JsonValue costs_json(const LotSummary& lot) {
    JsonValue list = JsonValue::array();
    for (const auto& [name, cost] : lot.dearest_first())
        list.add(JsonValue::object({{"cause", name}, {"lost", cost.lost}, {"lost_alone", cost.lost_alone}}));
    return list;
}

// Five numbers of an exact distribution of four digits each.
void add_distribution(JsonValue& object, const ValueCounts& values) {
    const std::pair<const char*, double> places[] = {
        {"smallest", 0}, {"percent_5", 0.05}, {"median", 0.5}, {"percent_95", 0.95}, {"largest", 1}};
    for (const auto& [name, fraction] : places)
        object.add(name, values.total() == 0 ? JsonValue::null()
                                             : JsonValue(number_of(quantile_of(values, fraction))));
}

const char* unit_of(const std::string& check) {
    for (const CheckLimit& limit : usual_limits())
        if (limit.name == check)
            return limit.unit;
    return "";
}

JsonValue checks_json(const LotSummary& lot) {
    JsonValue list = JsonValue::array();
    for (const auto& [name, counts] : lot.checks) {
        ValueCounts all;
        JsonValue object = JsonValue::object(
            {{"name", name.first}, {"plane", plane_json(name.second)}, {"unit", unit_of(name.first)}});
        for (size_t verdict = 0; verdict < counts.values.size(); ++verdict) {
            all.add(counts.values[verdict]);
            object.add(name_of(static_cast<Verdict>(verdict)),
                       counts.values[verdict].total() + counts.without_number[verdict]);
        }
        add_distribution(object, all);
        list.add(std::move(object));
    }
    return list;
}

JsonValue histograms_json(const LotSummary& lot) {
    std::map<std::string, std::vector<const CheckCounts*>> by_name;
    for (const auto& [name, counts] : lot.checks)
        by_name[name.first].push_back(&counts);
    JsonValue list = JsonValue::array();
    for (const auto& [name, planes] : by_name) {
        const Histogram histogram = histogram_of(planes);
        JsonValue object = JsonValue::object({{"name", name},
                                              {"unit", unit_of(name)},
                                              {"from", rounded(histogram.from)},
                                              {"width", histogram.width}});
        for (size_t verdict = 0; verdict < histogram.bars.size(); ++verdict)
            object.add(name_of(static_cast<Verdict>(verdict)), JsonValue::list(histogram.bars[verdict]));
        list.add(std::move(object));
    }
    return list;
}

JsonValue numbers_json(const LotSummary& lot) {
    JsonValue list = JsonValue::array();
    for (const auto& [name, values] : lot.numbers) {
        JsonValue object = JsonValue::object(
            {{"name", name.first}, {"plane", plane_json(name.second)}, {"modules", values.total()}});
        add_distribution(object, values);
        list.add(std::move(object));
    }
    return list;
}

JsonValue kind_json(const LotKind& kind) {
    const ResultGrid& grid = kind.grid;
    return JsonValue::object({{"size", JsonValue::array({kind.width, kind.height})},
                              {"bayer_pattern", name_of(kind.pattern)},
                              {"bit_depth", kind.bits},
                              {"algorithm", algorithm_name(grid.algorithm)},
                              {"step", grid.step},
                              {"filter_radius", grid.filter_radius},
                              {"shading_percent", grid.shading_percent},
                              {"table_size", JsonValue::array({grid.width, grid.height})}});
}

JsonValue channels_json(const LotFindings& findings) {
    JsonValue list = JsonValue::array();
    if (findings.summary.with_gains() == 0)
        return list;
    const GainTables golden = golden_tables(findings.summary);
    for (size_t c = 0; c < all_colours.size(); ++c) {
        const WidestSpread widest = widest_spread(findings, c);
        list.add(JsonValue::object(
            {{"colour", name_of(all_colours[c])},
             {"largest_gain", rounded(golden.largest_gain(plane_of_colour(golden.pattern, all_colours[c])))},
             {"usual_spread", rounded(usual_spread(findings, c))},
             {"widest_spread", rounded(widest.spread)},
             {"widest_at", JsonValue::array({widest.i, widest.j})}}));
    }
    return list;
}

JsonValue rows_json(const std::vector<double>& values, int columns) {
    JsonValue rows = JsonValue::array();
    const auto width = static_cast<std::ptrdiff_t>(columns);
    for (auto row = values.begin(); row != values.end(); row += width) {
        JsonValue one = JsonValue::array();
        std::for_each(row, row + width, [&](double value) { one.add(rounded(value)); });
        rows.add(std::move(one));
    }
    return rows;
}

JsonValue tables_json(const LotFindings& findings) {
    JsonValue list = JsonValue::array();
    if (findings.summary.with_gains() == 0)
        return list;
    const int columns = findings.summary.kind->grid.width;
    for (size_t c = 0; c < all_colours.size(); ++c) {
        const NodeStatistics& nodes = findings.nodes[c];
        list.add(JsonValue::object({{"colour", name_of(all_colours[c])},
                                    {"median", rows_json(nodes.median, columns)},
                                    {"mean", rows_json(nodes.mean, columns)},
                                    {"deviation", rows_json(nodes.deviation, columns)}}));
    }
    return list;
}

JsonValue centre_json(const LotFindings& findings) {
    JsonValue channels = JsonValue::array(), correlation = JsonValue::array();
    for (size_t c = 0; c < all_colours.size() && findings.summary.centre_sums.modules > 0; ++c) {
        JsonValue object = JsonValue::object({{"colour", name_of(all_colours[c])}});
        for (const size_t axis : {size_t{0}, size_t{1}}) {
            const ValueCounts& values = findings.summary.centre[c][axis];
            object.add(
                axis == 0 ? "x" : "y",
                JsonValue::object({{"median", rounded(0.5 + median_of(values) / centre_units)},
                                   {"mean", rounded(0.5 + mean_of(values) / centre_units)},
                                   {"deviation", rounded(standard_deviation_of(values) / centre_units)}}));
        }
        channels.add(std::move(object));
    }
    for (const CentreCorrelation& pair : findings.correlations)
        correlation.add(
            JsonValue::object({{"colours", JsonValue::array({name_of(pair.first), name_of(pair.second)})},
                               {"x", number_or_null(pair.coefficient[0])},
                               {"y", number_or_null(pair.coefficient[1])}}));
    return JsonValue::object({{"modules", findings.summary.centre_sums.modules},
                              {"channels", std::move(channels)},
                              {"correlation", std::move(correlation)}});
}

JsonValue sequence_json(const LotFindings& findings) {
    const Sequence& sequence = findings.summary.sequence;
    JsonValue from = JsonValue::array(), modules = JsonValue::array(), drifts = JsonValue::array();
    for (const auto& [number, block] : sequence.blocks()) {
        from.add(number << sequence.shift());
        modules.add(block.modules);
    }
    for (const Drift& drift : findings.drifts) {
        JsonValue medians = JsonValue::array();
        for (const auto& median : drift.medians)
            medians.add(number_or_null(median));
        drifts.add(JsonValue::object({{"name", drift.name},
                                      {"plane", plane_json(drift.plane)},
                                      {"change", rounded(drift.change)},
                                      {"significance", rounded(drift.significance)},
                                      {"drifts", drift.found},
                                      {"blocks", std::move(medians)}}));
    }
    return JsonValue::object({{"serials_in_a_block", uint64_t{1} << sequence.shift()},
                              {"first_serials", std::move(from)},
                              {"modules", std::move(modules)},
                              {"series", std::move(drifts)}});
}

JsonValue module_json(const LotModule& module) {
    return JsonValue::object({{"serial", module.serial},
                              {"verdict", name_of(module.verdict)},
                              {"distance", rounded(module.distance)}});
}

JsonValue outliers_json(const LotDistances& distances) {
    JsonValue list = JsonValue::array();
    for (const LotOutlier& outlier : distances.listed()) {
        JsonValue object = module_json(outlier.module);
        object.add("severity", rounded(outlier.severity));
        object.add("reason", outlier.reason);
        list.add(std::move(object));
    }
    return JsonValue::object({{"count", distances.outliers()}, {"listed", std::move(list)}});
}

} // namespace

LotFindings::LotFindings(const LotSummary& of)
    : summary(of), correlations(centre_correlations(of.centre_sums)), drifts(drifts_of(of.sequence)) {
    for (size_t c = 0; c < nodes.size(); ++c)
        nodes[c] = node_statistics(of.gains.counts()[c]);
}

WidestSpread widest_spread(const LotFindings& findings, size_t colour) {
    const ResultGrid& grid = findings.summary.kind->grid;
    WidestSpread widest{-1, 0, 0};
    for (int j = 0; j < grid.height - 2; ++j)
        for (int i = 0; i < grid.width - 2; ++i) {
            const double spread =
                findings.nodes[colour].spread[static_cast<size_t>((j + 1) * grid.width + i + 1)];
            if (spread > widest.spread)
                widest = {spread, i, j};
        }
    return widest;
}

double usual_spread(const LotFindings& findings, size_t colour) {
    const ResultGrid& grid = findings.summary.kind->grid;
    std::vector<double> inner;
    for (int j = 1; j < grid.height - 1; ++j) {
        const auto row = findings.nodes[colour].spread.begin() + j * grid.width;
        inner.insert(inner.end(), row + 1, row + grid.width - 1);
    }
    const auto middle = inner.begin() + static_cast<std::ptrdiff_t>(inner.size() / 2);
    std::ranges::nth_element(inner, middle);
    return *middle;
}

JsonValue document_of(const LotFindings& findings) {
    const LotSummary& lot = findings.summary;
    const LinesLeftOut& left_out = lot.left_out;
    JsonValue document =
        JsonValue::object({{"modules", lot.modules()},
                           {"verdicts", counts_json(lot)},
                           {"yield", rounded(lot.yield())},
                           {"left_out", JsonValue::object({{"torn", left_out.torn},
                                                           {"bad", left_out.bad},
                                                           {"repeated", left_out.repeated},
                                                           {"other_kind", left_out.other_kind}})},
                           {"kind", lot.kind ? kind_json(*lot.kind) : JsonValue::null()},
                           {"settings", static_cast<uint64_t>(lot.settings.size())},
                           {"costs", costs_json(lot)},
                           {"checks", checks_json(lot)},
                           {"histograms", histograms_json(lot)},
                           {"numbers", numbers_json(lot)},
                           {"with_gains", lot.with_gains()},
                           {"channels", channels_json(findings)},
                           {"optical_centre", centre_json(findings)},
                           {"sequence", sequence_json(findings)}});
    const LotDistances* distances = findings.distances;
    const bool has_nearest = distances != nullptr && distances->nearest();
    document.add("nearest", has_nearest ? module_json(*distances->nearest()) : JsonValue::null());
    document.add("outliers", distances != nullptr ? outliers_json(*distances) : JsonValue::null());
    document.add("tables", tables_json(findings));
    return document;
}

} // namespace zerklsc::tool
