// pgm_format: binary PGM (P5) of bytes, or of 16-bit samples with the most significant byte first.
//
// A comment line "# zerklsc pattern=RGGB black=64 bits=10 white=1000" in the header says what PGM has no
// field for.
#include <algorithm>
#include <bit>
#include <charconv>
#include <optional>
#include <sstream>

#include <fmt/format.h>

#include "failure.h"
#include "io/black_level_text.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

struct Header {
    int width = 0, height = 0, maxval = 0;
    std::string comments; // the text of all of them, a line each
    size_t size = 0;      // bytes before the first sample
};

// Takes the header apart from its front; what is left never reaches beyond the bytes that are there.
class HeaderParser {
  public:
    explicit HeaderParser(const InputFile& file) : path_(file.path()), left_(file.head()) {}

    Header parse() {
        const size_t size = left_.size();
        left_.remove_prefix(2);
        header_.width = number("width", 1, largest_side);
        header_.height = number("height", 1, largest_side);
        header_.maxval = number("maxval", 1, 65535);
        // Exactly one white-space character stands between the maxval and the samples.
        if (left_.empty() || !is_space(left_.front()))
            data_failure("{}: the PGM header does not end after its maxval: write the file again", path_);
        header_.size = size - left_.size() + 1;
        return header_;
    }

  private:
    static bool is_space(char c) { return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos; }

    void skip_space_and_comments() {
        while (!left_.empty() && (is_space(left_.front()) || left_.front() == '#')) {
            size_t length = 1;
            if (left_.front() == '#') {
                length = std::min(left_.find('\n'), left_.size());
                header_.comments += left_.substr(1, length - 1);
                header_.comments += '\n';
            }
            left_.remove_prefix(length);
        }
    }

    int number(const char* field, int lowest, int highest) {
        skip_space_and_comments();
        int value = 0;
        const auto [end, error] = std::from_chars(left_.data(), left_.data() + left_.size(), value);
        if (error != std::errc{} || value < lowest || value > highest)
            data_failure("{}: the {} in the PGM header is not a number from {} to {}: write the file again",
                         path_, field, lowest, highest);
        left_.remove_prefix(static_cast<size_t>(end - left_.data()));
        return value;
    }

    const std::string& path_;
    std::string_view left_;
    Header header_;
};

bool recognises_pgm(const InputFile& file, const RawHints& hints) {
    return extension_of(file.path()) == ".pgm" || (file.head().starts_with("P5") && hints.width == 0);
}

// What the comments say.
struct Remarks {
    std::optional<BayerPattern> pattern;
    std::optional<BlackLevel> black;
    std::optional<int> bits, white;
};

std::optional<int> number_from(const std::string& text, int lowest, int highest) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < lowest || value > highest)
        return std::nullopt;
    return value;
}

// Stores what a word of the comments says; it may be said again, but not differently.
template <class T>
void set_remark(std::optional<T>& remark, const std::optional<T>& value, const std::string& path,
                const std::string& word) {
    if (!value)
        data_failure(
            "{}: \"{}\" in the comment of the PGM header is not understood: expected pattern=RGGB, GRBG, "
            "GBRG or BGGR, black=LEVEL or black=L0,L1,L2,L3, bits=8 to 16, and white=LEVEL",
            path, word);
    if (remark && *remark != *value)
        data_failure("{}: \"{}\" in the comment of the PGM header contradicts what stands before it", path,
                     word);
    remark = value;
}

// Words of other names are left to whoever wrote them.
void read_remark(Remarks& remarks, const std::string& path, const std::string& word) {
    const std::string value = word.substr(std::min(word.find('=') + 1, word.size()));
    if (word.starts_with("pattern="))
        set_remark(remarks.pattern, bayer_pattern_from(value), path, word);
    else if (word.starts_with("black="))
        set_remark(remarks.black, black_level_from(value), path, word);
    else if (word.starts_with("bits="))
        set_remark(remarks.bits, number_from(value, 8, 16), path, word);
    else if (word.starts_with("white="))
        set_remark(remarks.white, number_from(value, 1, 65535), path, word);
}

