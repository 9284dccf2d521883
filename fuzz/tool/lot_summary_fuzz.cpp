// Any bytes as a lot's summary: refused in words, or merged and evaluated to finite numbers. The first byte
// says whether they get a first line and a checksum that are right, which chance never finds.
#include <cmath>
#include <cstdlib>
#include <string>

#include <zlib.h>

#include "failure.h"
#include "lot/statistics.h"
#include "lot/summary_file.h"
#include "support/input.h"

namespace {

using namespace zerklsc::tool;

std::string mended(const std::string& body) {
    const std::string empty = encode_summary(LotSummary());
    std::string bytes = empty.substr(0, empty.find('\n') + 1) + body;
    const auto checksum = crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(checksum >> shift);
    return bytes;
}

void expect_finite(double value) {
    if (!std::isfinite(value))
        std::abort();
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
    if (encode_summary(merged) != encoded)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const bool mend = (input.take<uint8_t>() & 1) != 0;
    const std::vector<uint8_t> rest = input.rest();
    const std::string bytes(rest.begin(), rest.end());
    try {
        read_summary(mend ? mended(bytes) : bytes);
    } catch (const Failure&) {
        // Refused in words, as it should be.
    }
    return 0;
}
