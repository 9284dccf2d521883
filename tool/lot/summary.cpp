// LotKind, LotSummary
#include "lot/summary.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

#include <fmt/format.h>

#include "failure.h"
#include "lot/four_digits.h"

namespace zerklsc::tool {
namespace {

auto fields_of(const LotKind& kind) {
    const ResultGrid& grid = kind.grid;
    return std::tuple(kind.width, kind.height, kind.bits, kind.pattern, grid.algorithm, grid.step, grid.width,
                      grid.height, grid.filter_radius, grid.shading_percent);
}

// The mean of the four nodes at the corners of the frame, border left out.
int corner_gain(const std::vector<uint16_t>& gains, const ResultGrid& grid) {
    const auto at = [&](int i, int j) { return int{gains[static_cast<size_t>(j * grid.width + i)]}; };
    const int right = grid.width - 2, bottom = grid.height - 2;
    return (at(1, 1) + at(right, 1) + at(1, bottom) + at(right, bottom) + 2) / 4;
}

// A coordinate in whole units from the middle.
int32_t place_of(double centre) {
    return static_cast<int32_t>(
        std::lround(std::clamp(centre - 0.5, -centre_reach, centre_reach) * centre_units));
}

void add_costs(const ResultLine& result, std::map<std::string, Cost>& costs) {
    std::set<std::string> causes;
    for (const ResultCheck& check : result.checks)
        if (check.verdict == Verdict::refuse)
            causes.insert(check.name);
    if (causes.empty())
        causes.insert(name_of(result.verdict));
    for (const std::string& cause : causes) {
        Cost& cost = costs[cause];
        ++cost.lost;
        cost.lost_alone += causes.size() == 1 ? 1 : 0;
    }
}

void add_numbers(const ResultNumbers& numbers, std::map<MeasureName, ValueCounts>& counts) {
    const auto add = [&](const char* name, const char* plane, double value) {
        counts[{name, plane}].add(four_digits_of(value));
    };
    const std::pair<const char*, const std::optional<ByColour<double>>&> by_colour[] = {
        {"flatness", numbers.flatness},
        {"corner", numbers.corner},
        {"predicted_flatness", numbers.predicted_flatness}};
    for (const auto& [name, values] : by_colour)
        for (const Colour colour : all_colours)
            if (values)
                add(name, name_of(colour), (*values)[static_cast<size_t>(colour)]);
    if (numbers.otp_bytes)
        add("otp_bytes", "", static_cast<double>(*numbers.otp_bytes));
    if (numbers.otp_loss)
        add("otp_loss", "", *numbers.otp_loss);
}

void add_checks(const std::vector<ResultCheck>& checks, std::map<MeasureName, CheckCounts>& counts) {
    for (const ResultCheck& check : checks) {
        CheckCounts& count = counts[{check.name, check.plane}];
        const auto verdict = static_cast<size_t>(check.verdict);
        if (check.value)
            count.values[verdict].add(four_digits_of(*check.value));
        else
            ++count.without_number[verdict];
    }
}

using Centre = ByColour<std::array<double, 2>>;

void add_centre(const Centre& centre, LotSummary& summary) {
    CentreSums& sums = summary.centre_sums;
    ++sums.modules;
    for (size_t axis = 0; axis < CentreSums::axes; ++axis) {
        ByColour<int64_t> at;
        for (size_t c = 0; c < at.size(); ++c) {
            at[c] = place_of(centre[c][axis]);
            summary.centre[c][axis].add(place_of(centre[c][axis]));
            sums.sum[axis][c] += at[c];
            for (size_t other = 0; other <= c; ++other)
                sums.products[axis][c][other] += at[c] * at[other];
        }
    }
}

void add_to_sequence(const ResultLine& result, Sequence& sequence) {
    const auto number = serial_number(result.serial);
    if (!number)
        return;
    SequenceBlock block;
    block.modules = 1;
    block.good = is_good(result.verdict) ? 1 : 0;
    if (result.gains)
        for (size_t c = 0; c < block.corner_gain.size(); ++c)
            block.corner_gain[c].add(corner_gain((*result.gains)[c], *result.grid));
    if (result.optical_centre)
        for (size_t axis = 0; axis < block.centre.size(); ++axis) {
            int32_t sum = 0;
            for (const auto& point : *result.optical_centre)
                sum += place_of(point[axis]);
            block.centre[axis].add(sum);
        }
    sequence.add(*number, block);
}

template <class Key, class Value, class Add>
void add_map(std::map<Key, Value>& to, const std::map<Key, Value>& from, const Add& add) {
    for (const auto& [key, value] : from)
        add(to[key], value);
}

void add_sums(CentreSums& to, const CentreSums& from) {
    to.modules += from.modules;
    for (size_t axis = 0; axis < CentreSums::axes; ++axis)
        for (size_t c = 0; c < to.sum[axis].size(); ++c) {
            to.sum[axis][c] += from.sum[axis][c];
            for (size_t other = 0; other <= c; ++other)
                to.products[axis][c][other] += from.products[axis][c][other];
        }
}

void add_lines(LinesLeftOut& to, const LinesLeftOut& from) {
    to.torn += from.torn;
    to.bad += from.bad;
    to.repeated += from.repeated;
    to.other_kind += from.other_kind;
}

// A data failure, which names the part, where it is no part of the same lot.
void check_part(const LotSummary& whole, const LotSummary& part, const std::string& name) {
    if (whole.kind && part.kind && *whole.kind != *part.kind)
        data_failure("{}: holds modules of another kind, {}, than {} before it: merge those of one kind",
                     name, text_of(*part.kind), text_of(*whole.kind));
    if (whole.modules() + part.modules() > LotSummary::most_modules)
        data_failure("{}: makes more than the {} modules of which a lot may consist", name,
                     LotSummary::most_modules);
}

// A data failure, which names where they come from, for serials that are there.
void take_serials(SerialSet& serials, const SerialSet& more, const std::string& name) {
    uint64_t twice = 0;
    for (const uint64_t mark : more.sorted())
        twice += serials.insert(mark) ? 0 : 1;
    if (twice > 0)
        data_failure(
            "{}: holds {} serials that were there before: give the results themselves, of which each "
            "serial counts once, or each part once",
            name, twice);
}

} // namespace

bool LotKind::operator==(const LotKind& other) const {
    return fields_of(*this) == fields_of(other);
}

GainTables LotKind::tables() const {
    GainTables tables;
    tables.raw_width = width;
    tables.raw_height = height;
    tables.bits = bits;
    tables.pattern = pattern;
    tables.step = grid.step;
    tables.algorithm = grid.algorithm;
    tables.filter_radius = grid.filter_radius;
    tables.shading_percent = grid.shading_percent;
    tables.set_table_size();
    return tables;
}

LotKind kind_of(const ResultLine& result) {
    return {result.frame->width, result.frame->height, result.frame->bits, result.frame->pattern,
            *result.grid};
}

void check_kind(const LotKind& kind, const std::string& place) {
    const auto within = [](int value, int lowest, int highest) {
        return value >= lowest && value <= highest;
    };
    const ResultGrid& grid = kind.grid;
    const bool sound = within(kind.width, 2, largest_side) && within(kind.height, 2, largest_side)
                       && kind.width % 2 == 0 && kind.height % 2 == 0 && within(kind.bits, 8, 16)
                       && within(static_cast<int>(kind.pattern), 0, 3) && within(grid.algorithm, 0, 4)
                       && within(grid.step, smallest_step, largest_step);
    const GainTables tables = sound ? kind.tables() : GainTables();
    if (!sound || tables.table_width != grid.width || tables.table_height != grid.height)
        data_failure("{}: tables of {} x {} do not go with frames of {} x {} and step {}", place, grid.width,
                     grid.height, kind.width, kind.height, grid.step);
}

std::string text_of(const LotKind& kind) {
    return fmt::format("{} x {} {}, {} bits, {}, step {}, radius {}, shading {} %, tables of {} x {}",
                       kind.width, kind.height, name_of(kind.pattern), kind.bits,
                       algorithm_name(kind.grid.algorithm), kind.grid.step, kind.grid.filter_radius,
                       kind.grid.shading_percent, kind.grid.width, kind.grid.height);
}

uint64_t LotSummary::modules() const {
    return std::accumulate(verdicts.begin(), verdicts.end(), uint64_t{0});
}

uint64_t LotSummary::with_gains() const {
    return gains.counts()[0].empty() ? 0 : gains.counts()[0][0].total();
}

double LotSummary::yield() const {
    uint64_t good = 0;
    for (size_t i = 0; i < verdicts.size(); ++i)
        good += is_good(static_cast<ModuleVerdict>(i)) ? verdicts[i] : 0;
    return modules() == 0 ? 0 : static_cast<double>(good) / static_cast<double>(modules());
}

std::vector<std::pair<std::string, Cost>> LotSummary::dearest_first() const {
    std::vector<std::pair<std::string, Cost>> sorted(costs.begin(), costs.end());
    std::ranges::sort(sorted, [](const auto& a, const auto& b) {
        return a.second.lost != b.second.lost ? a.second.lost > b.second.lost : a.first < b.first;
    });
    return sorted;
}

LotSummary::Added LotSummary::add(const ResultLine& result, const std::string& place) {
    if (result.frame && result.grid) {
        const LotKind own = kind_of(result);
        if (kind && own != *kind)
            return ++left_out.other_kind, Added::other_kind;
        if (!kind)
            check_kind(own, place);
        kind = own;
    } else if (result.gains)
        data_failure("{}: has gains and neither frame nor grid", place);
    if (modules() == most_modules)
        data_failure("{}: is one module more than the {} of which a lot may consist", place, most_modules);
    if (!serials.insert(mark_of(result.serial)))
        return ++left_out.repeated, Added::repeated;
    ++verdicts[static_cast<size_t>(result.verdict)];
    if (!is_good(result.verdict))
        add_costs(result, costs);
    ++settings[result.settings.value_or("")];
    add_checks(result.checks, checks);
    add_numbers(result.numbers, numbers);
    if (result.optical_centre)
        add_centre(*result.optical_centre, *this);
    add_to_sequence(result, sequence);
    if (result.gains) {
        gains.add(*result.gains);
        for (size_t plane = 0; plane < black.size(); ++plane)
            black[plane].add(result.frame->black[plane]);
    }
    return Added::yes;
}

void LotSummary::add(const LotSummary& other, const std::string& name) {
    check_part(*this, other, name);
    take_serials(serials, other.serials, name);
    if (other.kind)
        kind = other.kind;
    for (size_t i = 0; i < verdicts.size(); ++i)
        verdicts[i] += other.verdicts[i];
    add_lines(left_out, other.left_out);
    add_map(costs, other.costs, [](Cost& to, const Cost& from) {
        to.lost += from.lost;
        to.lost_alone += from.lost_alone;
    });
    add_map(checks, other.checks, [](CheckCounts& to, const CheckCounts& from) {
        for (size_t i = 0; i < to.values.size(); ++i) {
            to.values[i].add(from.values[i]);
            to.without_number[i] += from.without_number[i];
        }
    });
    const auto add_counts = [](ValueCounts& to, const ValueCounts& from) { to.add(from); };
    add_map(numbers, other.numbers, add_counts);
    add_map(settings, other.settings, [](uint64_t& to, uint64_t from) { to += from; });
    for (size_t c = 0; c < all_colours.size(); ++c) {
        std::vector<ValueCounts>& nodes = gains.counts()[c];
        const std::vector<ValueCounts>& more = other.gains.counts()[c];
        nodes.resize(std::max(nodes.size(), more.size()));
        for (size_t node = 0; node < more.size(); ++node)
            nodes[node].add(more[node]);
        black[c].add(other.black[c]);
        for (size_t axis = 0; axis < CentreSums::axes; ++axis)
            centre[c][axis].add(other.centre[c][axis]);
    }
    add_sums(centre_sums, other.centre_sums);
    sequence.add(other.sequence);
}

} // namespace zerklsc::tool
