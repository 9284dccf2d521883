// Any bytes as lines of a results file: refused in words, or written again to a line that reads the same, and
// counted by a lot whose summary a file keeps.
#include "line/result_line.h"
#include "lot/summary_file.h"
#include "support/input.h"
#include "support/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    using namespace zerklsc::tool;
    const std::string bytes = Input(data, size).rest();
    LotSummary lot;
    for (size_t from = 0, to = 0; to != std::string::npos; from = to + 1) {
        to = bytes.find('\n', from);
        read_or_refused([&] {
            const ResultLine result = result_line_of(bytes.substr(from, to - from), "fuzz");
            const std::string text = text_of(result);
            expect(text_of(result_line_of(text, "fuzz")) == text && text.find('\n') == std::string::npos);
            lot.add(result, "fuzz");
        });
    }
    const std::string summary = encode_summary(lot);
    expect(encode_summary(decode_summary(summary, "fuzz")) == summary);
    return 0;
}
