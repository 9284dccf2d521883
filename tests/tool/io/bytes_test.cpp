// Files and pipes, read by bytes, lines and rows of samples, at the sizes where their buffers end.
#include <gtest/gtest.h>

#include <thread>

#include <sys/mman.h>

#include "io/fitting_sizes.h"
#include "io/line_reader.h"
#include "io/sample_rows.h"
#include "support/memory_file.h"
#include "told.h"

namespace zerklsc::tool {
namespace {

std::string bytes_of(uint64_t count) {
    std::string bytes(static_cast<size_t>(count), '\0');
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 2654435761U >> 13);
    return bytes;
}

// The same bytes from a file, or from a pipe that somebody else fills.
class Source {
  public:
    Source(const std::string& bytes, bool piped) : file_(bytes) {
        if (!piped || pipe(ends_) != 0)
            return;
        writer_ = std::thread([this, bytes] {
            for (size_t at = 0; at < bytes.size();)
                if (const ssize_t n = write(ends_[1], bytes.data() + at, bytes.size() - at); n > 0)
                    at += static_cast<size_t>(n);
                else
                    break;
            close(ends_[1]);
        });
    }
    ~Source() {
        if (!writer_.joinable())
            return;
        char rest[4096];
        while (read(ends_[0], rest, sizeof rest) > 0)
            continue;
        writer_.join();
        close(ends_[0]);
    }
    std::string path() const {
        return writer_.joinable() ? "/proc/self/fd/" + std::to_string(ends_[0]) : file_.path();
    }

