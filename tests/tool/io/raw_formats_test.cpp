// What raw files say of themselves, and where that is bounded: PGM and files without a header, and the tags
// of TIFFs.
#include <gtest/gtest.h>

#include "io/dng_mosaic.h"
#include "io/raw_format.h"
#include "io/tiff_blocks.h"
#include "io/tiff_tags.h"
#include "support/memory_file.h"
#include "told.h"

namespace zerklsc::tool {
namespace {

std::string summary_of(const RawDescription& about) {
    return fmt::format("{}x{} {}/{} {} {} {}", about.width, about.height, about.bits, about.word_bits,
                       about.pattern ? name_of(*about.pattern) : "-",
                       about.black ? text_of(*about.black) : "-",
                       about.white ? std::to_string(*about.white) : "-");
}

// What is taken and what the options override of a file, or why it is refused.
std::string read_as(const std::string& bytes, const RawHints& hints = {}) {
    return told_by([&] {
        const RawReading reading = read_raw_frame(fuzz::MemoryFile(bytes).path(), hints);
        std::string text = summary_of(reading.frame);
        for (const std::string& remark : overridden(reading))
            text += "; " + remark;
        return text;
    });
}

// A header, and two rows of two samples, the last of which is given.
std::string pgm(const std::string& header, int last = 1) {
    const bool bytes = header.ends_with("\n255\n") || header.ends_with("\n1\n");
    std::string samples;
    for (const int sample : {1, 0, 1, last}) {
        samples += bytes ? "" : std::string(1, static_cast<char>(sample >> 8));
        samples += static_cast<char>(sample);
    }
    return "P5" + header + samples;
}

TEST(Pgm, SaysWhatItHolds) {
    const std::pair<std::string, const char*> cases[] = {
        {pgm("\n2 2\n1\n"), "2x2 8/8 - - 1"},
        {pgm("\n2 2\n255\n", 255), "2x2 8/8 - - -"},
        {pgm("\n2 2\n256\n", 256), "2x2 9/9 - - 256"},
        {pgm("\n2 2\n1000\n", 1000), "2x2 10/10 - - 1000"},
        {pgm("\n2 2\n1023\n", 1023), "2x2 10/10 - - -"},
        {pgm("\n2 2\n65535\n", 65535), "2x2 16/16 - - -"},
        {pgm("\t#a\n2\v2\f# \t zerklsc  white=1022 black=0,1,2,1021 pattern=GBRG bits=10 none\r\n1023\r"),
         "2x2 10/10 GBRG 0,1,2,1021 1022"},
        {pgm("\n# zerklsc black=1,1,1,1022\n# zerklsc black=1,1,1,1022\n2 2\n1023 "),
         "2x2 10/10 - 1,1,1,1022 -"},
        {pgm("\n# zerklsc white=1 shutter=20\n2 2\n1023\n"), "2x2 10/10 - - 1"},
        {pgm("\n# zerklsc white=999\n2 2\n1000\n"), "2x2 10/10 - - 999"},
        {pgm("\n# zerklsc white=1000\n2 2\n1000\n"), "2x2 10/10 - - 1000"},
        {pgm("\n# zerklsc bits=16\n2 2\n40000\n"), "2x2 16/16 - - 40000"},
        {pgm("\n# zerklsc bits=8\n2 2\n255\n"), "2x2 8/8 - - -"},
        {pgm("\n# xerklsc bits=7\n2 2\n1023\n"), "2x2 10/10 - - -"},
    };
    for (const auto& [bytes, told] : cases)
        EXPECT_EQ(read_as(bytes), told) << bytes;
    // The widest frame that there is.
    EXPECT_EQ(read_as("P5 65534 2 255 " + std::string(131068, 'a')), "65534x2 8/8 - - -");
}

TEST(Pgm, IsRefusedWithItsFault) {
    const std::pair<std::string, const char*> cases[] = {
        {pgm("\n2 2\n1023\n").substr(0, 19),
         "holds 7 bytes of samples, but 2 x 2 of 16 bits are 8: the file is truncated"},
        {pgm("\n2 2\n1023\n") + "x",
         "holds 9 bytes of samples, but 2 x 2 of 16 bits are 8: the file is longer than"},
        {pgm("\n2 2\n255\n").substr(0, 14),
         "holds 3 bytes of samples, but 2 x 2 of 8 bits are 4: the file is truncated"},
        {pgm("\n2 2\n255\n") + "x",
         "holds 5 bytes of samples, but 2 x 2 of 8 bits are 4: the file is longer than"},
        {"P5", "the width in the PGM header is not a number from 1 to 65534: write the file again"},
        {"P5\n4", "the height in the PGM header is not a number from 1 to 65534: write"},
        {"P5\n# zerklsc pattern=RGGB black=64 bits=10", "the width in the PGM header"},
        {pgm("\n65535 2\n255\n"), "the width in the PGM header"},
        {pgm("\n99999999999 2\n255\n"), "the width in the PGM header"},
        {pgm("\n0 2\n255\n"), "the width in the PGM header"},
        {pgm("\n2 0\n255\n"), "the height in the PGM header"},
        {pgm("\n2 65535\n255\n"), "the height in the PGM header"},
        {pgm("\n2 2\n0\n"), "the maxval in the PGM header is not a number from 1 to 65535"},
        {pgm("\n2 2\n65536\n"), "the maxval in the PGM header"},
        {pgm("\n2 2x255\n"), "the maxval in the PGM header"},
        {pgm("\n2 2\n1023x"), "the PGM header does not end after its maxval: write the file again"},
        {"P5\n2 2\n1023", "the PGM header does not end after its maxval"},
        {pgm("\n1 2\n1023\n").substr(0, 16), "1 x 2 samples are not whole 2 x 2 Bayer cells"},
        {pgm("\n2 1\n1023\n").substr(0, 16), "2 x 1 samples are not whole 2 x 2 Bayer cells"},
        {pgm("\n2 2\n1000\n", 1001),
         "contradicts itself: it holds a sample of 1001, above its maxval of 1000"},
        {pgm("\n2 2\n1023\n", 1024),
         "holds a sample of 1024, but 10-bit samples end at 1023: give the right --bits"},
        {pgm("\n# zerklsc pattern=RGBG\n2 2\n1023\n"),
         "\"pattern=RGBG\" in the comment of the PGM header is not understood: expected pattern=RGGB, GRBG, "
         "GBRG "
         "or BGGR, black=LEVEL or black=L0,L1,L2,L3, bits=8 to 16, and white=LEVEL"},
        {pgm("\n# zerklsc black=64,64\n2 2\n1023\n"),
         "\"black=64,64\" in the comment of the PGM header is not"},
        {pgm("\n# zerklsc bits=7\n2 2\n1023\n"), "\"bits=7\" in the comment"},
        {pgm("\n# zerklsc bits=17\n2 2\n1023\n"), "\"bits=17\" in the comment"},
        {pgm("\n# zerklsc bits=10x\n2 2\n1023\n"), "\"bits=10x\" in the comment"},
        {pgm("\n# zerklsc bits=\n2 2\n1023\n"), "\"bits=\" in the comment"},
        {pgm("\n# zerklsc white=0\n2 2\n1023\n"), "\"white=0\" in the comment"},
        {pgm("\n# zerklsc white=65536\n2 2\n1023\n"), "\"white=65536\" in the comment"},
        {pgm("\n# zerklsc black=64\n# zerklsc black=65\n2 2\n1023\n"),
         "\"black=65\" in the comment of the PGM header contradicts what stands before it"},
        {pgm("\n# zerklsc bits=12\n2 2\n1023\n"),
         "contradicts itself: its comment says 12 bits, and its maxval of 1023 says 10"},
        {pgm("\n# zerklsc white=1001\n2 2\n1000\n"),
         "contradicts itself: its comment says a white level of 1001, above its maxval"},
        {pgm("\n# zerklsc black=1,1,1023,1\n2 2\n1023\n"),
         "a black level of 1023 leaves no range below the full scale of 1023"},
    };
    for (const auto& [bytes, fault] : cases)
        EXPECT_EQ(read_as(bytes).substr(0, std::string(fault).size()), fault) << bytes;
}

TEST(RawOptions, OverrideWhatTheFileSays) {
    const std::string file = pgm("\n# zerklsc pattern=GRBG black=64,65,66,67 white=1000\n2 2\n1023\n", 960);
    const auto with = [](auto... changes) {
        RawHints hints;
        (changes(hints), ...);
        return hints;
    };
    const auto bits = [](int n) { return [n](RawHints& hints) { hints.bits = n; }; };
    const auto white = [](int n) { return [n](RawHints& hints) { hints.white = n; }; };
    const auto black = [](BlackLevel level) { return [level](RawHints& hints) { hints.black = level; }; };
    const auto left = [](RawHints& hints) { hints.left_aligned = true; };
    EXPECT_EQ(read_as(file, with(bits(10), white(1000), black({64, 65, 66, 67}))),
              "2x2 10/10 GRBG 64,65,66,67 1000");
    EXPECT_EQ(read_as(file, with(bits(12))), "2x2 12/10 GRBG 64,65,66,67 -; bit depth 10 (12 is taken)");
    EXPECT_EQ(read_as(file, with(white(961), black({1, 2, 3, 960}),
                                 [](RawHints& h) { h.pattern = BayerPattern::bggr; })),
              "2x2 10/10 BGGR 1,2,3,960 961; Bayer pattern GRBG (BGGR is taken); black level 64,65,66,67 "
              "(1,2,3,960 is "
              "taken); white level 1000 (961 is taken)");
    EXPECT_EQ(
        read_as(file, with(bits(9), left, black({1, 2, 3, 4}))),
        "2x2 9/10 GRBG 1,2,3,4 -; bit depth 10 (9 is taken); black level 64,65,66,67 (1,2,3,4 is taken)");
    EXPECT_EQ(read_as(file, with(white(67))),
              "a black level of 67 leaves no range below the white level of 67: give the "
              "right --black-level or --bits");
    EXPECT_EQ(read_as(file, with(white(1023))).substr(0, 31), "2x2 10/10 GRBG 64,65,66,67 1023");
    EXPECT_EQ(
        read_as(file, with(white(1024))),
        "a white level of 1024 is above the full scale of 1023: give the right --white-level or --bits");
    // Samples in the high bits come down by as many as the words have more.
    RawHints hints = with(bits(8), left);
    hints.black = BlackLevel{};
    const RawFrame frame = read_raw_frame(fuzz::MemoryFile(pgm("\n2 2\n1023\n", 1022)).path(), hints).frame;
    EXPECT_EQ(frame.samples, (std::vector<uint16_t>{0, 0, 0, 255}));
}

// A TIFF that grows entry by entry: a header, the directories as they come, and values behind each.
class Bytes {
  public:
    explicit Bytes(bool big) : big_(big), bytes_(big ? "MM" : "II") { put(42, 2).put(0, 4); }
    size_t size() const { return bytes_.size(); }
    Bytes& put(uint64_t value, size_t count) {
        for (size_t i = 0; i < count; ++i)
            bytes_ += static_cast<char>(value >> 8 * (big_ ? count - 1 - i : i));
        return *this;
    }
    // Overwrites a word that was put before.
    void point(size_t at, uint64_t value) {
        const std::string kept = bytes_.substr(at + 4);
        bytes_.resize(at);
        put(value, 4);
        bytes_ += kept;
    }
    const std::string& text() const { return bytes_; }

