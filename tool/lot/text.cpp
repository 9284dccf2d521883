// text_of
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "io/text_table.h"
#include "lot/document.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

std::string yield_text(const LotSummary& lot) {
    std::string text = fmt::format("{} modules, yield {}:", lot.modules(), percent(lot.yield()));
    for (size_t i = 0; i < lot.verdicts.size(); ++i)
        text += fmt::format("{} {} {}", i == 0 ? "" : ",", lot.verdicts[i], module_verdict_names[i]);
    return text + "\n";
}

std::string costs_text(const LotSummary& lot) {
    if (lot.costs.empty())
        return "";
    std::vector<std::vector<std::string>> rows{{"lost by", "modules", "of all", "by it alone"}};
    for (const auto& [name, cost] : lot.dearest_first())
        rows.push_back({one_line(name), std::to_string(cost.lost),
                        percent(static_cast<double>(cost.lost) / static_cast<double>(lot.modules())),
                        std::to_string(cost.lost_alone)});
    return "\n" + text_table(rows);
}

std::string channels_text(const LotFindings& findings) {
    const LotSummary& lot = findings.summary;
    if (lot.with_gains() == 0)
        return "";
    const GainTables golden = golden_tables(lot);
    std::vector<std::vector<std::string>> rows{{fmt::format("gains of {}", lot.with_gains()),
                                                "largest median", "usual spread", "widest", "at node"}};
    for (size_t c = 0; c < all_colours.size(); ++c) {
        const WidestSpread widest = widest_spread(findings, c);
        rows.push_back(
            {name_of(all_colours[c]),
             fmt::format("{:.3f}", golden.largest_gain(plane_of_colour(golden.pattern, all_colours[c]))),
             percent(usual_spread(findings, c)), percent(widest.spread),
             fmt::format("{},{}", widest.i, widest.j)});
    }
    return "\n" + text_table(rows);
}

std::string centre_text(const LotFindings& findings) {
    const LotSummary& lot = findings.summary;
    if (lot.centre_sums.modules == 0)
        return "";
    std::vector<std::vector<std::string>> rows{{"optical centre", "x", "deviation", "y", "deviation"}};
    for (size_t c = 0; c < all_colours.size(); ++c) {
        rows.push_back({name_of(all_colours[c])});
        for (const ValueCounts& values : lot.centre[c]) {
            rows.back().push_back(percent(0.5 + median_of(values) / centre_units));
            rows.back().push_back(percent(standard_deviation_of(values) / centre_units));
        }
    }
    std::string text = "\n" + text_table(rows);
    const CentreCorrelation* least = nullptr;
    double smallest = 2;
    for (const CentreCorrelation& pair : findings.correlations)
        for (const auto& coefficient : pair.coefficient)
            if (coefficient && *coefficient < smallest) {
                smallest = *coefficient;
                least = &pair;
            }
    if (least != nullptr)
        text +=
            fmt::format("correlation of the centres between channels: {:.3f} or more, least for {} and {}\n",
                        smallest, name_of(least->first), name_of(least->second));
    return text;
}

std::string drifts_text(const LotFindings& findings) {
    const Sequence& sequence = findings.summary.sequence;
    if (sequence.blocks().size() < 2)
        return "";
    std::string text = fmt::format("\nover serial numbers from {} on, in {} blocks of {}:",
                                   sequence.blocks().begin()->first << sequence.shift(),
                                   sequence.blocks().size(), uint64_t{1} << sequence.shift());
    bool any = false;
    for (const Drift& drift : findings.drifts)
        if (drift.found) {
            any = true;
            text += fmt::format("\n  {}{} drifts by {:+.4f} (significance {:+.1f})", drift.name,
                                drift.plane.empty() ? "" : " of " + drift.plane, drift.change,
                                drift.significance);
        }
    return text + (any ? "\n" : " no drift\n");
}

std::string distances_text(const LotFindings& findings) {
    if (findings.distances == nullptr)
        return "";
    constexpr size_t most_shown = 10;
    std::string text = "\n";
    if (const auto& nearest = findings.distances->nearest())
        text += fmt::format("nearest to the golden tables: {}, {:.2f} deviations\n",
                            one_line(nearest->serial), nearest->distance);
    if (findings.summary.modules() < LotDistances::least_modules)
        return text
               + fmt::format("outliers are told in lots of {} modules or more\n",
                             LotDistances::least_modules);
    const uint64_t outliers = findings.distances->outliers();
    text += fmt::format("{} outlier{}{}\n", outliers, outliers == 1 ? "" : "s", outliers == 0 ? "" : ":");
    const auto& listed = findings.distances->listed();
    for (size_t i = 0; i < std::min(listed.size(), most_shown); ++i)
        text += fmt::format("  {} ({}): {}\n", one_line(listed[i].module.serial),
                            name_of(listed[i].module.verdict), listed[i].reason);
    if (outliers > most_shown)
        text += fmt::format("  and {} more; the document of --json and the page list {}\n",
                            outliers - most_shown, listed.size());
    return text;
}

} // namespace

std::string text_of(const LotFindings& findings) {
    const LotSummary& lot = findings.summary;
    return (lot.kind ? text_of(*lot.kind) + "\n" : "") + yield_text(lot) + costs_text(lot)
           + channels_text(findings) + centre_text(findings) + drifts_text(findings)
           + distances_text(findings);
}

} // namespace zerklsc::tool
