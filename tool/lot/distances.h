// Which module of a lot is nearest to its medians, and which are far from them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "line/result_line.h"
#include "lot/summary.h"

namespace zerklsc::tool {

struct LotModule {
    std::string serial;
    ModuleVerdict verdict = ModuleVerdict::error;
    double distance = 0; // root mean square of the nodes' deviations, in the lot's own
};

struct LotOutlier {
    LotModule module;
    double severity = 0; // the largest of what is beyond its limit, in that limit
    std::string reason;
};

// Takes the modules of a lot a second time, in any order, once its medians are known. A deviation is a
// modified z-score: the distance from the median in robust standard deviations, outlying beyond 3.5 (B.
// Iglewicz, D. C. Hoaglin, "How to Detect and Handle Outliers", 1993).
class LotDistances {
  public:
    // Fewer modules have no deviation to speak of.
    static constexpr uint64_t least_modules = 10;
    static constexpr size_t most_listed = 200;
    static constexpr double limit = 3.5;    // of a plane's nodes, root mean square, and of a coordinate
    static constexpr double node_limit = 7; // of one node among thousands

    explicit LotDistances(const LotSummary& summary);

    void add(const ResultLine& result);

    // Of the good modules.
    const std::optional<LotModule>& nearest() const { return nearest_; }
    uint64_t outliers() const { return outliers_; }
    // The most severe of them, that one first.
    const std::vector<LotOutlier>& listed() const { return listed_; }

  private:
    struct Typical {
        double median, deviation;
    };
    struct Found;

    void add_nodes(const ResultLine& result, size_t colour, Found& found) const;
    void add_centre(const ResultLine& result, Found& found) const;
    void list(LotOutlier outlier);

    int columns_ = 0, rows_ = 0;
    ByColour<std::vector<Typical>> nodes_;
    ByColour<std::array<Typical, 2>> centre_{};
    std::optional<LotModule> nearest_;
    uint64_t outliers_ = 0;
    std::vector<LotOutlier> listed_;
};

} // namespace zerklsc::tool
