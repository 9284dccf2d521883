// Any bytes as lines of a results file: refused in words, or written again to a line that reads the same, and
// counted by a lot whose summary a file keeps.
#include <cstdlib>
#include <string>

#include "failure.h"
#include "line/result_line.h"
#include "lot/summary_file.h"
#include "support/input.h"

namespace {

using namespace zerklsc::tool;

void read_line(const std::string& line, LotSummary& lot) {
    const ResultLine result = result_line_of(line, "fuzz");
    const std::string text = text_of(result);
    if (text_of(result_line_of(text, "fuzz")) != text || text.find('\n') != std::string::npos)
        std::abort();
    lot.add(result, "fuzz");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    LotSummary lot;
    for (size_t from = 0, to = 0; to != std::string::npos; from = to + 1) {
        to = bytes.find('\n', from);
        try {
            read_line(bytes.substr(from, to == std::string::npos ? to : to - from), lot);
        } catch (const Failure&) {
            // Refused in words, as it should be.
        }
    }
    const std::string summary = encode_summary(lot);
    if (encode_summary(decode_summary(summary, "fuzz")) != summary)
        std::abort();
    return 0;
}