  private:
    fuzz::MemoryFile file_;
    int ends_[2] = {-1, -1};
    std::thread writer_;
};

template <class Act>
std::string fault_of(const Act& act) {
    return told_by([&] { return act(), std::string(); });
}

std::string part_of(InputFile& file, uint64_t offset, size_t count) {
    std::string part(count, '\0');
    part.resize(file.read_some(offset, std::as_writable_bytes(std::span(part))));
    return part;
}

TEST(InputFile, GivesTheSameFromFilesAndPipes) {
    const std::string bytes = bytes_of(200000);
    for (const bool piped : {false, true}) {
        const Source source(bytes, piped);
        InputFile file(source.path());
        EXPECT_EQ(file.head(), bytes.substr(0, 65536));
        EXPECT_EQ(file.size().has_value(), !piped);
        const std::pair<size_t, size_t> parts[] = {{0, 3},         {65530, 6},   {65530, 12}, {65542, 4096},
                                                   {100000, 5000}, {199990, 20}, {200000, 1}};
        for (const auto& [offset, count] : parts)
            EXPECT_EQ(part_of(file, offset, count), bytes.substr(offset, count)) << offset;
        std::array<std::byte, 11> more;
        EXPECT_EQ(fault_of([&] { file.read(200000, more); }),
                  "ends after 200000 bytes, but 200011 are needed: the file is truncated");
        EXPECT_EQ(fault_of([&] { file.expect_end(200000); }), "");
    }
    for (const bool piped : {false, true}) {
        const Source source(bytes, piped);
        InputFile file(source.path());
        EXPECT_EQ(fault_of([&] { file.expect_end(199999); }),
                  "goes on after the 199999 bytes that are needed: it is longer than one frame");
    }
}

TEST(InputFile, KnowsItsSizeWhereItsHeadIsAll) {
    for (const size_t size : std::initializer_list<size_t>{0, 1, 65535, 65536, 65537, 131072, 200000})
        for (const bool piped : {false, true}) {
            const std::string bytes = bytes_of(size);
            const Source source(bytes, piped);
            InputFile file(source.path());
            EXPECT_EQ(file.size(), piped && size > 65535 ? std::nullopt : std::optional<uint64_t>(size));
            file.hold();
            EXPECT_EQ(file.size(), size);
            EXPECT_EQ(file.head(), bytes.substr(0, piped ? size : 65536));
        }
}

TEST(InputFile, IsReadWholeUpToALimit) {
    for (const size_t size : std::initializer_list<size_t>{0, 1, 65535, 65536, 65537, 131072, 131073, 200000})
        for (const bool piped : {false, true}) {
            const std::string bytes = bytes_of(size);
            for (const size_t limit : std::initializer_list<size_t>{size, size + 1, 2 * size + 7}) {
                const Source source(bytes, piped);
                EXPECT_EQ(read_file(source.path(), limit), bytes) << size;
            }
            const Source source(bytes, piped);
            if (size > 0) {
                EXPECT_EQ(fault_of([&] { read_file(source.path(), size - 1); }).substr(0, 16),
                          "holds more than ");
            }
        }
    EXPECT_EQ(extension_of("a.b/C.D.PgM"), ".pgm");
    EXPECT_EQ(extension_of("a.b/c"), "");
    EXPECT_EQ(input_name("-"), "standard input");
}

struct Told {
    std::string text;
    uint64_t number, offset;
    bool whole, too_long;
    bool operator==(const Told&) const = default;
};

std::vector<Told> lines_of(const std::string& path, size_t longest) {
    LineReader reader(path, longest);
    std::vector<Told> lines;
    while (const auto line = reader.next())
        lines.push_back({std::string(line->text), line->number, line->offset, line->whole, line->too_long});
    return lines;
}

std::vector<Told> expected_lines(const std::string& text, size_t longest) {
    std::vector<Told> lines;
    for (size_t from = 0, to = 0; from < text.size(); from = to + 1) {
        to = std::min(text.find('\n', from), text.size());
        const bool too_long = to - from > longest;
        lines.push_back({too_long ? "" : text.substr(from, to - from), lines.size() + 1, from,
                         to < text.size(), too_long});
    }
    return lines;
}

TEST(LineReader, FindsEveryLineOfEveryShortText) {
    for (unsigned letters = 0; letters < 1U << 9; ++letters) {
        std::string text;
        for (unsigned i = 0; i < 9; ++i)
            text += (letters >> i & 1) != 0 ? '\n' : static_cast<char>('a' + i);
        for (const size_t longest : std::initializer_list<size_t>{1, 2, 3, 8, 9})
            EXPECT_EQ(lines_of(fuzz::MemoryFile(text).path(), longest), expected_lines(text, longest))
                << text;
    }
    EXPECT_TRUE(lines_of(fuzz::MemoryFile(std::string()).path(), 3).empty());
}

void plus_one(const uint8_t* row, uint16_t* samples, size_t width) {
    for (size_t x = 0; x < width; ++x)
        samples[x] = static_cast<uint16_t>(row[x] + 1);
}

struct Rows {
    int width, height, sample_bytes, stride;
};

// Reads such rows, which begin at byte 7, from a file and a pipe, with padding behind the last one and
// without, and holds each sample to what it must be by the place of its first byte.
template <class Read, class Expected>
void hold_rows(const Rows& rows, const Read& read, const Expected& expected) {
    for (const bool piped : {false, true})
        for (const bool padded : {false, true}) {
            const RowLayout layout{rows.width, rows.height,
                                   static_cast<uint64_t>(rows.width * rows.sample_bytes),
                                   static_cast<uint64_t>(rows.stride), 7};
            const std::string bytes = bytes_of(padded ? layout.longest_end() : layout.shortest_end());
            const Source source(bytes, piped);
            InputFile file(source.path());
            const std::vector<uint16_t> samples = read(file, layout);
            ASSERT_EQ(samples.size(), static_cast<size_t>(rows.width * rows.height));
            const auto byte = [&](int at) { return static_cast<uint8_t>(bytes[static_cast<size_t>(at)]); };
            size_t wrong = 0;
            for (int i = 0; i < rows.width * rows.height; ++i) {
                const int at = 7 + i / rows.width * rows.stride + i % rows.width * rows.sample_bytes;
                wrong += samples[static_cast<size_t>(i)] != expected(byte, at);
            }
            EXPECT_EQ(wrong, 0U) << rows.width;
        }
}

// More than one block of rows, or a single row longer than a block.
TEST(SampleRows, StandApartByTheirStride) {
    for (const Rows& rows : {Rows{3, 5, 1, 9}, {700, 900, 1, 741}, {2, 3, 1, 300000}, {300000, 2, 1, 300000}})
        hold_rows(
            rows, [](InputFile& file, const RowLayout& layout) { return read_rows(file, layout, plus_one); },
            [](const auto& byte, int at) { return byte(at) + 1; });
}

// More than what a pipe is trusted with at once.
TEST(SampleRows, OfWordsHaveTheirByteOrder) {
    for (const Rows& rows : {Rows{1026, 1024, 2, 2052}, {1026, 1024, 2, 2054}, {2, 3, 2, 4}})
        for (const bool big : {false, true})
            hold_rows(
                rows,
                [&](InputFile& file, const RowLayout& layout) { return read_word_rows(file, layout, big); },
                [&](const auto& byte, int at) { return byte(at + !big) << 8 | byte(at + big); });
}

TEST(SampleRows, AreWrittenInBlocks) {
    for (const size_t count : std::initializer_list<size_t>{1, 131071, 131072, 131073, 300000})
        for (const bool big : {false, true}) {
            std::vector<uint16_t> samples(count);
            std::string expected;
            for (size_t i = 0; i < count; ++i) {
                samples[i] = static_cast<uint16_t>(i * 40503 >> 3);
                const char high = static_cast<char>(samples[i] >> 8), low = static_cast<char>(samples[i]);
                expected += big ? std::string{high, low} : std::string{low, high};
            }
            std::string written;
            write_words(samples, big, [&](std::string_view bytes) {
                EXPECT_LE(bytes.size(), 262144U);
                written += bytes;
            });
            EXPECT_TRUE(written == expected) << count;
        }
}

TEST(FittingSizes, KeepToWhatIsGiven) {
    const struct {
        Packing packing;
        int width;
        uint64_t bytes;
    } rows[] = {{Packing::raw10, 1, 5}, {Packing::raw10, 4, 5}, {Packing::raw10, 5, 10},
                {Packing::raw12, 1, 3}, {Packing::raw12, 2, 3}, {Packing::raw12, 3, 6},
                {Packing::words, 3, 6}};
    for (const auto& row : rows)
        EXPECT_EQ(packed_row_bytes(row.packing, row.width), row.bytes) << row.width;
    const struct {
        int width, height, offset;
        uint64_t size;
        Packing packing;
        const char* found;
    } cases[] = {
        {0, 0, 0, 614400, Packing::words,
         "--width 640 --height 480; --width 480 --height 640; --width 800 --height 600 --packing raw10 "
         "--stride 1024; --width 600 --height 800 --packing raw10 --stride 768"},
        {100, 0, 0, 12000, Packing::words,
         "--width 100 --height 60; --width 100 --height 96 --packing raw10; --width 100 --height 80 "
         "--packing raw12"},
        {0, 60, 0, 12000, Packing::words, "--width 100 --height 60"},
        {0, 60, 16, 12016, Packing::words, "--width 100 --height 60 --offset 16"},
        {100, 60, 0, 12479, Packing::words, ""},
        {100, 60, 0, 12480, Packing::words, "--width 100 --height 60 --stride 208; --width 104 --height 60"},
        {100, 60, 0, 12472, Packing::words, "--width 100 --height 60 --stride 208"},
        {100, 0, 0, 7500, Packing::raw10, "--width 100 --height 60; --width 100 --height 50 --packing raw12"},
        {100, 0, 0, 9000, Packing::words,
         "--width 100 --height 72 --packing raw10; --width 100 --height 60 --packing raw12"},
        {2, 0, 0, 8, Packing::words, "--width 2 --height 2; --width 2 --height 2 --packing raw12 --stride 4"},
        {2, 0, 0, 4, Packing::words, ""},
        {0, 2, 0, 8, Packing::words, "--width 2 --height 2; --width 2 --height 2 --packing raw12 --stride 4"},
        {3, 0, 0, 12, Packing::words, ""},
        {2, 2, 9, 8, Packing::words, ""},
    };
    for (const auto& c : cases) {
        RawHints hints;
        hints.width = c.width;
        hints.height = c.height;
        hints.offset = c.offset;
        EXPECT_EQ(fitting_sizes(c.size, hints, c.packing), c.found) << c.size;
    }
}

} // namespace
} // namespace zerklsc::tool
