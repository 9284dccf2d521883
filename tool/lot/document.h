// What is said of a lot: as JSON and as text.
#pragma once

#include <string>

#include "io/json_value.h"
#include "lot/distances.h"
#include "lot/statistics.h"

namespace zerklsc::tool {

// All that is known of a lot. Its parts are left out as far as no module had them.
struct LotFindings {
    const LotSummary& summary;
    ByColour<NodeStatistics> nodes;
    std::vector<CentreCorrelation> correlations;
    std::vector<Drift> drifts;
    const LotDistances* distances = nullptr; // nothing without a second round over the results

    explicit LotFindings(const LotSummary& of);
};

// The inner node whose gain spreads most.
struct WidestSpread {
    double spread;
    int i, j;
};
WidestSpread widest_spread(const LotFindings& findings, size_t colour);
// The median of the inner nodes' spreads.
double usual_spread(const LotFindings& findings, size_t colour);

JsonValue document_of(const LotFindings& findings);
std::string text_of(const LotFindings& findings);

} // namespace zerklsc::tool