Remarks read_remarks(const std::string& path, const std::string& comments) {
    Remarks remarks;
    std::istringstream lines(comments);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word != "zerklsc")
            continue;
        while (words >> word)
            read_remark(remarks, path, word);
    }
    return remarks;
}

// Everything but the samples.
RawFrame describe(const std::string& path, const Header& header, const RawHints& hints) {
    const Remarks remarks = read_remarks(path, header.comments);
    RawFrame frame;
    frame.format = fmt::format("{}-bit PGM, maxval {}", header.maxval < 256 ? 8 : 16, header.maxval);
    frame.width = header.width;
    frame.height = header.height;
    frame.word_bits = std::max(8, static_cast<int>(std::bit_width(static_cast<unsigned>(header.maxval))));
    frame.bits = remarks.bits.value_or(frame.word_bits);
    frame.pattern = remarks.pattern;
    frame.black = remarks.black;
    frame.white = remarks.white;
    if (!frame.white && header.maxval != frame.full_scale() && frame.bits == frame.word_bits)
        frame.white = header.maxval;
    if (frame.bits != frame.word_bits && hints.bits == 0 && !hints.left_aligned)
        data_failure("{}: contradicts itself: its comment says {} bits, and its maxval of {} says {}: give "
                     "the right --bits, or --align left",
                     path, frame.bits, header.maxval, frame.word_bits);
    if (frame.white_level() > header.maxval && !hints.white)
        data_failure("{}: contradicts itself: its comment says a white level of {}, above its maxval of {}: "
                     "give the right --white-level",
                     path, frame.white_level(), header.maxval);
    return frame;
}

void widen_bytes(const uint8_t* row, uint16_t* samples, size_t width) {
    std::copy_n(row, width, samples);
}

void check_maxval(const RawFrame& frame, const std::string& path, int maxval) {
    // A maxval of all ones bounds what the bit depth bounds.
    if (std::has_single_bit(static_cast<unsigned>(maxval) + 1))
        return;
    const int largest = largest_sample(frame);
    if (largest > maxval)
        data_failure("{}: contradicts itself: it holds a sample of {}, above its maxval of {}", path, largest,
                     maxval);
}

RawFrame read_pgm(InputFile& file, const RawHints& hints) {
    const std::string& path = file.path();
    if (!file.head().starts_with("P5"))
        data_failure("{}: is not a binary PGM: it does not begin with P5", path);
    const Header header = HeaderParser(file).parse();
    RawFrame frame = describe(path, header, hints);
    const uint64_t row_bytes = (header.maxval < 256 ? 1 : 2) * static_cast<uint64_t>(header.width);
    const RowLayout layout{header.width, header.height, row_bytes, row_bytes, header.size};
    if (!layout.fits(file.size()))
        data_failure("{}: holds {} bytes of samples, but {} x {} of {} bits are {}: the file is {}", path,
                     *file.size() - std::min<uint64_t>(*file.size(), header.size), header.width,
                     header.height, header.maxval < 256 ? 8 : 16, layout.longest_end() - header.size,
                     *file.size() < layout.longest_end() ? "truncated" : "longer than one frame");
    frame.samples =
        header.maxval < 256 ? read_rows(file, layout, widen_bytes) : read_word_rows(file, layout, true);
    check_maxval(frame, path, header.maxval);
    return frame;
}

void write_pgm(const RawFrame& frame, const ByteSink& sink) {
    std::string white;
    if (frame.white_level() != frame.full_scale())
        white = fmt::format(" white={}", frame.white_level());
    sink(fmt::format("P5\n# zerklsc pattern={} black={}{} bits={}\n{} {}\n{}\n", name_of(*frame.pattern),
                     text_of(*frame.black), white, frame.bits, frame.width, frame.height,
                     frame.full_scale()));
    write_words(frame.samples, true, sink);
}

} // namespace

const RawFormat pgm_format{"PGM", ".pgm", recognises_pgm, read_pgm, write_pgm};

} // namespace zerklsc::tool
