// All that is kept of a lot: sums and counts that are the same in whatever order its modules come, and that
// parts of it add up to exactly.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "imaging/gain_tables.h"
#include "line/result_line.h"
#include "lot/gain_counts.h"
#include "lot/sequence.h"
#include "lot/serial_set.h"
#include "lot/value_counts.h"

namespace zerklsc::tool {

// What is built into products.
constexpr bool is_good(ModuleVerdict verdict) {
    return verdict == ModuleVerdict::pass || verdict == ModuleVerdict::warn;
}

// What modules must share so that their nodes can be compared.
struct LotKind {
    int width = 0, height = 0, bits = 0;
    BayerPattern pattern = BayerPattern::rggb;
    ResultGrid grid;

    bool operator==(const LotKind& other) const;
    // The tables of a module of this kind, with gains of 0.
    GainTables tables() const;
};

// Of a module with a frame and a grid.
LotKind kind_of(const ResultLine& result);

// A data failure, which names `place`, where frame, step and size of the tables do not go together.
void check_kind(const LotKind& kind, const std::string& place);

// "4208 x 3120 RGGB, 10 bits, orvel, step 64, radius 8, shading 100 %, tables of 35 x 27".
std::string text_of(const LotKind& kind);

// Lines of result files that count for nothing else.
struct LinesLeftOut {
    uint64_t torn = 0;       // the last line of a file, without its end
    uint64_t bad = 0;        // no result
    uint64_t repeated = 0;   // a serial that another line had before
    uint64_t other_kind = 0; // not comparable with the first module

    uint64_t all() const { return torn + bad + repeated + other_kind; }
};

// A check of a plane, or a number of a colour; no plane for the whole frame.
using MeasureName = std::pair<std::string, std::string>;

struct CheckCounts {
    std::array<ValueCounts, 3> values;        // four_digits_of() by verdict
    std::array<uint64_t, 3> without_number{}; // by verdict
};

// What cost modules, a check or else a verdict.
struct Cost {
    uint64_t lost = 0;       // modules that it refused
    uint64_t lost_alone = 0; // and that nothing else refused
};

// Coordinates of optical centres are counted in whole units from the middle of the frame: this many to its
// width or height.
constexpr double centre_units = 100000;
// What is farther from the middle counts as so far, so that squares and their sums fit.
constexpr double centre_reach = 1.5;

// Sums for the correlation of the optical centre between colours.
struct CentreSums {
    static constexpr size_t axes = 2;
    uint64_t modules = 0;
    std::array<ByColour<int64_t>, axes> sum{};
    std::array<ByColour<ByColour<int64_t>>, axes> products{};
};

struct LotSummary {
    std::array<uint64_t, module_verdict_names.size()> verdicts{};
    LinesLeftOut left_out;
    std::optional<LotKind> kind; // nothing before the first module with a grid
    std::map<std::string, Cost> costs;
    std::map<MeasureName, CheckCounts> checks;
    std::map<MeasureName, ValueCounts> numbers;
    GainCounts gains;
    std::array<ValueCounts, 4> black;            // by plane
    ByColour<std::array<ValueCounts, 2>> centre; // x, y
    CentreSums centre_sums;
    Sequence sequence;
    std::map<std::string, uint64_t> settings; // modules by what they were made with
    SerialSet serials;

    // Sums of squares and counts fit up to here.
    static constexpr uint64_t most_modules = uint64_t{1} << 28;

    uint64_t modules() const;
    uint64_t with_gains() const;
    // The part of the modules that are good.
    double yield() const;
    // What cost modules; where two cost as many, in the order of their names.
    std::vector<std::pair<std::string, Cost>> dearest_first() const;

    // Adds a module, or counts its line as left out. A data failure for a module that is none, and nothing is
    // changed then.
    enum class Added { yes, repeated, other_kind };
    Added add(const ResultLine& result, const std::string& place);

    // Adds the modules of another part of the lot. A data failure, which names it, where both hold a serial,
    // or modules of another kind.
    void add(const LotSummary& other, const std::string& name);
};

} // namespace zerklsc::tool
