// headerless_format: samples in 16-bit words, row by row, and nothing that says how many.
#include <fmt/format.h>

#include "failure.h"
#include "io/fitting_sizes.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

bool recognises_headerless(const InputFile&, const RawHints& hints) {
    return hints.width != 0 && hints.height != 0;
}

RawFrame read_headerless(InputFile& file, const RawHints& hints) {
    const RowLayout layout = headerless_layout(file, hints, Packing::words);
    RawFrame frame;
    frame.format = fmt::format("headerless 16-bit words, {} endian", hints.big_endian ? "big" : "little");
    frame.width = hints.width;
    frame.height = hints.height;
    frame.bits = hints.bits != 0 ? hints.bits : usual_bits;
    frame.word_bits = 16;
    frame.big_endian = hints.big_endian;
    frame.samples = read_word_rows(file, layout, hints.big_endian);
    return frame;
}

void write_headerless(const RawFrame& frame, const ByteSink& sink) {
    write_words(frame.samples, frame.big_endian, sink);
}

} // namespace

const RawFormat headerless_format{"headerless 16-bit words", ".raw", recognises_headerless, read_headerless,
                                  write_headerless};

} // namespace zerklsc::tool
