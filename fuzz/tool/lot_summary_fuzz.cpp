// Any bytes as a lot's summary: refused in words, or merged and evaluated to finite numbers. The first byte
// says whether they get a first line and a checksum that are right, which chance never finds.
#include <cmath>

#include "lot/statistics.h"
#include "lot/summary_file.h"
#include "support/input.h"
#include "support/reader.h"

namespace {

using namespace zerklsc::fuzz;
using namespace zerklsc::tool;

std::string mended(const std::string& body) {
    const std::string empty = encode_summary(LotSummary());
    const std::string bytes = empty.substr(0, empty.find('\n') + 1) + body;
    return bytes + checksum_of(bytes);
}

void expect_finite(double value) {
    expect(std::isfinite(value));
}

void evaluate(const LotSummary& summary) {
    for (const auto& plane : summary.gains.counts()) {
        const NodeStatistics nodes = node_statistics(plane);
        for (const auto* values : {&nodes.median, &nodes.mean, &nodes.deviation, &nodes.spread})
            for (const double value : *values)
                expect_finite(value);
    }
    for (const CentreCorrelation& correlation : centre_correlations(summary.centre_sums))
        for (const auto& coefficient : correlation.coefficient)
            expect_finite(coefficient.value_or(0));
    for (const Drift& drift : drifts_of(summary.sequence)) {
        expect_finite(drift.change);
        expect_finite(drift.significance);
        for (const auto& median : drift.medians)
            expect_finite(median.value_or(0));
    }
    expect_finite(summary.yield());
    if (summary.with_gains() > 0)
        golden_tables(summary);
}

void read_summary(const std::string& bytes) {
    const LotSummary summary = decode_summary(bytes, "fuzz");
    evaluate(summary);
    const std::string encoded = encode_summary(summary);
    LotSummary merged;
    merged.add(decode_summary(encoded, "fuzz"), "fuzz");
    expect(encode_summary(merged) == encoded);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool mend = (input.take<uint8_t>() & 1) != 0;
    return read_or_refused([&] { read_summary(mend ? mended(input.rest()) : input.rest()); });
}