  private:
    bool big_;
    std::string bytes_;
};

struct Tag {
    uint16_t tag, type;
    uint32_t count;
    std::vector<std::pair<uint64_t, size_t>> words; // with their sizes
};

// Adds a directory of these tags, whose pointer stands at `pointer_at`; returns where the pointer to the next
// one is.
size_t add_directory(Bytes& file, size_t pointer_at, const std::vector<Tag>& tags) {
    std::vector<size_t> values;
    for (const Tag& tag : tags) {
        values.push_back(file.size());
        for (const auto& [word, size] : tag.words)
            file.put(word, size);
    }
    file.point(pointer_at, file.size());
    file.put(tags.size(), 2);
    for (size_t i = 0; i < tags.size(); ++i) {
        size_t size = 0;
        file.put(tags[i].tag, 2).put(tags[i].type, 2).put(tags[i].count, 4);
        for (const auto& [word, bytes] : tags[i].words)
            size += bytes;
        const size_t begin = file.size();
        if (size > 4)
            file.put(values[i], 4);
        else
            for (const auto& [word, bytes] : tags[i].words)
                file.put(word, bytes);
        file.put(0, begin + 4 - file.size());
    }
    file.put(0, 4);
    return file.size() - 4;
}

// The tag 256 of each directory that is found, in their order.
std::vector<double> found_in(const std::string& bytes) {
    const fuzz::MemoryFile memory(bytes);
    InputFile input(memory.path());
    TiffFile tiff(input);
    std::vector<double> found;
    for (const TiffDirectory& directory : tiff.directories())
        found.push_back(directory.find(256) == nullptr ? -1 : tiff.numbers(*directory.find(256), 1).at(0));
    return found;
}

TEST(TiffFile, FindsDirectoriesAsFarAsTheyAreSound) {
    for (const bool big : {false, true}) {
        // Two behind each other, and two below the second.
        Bytes file(big);
        const Tag width{256, 4, 1, {{1, 4}}};
        size_t next = add_directory(file, 4, {width, {257, 4, 1, {{8, 4}}}});
        const size_t pointers = file.size() + 2;
        next = add_directory(file, next, {{256, 3, 1, {{2, 2}}}, {330, 4, 2, {{0, 4}, {0, 4}}}});
        add_directory(file, pointers, {{256, 3, 1, {{3, 2}}}});
        add_directory(file, pointers + 4, {{256, 3, 1, {{4, 2}}}});
        EXPECT_EQ(found_in(file.text()), (std::vector<double>{1, 2, 3, 4}));
        // In a circle, the chain ends after a number that no file has.
        Bytes circle = file;
        circle.point(next, 0);
        circle.point(pointers + 4, 0);
        EXPECT_EQ(found_in(circle.text()), (std::vector<double>{1, 2, 3}));
        Bytes beyond = file; // the second of two pointers
        beyond.point(next - 4, beyond.size() - 4);
        EXPECT_EQ(found_in(beyond.text()), (std::vector<double>{1, 2}));
        circle.point(next, 26);
        EXPECT_LE(found_in(circle.text()).size(), 64U);
        // Of one that is cut, whole entries count.
        Bytes cut(big);
        add_directory(cut, 4, {width, {257, 4, 1, {{8, 4}}}});
        const std::string whole = cut.text();
        const size_t directory = whole.size() - 30;
        for (size_t size = directory; size <= whole.size(); ++size) {
            const size_t entries = size < directory + 2 ? 0 : (size - directory - 2) / 12;
            EXPECT_EQ(found_in(whole.substr(0, size)),
                      entries > 0 ? std::vector<double>{1} : std::vector<double>())
                << size;
        }
        // 4096 entries are taken, and one more are no directory.
        for (const size_t count : std::initializer_list<size_t>{4096, 4097}) {
            Bytes large(big);
            add_directory(large, 4, std::vector<Tag>(count, width));
            EXPECT_EQ(found_in(large.text()).size(), count == 4096 ? 1U : 0U);
        }
    }
    EXPECT_THROW(found_in("II+" + std::string(20, '\0')), Failure);
}

TEST(DngMosaic, HasTheSizeOfItsArea) {
    const auto size_of = [](uint64_t width, uint64_t height,
                            const std::vector<std::pair<uint64_t, size_t>>& area,
                            uint64_t kind = tag::colour_filter_array) {
        Bytes file(true);
        std::vector<Tag> tags{{tag::image_width, 4, 1, {{width, 4}}},
                              {tag::image_length, 4, 1, {{height, 4}}},
                              {tag::photometric_interpretation, 3, 1, {{kind, 2}}}};
        if (!area.empty())
            tags.push_back({tag::active_area, 4, static_cast<uint32_t>(area.size()), area});
        add_directory(file, 4, tags);
        return told_by([&] {
            const fuzz::MemoryFile memory(file.text());
            InputFile input(memory.path());
            const FrameSize size = DngMosaic(input).size();
            return fmt::format("{} x {}", size.width, size.height);
        });
    };
    EXPECT_EQ(size_of(2, 65534, {}), "2 x 65534");
    EXPECT_EQ(size_of(65534, 2, {}), "65534 x 2");
    EXPECT_EQ(size_of(9, 9, {{1, 4}, {3, 4}, {7, 4}, {5, 4}}), "2 x 6");
    for (const auto& [width, height] : {std::pair(1, 9), {9, 1}, {65535, 9}, {9, 65535}})
        EXPECT_TRUE(size_of(static_cast<uint64_t>(width), static_cast<uint64_t>(height), {})
                        .starts_with("its mosaic is"));
    EXPECT_TRUE(size_of(9, 9, {{1, 4}, {4, 4}, {7, 4}, {5, 4}}).starts_with("its mosaic is 1 x 6"));
    EXPECT_TRUE(size_of(9, 9, {{1, 4}, {3, 4}, {7, 4}}).starts_with("its active area is not"));
    EXPECT_TRUE(
        size_of(9, 9, {{1, 4}, {3, 4}, {7, 4}, {5, 4}, {5, 4}}).starts_with("its active area is not"));
    EXPECT_TRUE(size_of(9, 9, {}, 1).starts_with("holds no mosaic"));
}

// A mosaic of 7 x 5 in blocks of a size, strips where they are `strips`, forward or back to front in the
// file, with a part of a block between them.
std::string mosaic_of(int columns, int rows, bool strips, bool forward, int gap, bool big) {
    Bytes file(big);
    std::vector<std::pair<uint64_t, size_t>> offsets, sizes;
    std::vector<std::pair<int, int>> places;
    for (int top = 0; top < 5; top += rows)
        for (int left = 0; left < 7; left += columns)
            places.emplace_back(left, top);
    if (!forward)
        std::reverse(places.begin(), places.end());
    for (const auto& [left, top] : places) {
        offsets.emplace_back(file.size(), 4);
        const int bottom = strips ? std::min(top + rows, 5) : top + rows;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < left + columns; ++x)
                file.put(static_cast<uint64_t>(x < 7 && y < 5 ? 300 * y + x : 0xEEEE), 2);
        sizes.emplace_back(static_cast<uint64_t>(2 * columns * (bottom - top)), 4);
        for (int k = 0; k < gap * columns * (bottom - top); ++k)
            file.put(0xEE, 1);
    }
    if (!forward) {
        std::reverse(offsets.begin(), offsets.end());
        std::reverse(sizes.begin(), sizes.end());
    }
    const auto count = static_cast<uint32_t>(places.size());
    std::vector<Tag> tags{{tag::image_width, 4, 1, {{7, 4}}},
                          {tag::image_length, 3, 1, {{5, 2}}},
                          {tag::photometric_interpretation, 3, 1, {{tag::colour_filter_array, 2}}}};
    if (strips)
        tags.insert(tags.end(), {{tag::strip_offsets, 4, count, offsets},
                                 {tag::rows_per_strip, 4, 1, {{static_cast<uint64_t>(rows), 4}}},
                                 {tag::strip_byte_counts, 4, count, sizes}});
    else
        tags.insert(tags.end(), {{tag::tile_width, 4, 1, {{static_cast<uint64_t>(columns), 4}}},
                                 {tag::tile_length, 4, 1, {{static_cast<uint64_t>(rows), 4}}},
                                 {tag::tile_offsets, 4, count, offsets}});
    add_directory(file, 4, tags);
    return file.text();
}

TEST(TiffBlocks, GiveEveryAreaOfTheMosaic) {
    const std::tuple<int, int, bool> layouts[] = {{7, 1, true},  {7, 2, true},  {7, 5, true},  {7, 9, true},
                                                  {3, 2, false}, {7, 2, false}, {7, 1, false}, {8, 2, false},
                                                  {4, 5, false}, {8, 6, false}};
    for (const auto& [columns, rows, strips] : layouts)
        for (const auto& [forward, gap] : {std::pair(false, 0), {true, 0}, {true, 1}}) {
            const fuzz::MemoryFile memory(mosaic_of(columns, rows, strips, forward, gap, rows % 2 == 0));
            InputFile file(memory.path());
            DngMosaic mosaic(file);
            const int count = (5 + rows - 1) / rows;
            EXPECT_EQ(strip_count(mosaic), strips ? static_cast<uint32_t>(count) : 0U);
            EXPECT_EQ(is_in_one_piece(mosaic), strips && ((forward && gap == 0) || count == 1));
            size_t wrong = 0;
            for (uint64_t top = 0; top < 5; ++top)
                for (uint64_t left = 0; left < 7; ++left)
                    for (uint64_t height = 1; top + height <= 5; ++height)
                        for (uint64_t width = 1; left + width <= 7; ++width) {
                            const auto samples = read_blocks(file, mosaic, {left, top, width, height});
                            wrong += samples.size() != width * height;
                            for (size_t k = 0; k < std::min<uint64_t>(samples.size(), width * height); ++k)
                                wrong += samples[k] != 300 * (top + k / width) + left + k % width;
                        }
            EXPECT_EQ(wrong, 0U) << columns << " x " << rows << " " << strips << forward << gap;
            EXPECT_THROW(read_blocks(file, mosaic, {1, 0, 7, 5}), Failure);
            EXPECT_THROW(read_blocks(file, mosaic, {0, 1, 7, 5}), Failure);
        }
}

// Of strips and tiles of 6 x 4, a JPEG may promise twice the samples; what is no frame header promises none.
TEST(TiffBlocks, HoldJpegsToTheirSize) {
    const auto fits = [](const std::vector<std::pair<uint64_t, uint64_t>>& segments, bool tiled) {
        Bytes file(true);
        const size_t at = file.size();
        file.put(0xFFD8, 2);
        for (const auto& [marker, size] : segments)
            file.put(marker, 2)
                .put(10, 2)
                .put(8, 1)
                .put(size >> 16, 2)
                .put(size >> 8 & 0xFF, 2)
                .put(size & 0xFF, 1)
                .put(1, 2);
        file.put(0xFFDA, 2).put(0xFFC3, 2).put(0xFFFF, 8);
        const uint16_t columns = tiled ? tag::tile_width : tag::image_width,
                       rows = tiled ? tag::tile_length : tag::image_length;
        std::vector<Tag> tags{{tag::photometric_interpretation, 3, 1, {{tag::colour_filter_array, 2}}},
                              {columns, 4, 1, {{6, 4}}},
                              {rows, 4, 1, {{4, 4}}},
                              {tiled ? tag::tile_offsets : tag::strip_offsets, 4, 1, {{at, 4}}}};
        if (tiled)
            tags.insert(tags.end(),
                        {{tag::image_width, 4, 1, {{5, 4}}}, {tag::image_length, 4, 1, {{3, 4}}}});
        add_directory(file, 4, tags);
        const fuzz::MemoryFile memory(file.text());
        InputFile input(memory.path());
        DngMosaic mosaic(input);
        return told_by([&] { return check_jpeg_sizes(mosaic), std::string("fits"); }) == "fits";
    };
    // Rows, columns and components.
    constexpr uint64_t twice = 8 << 16 | 3 << 8 | 2, more = 7 << 16 | 7 << 8 | 1;
    for (const bool tiled : {false, true}) {
        for (const uint64_t marker : std::initializer_list<uint64_t>{0xFFC0, 0xFFC1, 0xFFC3}) {
            EXPECT_TRUE(fits({{marker, twice}}, tiled)) << marker;
            EXPECT_FALSE(fits({{marker, more}}, tiled)) << marker;
            EXPECT_FALSE(fits({{marker, more}, {marker, twice}}, tiled)
                         || fits({{marker, twice}, {marker, more}}, tiled));
        }
        for (const uint64_t marker : std::initializer_list<uint64_t>{0xFFC2, 0xFFC4, 0xFFDB, 0xFFE0, 0xFF00})
            EXPECT_TRUE(fits({{marker, more}}, tiled)) << marker;
        EXPECT_TRUE(fits({{0xFEC3, more}}, tiled));
        EXPECT_TRUE(fits(std::vector<std::pair<uint64_t, uint64_t>>(64, {0xFFC4, more}), tiled));
        EXPECT_FALSE(fits(std::vector<std::pair<uint64_t, uint64_t>>(65, {0xFFC4, more}), tiled));
    }
}

} // namespace
} // namespace zerklsc::tool
