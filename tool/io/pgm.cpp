// pgm_format: binary PGM (P5) of 16-bit samples, most significant byte first.
//
// A comment line "# zerklsc pattern=RGGB black=64 bits=10" in the header says what PGM has no field for.
#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <optional>
#include <sstream>

#include <fmt/format.h>

#include "failure.h"
#include "io/black_level_text.h"
#include "io/input_file.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

constexpr int largest_side = 65534;

struct Header {
    int width = 0, height = 0, maxval = 0;
    std::string comments; // the text of all of them, a line each
    size_t size = 0;      // bytes before the first sample
};

class HeaderParser {
  public:
    HeaderParser(const std::string& path, const std::string& bytes) : path_(path), bytes_(bytes) {}

    Header parse() {
        position_ = 2;
        header_.width = number("width", 1, largest_side);
        header_.height = number("height", 1, largest_side);
        header_.maxval = number("maxval", 1, 65535);
        // Exactly one white-space character stands between the maxval and the samples.
        header_.size = position_ + 1;
        return header_;
    }

  private:
    void skip_space_and_comments() {
        for (; position_ < bytes_.size(); ++position_) {
            if (bytes_[position_] == '#') {
                const size_t end = std::min(bytes_.find('\n', position_), bytes_.size());
                header_.comments += bytes_.substr(position_ + 1, end - position_ - 1) + '\n';
                position_ = end;
            } else if (std::isspace(static_cast<unsigned char>(bytes_[position_])) == 0) {
                return;
            }
        }
    }

    int number(const char* field, int lowest, int highest) {
        skip_space_and_comments();
        int value = 0;
        const char* const begin = bytes_.data() + position_;
        const auto [end, error] = std::from_chars(begin, bytes_.data() + bytes_.size(), value);
        if (error != std::errc{} || value < lowest || value > highest)
            data_failure("{}: the {} in the PGM header is not a number from {} to {}: write the file again",
                         path_, field, lowest, highest);
        position_ += static_cast<size_t>(end - begin);
        return value;
    }

    const std::string& path_;
    const std::string& bytes_;
    size_t position_ = 0;
    Header header_;
};

bool recognises_pgm(const std::string& path, const std::string& bytes, const RawHints& hints) {
    return extension_of(path) == ".pgm" || (bytes.starts_with("P5") && hints.width == 0);
}

[[noreturn]] void bad_remark(const std::string& path, const std::string& word) {
    data_failure(
        "{}: \"{}\" in the comment of the PGM header is not understood: expected pattern=RGGB, GRBG, GBRG or "
        "BGGR, black=LEVEL or black=L0,L1,L2,L3, and bits=9 to 16",
        path, word);
}

// One word of the comment. Words of other names are left to whoever wrote them.
void apply_remark(RawFrame& frame, const std::string& path, const std::string& word) {
    const std::string value = word.substr(std::min(word.find('=') + 1, word.size()));
    if (word.starts_with("pattern=")) {
        frame.pattern = bayer_pattern_from(value);
        if (!frame.pattern)
            bad_remark(path, word);
    } else if (word.starts_with("black=")) {
        frame.black = black_level_from(value);
        if (!frame.black)
            bad_remark(path, word);
    } else if (word.starts_with("bits=")) {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), frame.bits);
        if (error != std::errc{} || end != value.data() + value.size() || frame.bits < 9 || frame.bits > 16)
            bad_remark(path, word);
    }
}

void apply_comments(RawFrame& frame, const std::string& path, const std::string& comments) {
    std::istringstream lines(comments);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word != "zerklsc")
            continue;
        while (words >> word)
            apply_remark(frame, path, word);
    }
}

void read_samples(RawFrame& frame, const std::string& bytes, size_t at) {
    for (uint16_t& sample : frame.samples) {
        const unsigned high = static_cast<unsigned char>(bytes[at]);
        const unsigned low = static_cast<unsigned char>(bytes[at + 1]);
        sample = static_cast<uint16_t>(high << 8 | low);
        at += 2;
    }
}

RawFrame read_pgm(const std::string& path, const std::string& bytes, const RawHints& hints) {
    if (!bytes.starts_with("P5"))
        data_failure("{}: is not a binary PGM: it does not begin with P5", path);
    const Header header = HeaderParser(path, bytes).parse();
    if ((hints.width != 0 && hints.width != header.width)
        || (hints.height != 0 && hints.height != header.height))
        data_failure("{}: is {} x {} samples, not {} x {}: leave --width and --height away for a PGM", path,
                     header.width, header.height, hints.width, hints.height);
    if (header.maxval < 256)
        data_failure(
            "{}: is an 8-bit PGM (maxval {}): a raw frame needs 16-bit samples (maxval 256 to 65535)", path,
            header.maxval);
    const size_t count = static_cast<size_t>(header.width) * static_cast<size_t>(header.height);
    const size_t found = bytes.size() > header.size ? bytes.size() - header.size : 0;
    if (found != 2 * count)
        data_failure("{}: holds {} bytes of samples, but {} x {} of 16 bits are {}: the file is {}", path,
                     found, header.width, header.height, 2 * count,
                     found < 2 * count ? "truncated" : "longer than one frame");

    RawFrame frame;
    frame.width = header.width;
    frame.height = header.height;
    frame.bits = static_cast<int>(std::bit_width(static_cast<unsigned>(header.maxval)));
    apply_comments(frame, path, header.comments);
    if (hints.bits != 0)
        frame.bits = hints.bits;
    frame.samples.resize(count);
    read_samples(frame, bytes, header.size);
    return frame;
}

std::string write_pgm(const RawFrame& frame) {
    std::string remarks;
    if (frame.pattern)
        remarks += fmt::format(" pattern={}", name_of(*frame.pattern));
    if (frame.black)
        remarks += fmt::format(" black={}", text_of(*frame.black));
    std::string bytes = fmt::format("P5\n# zerklsc{} bits={}\n{} {}\n{}\n", remarks, frame.bits, frame.width,
                                    frame.height, frame.full_scale());
    bytes.reserve(bytes.size() + 2 * frame.samples.size());
    for (const uint16_t sample : frame.samples) {
        bytes += static_cast<char>(sample >> 8);
        bytes += static_cast<char>(sample & 0xFF);
    }
    return bytes;
}

} // namespace

const RawFormat pgm_format{"PGM", ".pgm", recognises_pgm, read_pgm, write_pgm};

} // namespace zerklsc::tool
