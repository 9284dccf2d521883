// What a lot's summary tells: numbers that depend on its modules alone.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "lot/summary.h"

namespace zerklsc::tool {

// Of each node of a colour's table, row by row, in units of a gain (1024 = 1.0).
struct NodeStatistics {
    std::vector<double> median, mean, deviation;
    std::vector<double> spread; // robust deviation, as a fraction of the median
};
NodeStatistics node_statistics(const std::vector<ValueCounts>& gains);

// Less than this part of the median does not count as a deviation: it is noise and rounding.
constexpr double least_spread = 1.0 / 512;

// The coefficient of correlation (K. Pearson, 1895) of two colours' optical centres, by axis; nothing where a
// coordinate is the same in all modules or there are fewer than three of them.
struct CentreCorrelation {
    Colour first, second;
    std::array<std::optional<double>, 2> coefficient;
};
std::vector<CentreCorrelation> centre_correlations(const CentreSums& sums);

// How something changes over the blocks of a sequence.
struct Drift {
    std::string name;                           // "corner gain"
    std::string plane;                          // a colour, or nothing
    std::vector<std::optional<double>> medians; // of each block that has modules
    // The median of the slopes between any two blocks (P. K. Sen, "Estimates of the regression coefficient
    // based on Kendall's tau", JASA 63, 1968), over the whole sequence.
    double change = 0;
    // The test statistic for a trend (H. B. Mann, "Nonparametric tests against trend", Econometrica 13,
    // 1945): about normal where there is none.
    double significance = 0;
    bool found = false;
};
constexpr double noticeable_significance = 3;

// The corner gain of each colour as a factor, the optical centre in both directions, and the yield.
std::vector<Drift> drifts_of(const Sequence& sequence);

// The median tables of a lot with gains.
GainTables golden_tables(const LotSummary& summary);

} // namespace zerklsc::tool
