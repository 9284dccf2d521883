// png_mosaic_format: a mosaic as a grey PNG of 8 or 16 bits. Its sBIT chunk gives the bit depth.
#include <algorithm>
#include <csetjmp>
#include <cstring>

#include <fmt/format.h>
#include <png.h>

#include "failure.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

constexpr size_t message_size = 128;

// What libpng's callbacks see. They may not throw: libpng leaves them by longjmp().
struct PngSource {
    InputFile* file;
    uint64_t offset = 0;
    char message[message_size] = "";
};

void read_bytes(png_structp png, png_bytep to, size_t size) {
    auto* const source = static_cast<PngSource*>(png_get_io_ptr(png));
    size_t got = 0;
    try {
        got = source->file->read_some(source->offset, std::as_writable_bytes(std::span(to, size)));
    } catch (const std::exception&) {
        got = 0;
    }
    source->offset += got;
    if (got < size)
        png_error(png, "the file is truncated");
}

void keep_message(png_structp png, png_const_charp message) {
    auto* const source = static_cast<PngSource*>(png_get_error_ptr(png));
    std::strncpy(source->message, message, message_size - 1);
    std::longjmp(*png_set_longjmp_fn(png, std::longjmp, sizeof(std::jmp_buf)), 1);
}

void drop_message(png_structp, png_const_charp) {}

struct PngHeader {
    png_uint_32 width = 0, height = 0;
    int depth = 0, colour = 0, interlace = 0;
    int significant = 0; // bits, by the file
};

// Owns libpng's state. Each step returns false where libpng gave up; nothing but plain values lives there.
class Decoder {
  public:
    explicit Decoder(InputFile& file) : source_{&file} {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &source_, keep_message, drop_message);
        info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
    }
    ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    bool read_header(PngHeader& header) {
        if (info_ == nullptr || setjmp(png_jmpbuf(png_)) != 0)
            return false;
        png_set_read_fn(png_, &source_, read_bytes);
        png_set_user_limits(png_, largest_side, largest_side);
        png_read_info(png_, info_);
        png_get_IHDR(png_, info_, &header.width, &header.height, &header.depth, &header.colour,
                     &header.interlace, nullptr, nullptr);
        png_color_8p significant = nullptr;
        header.significant = png_get_sBIT(png_, info_, &significant) != 0 ? significant->gray : header.depth;
        return true;
    }

    // Most significant byte first, as PNG has them.
    bool read_row(png_bytep row) {
        if (setjmp(png_jmpbuf(png_)) != 0)
            return false;
        png_read_row(png_, row, nullptr);
        return true;
    }

    [[noreturn]] void fail() const {
        data_failure("{}: is not a PNG that can be read: {}", source_.file->path(), source_.message);
    }

  private:
    PngSource source_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

bool recognises_png(const InputFile& file, const RawHints&) {
    return extension_of(file.path()) == ".png" || file.head().starts_with("\x89PNG");
}

void check_header(const std::string& path, const PngHeader& header) {
    if (header.colour != PNG_COLOR_TYPE_GRAY || header.depth < 8)
        data_failure("{}: is not a grey PNG of 8 or 16 bits: a raw frame is a mosaic of one sample a pixel",
                     path);
    if (header.interlace != PNG_INTERLACE_NONE)
        data_failure("{}: is an interlaced PNG: write it without interlacing", path);
}

RawFrame read_png(InputFile& file, const RawHints&) {
    Decoder decoder(file);
    PngHeader header;
    if (!decoder.read_header(header))
        decoder.fail();
    check_header(file.path(), header);
    RawFrame frame;
    frame.format = fmt::format("{}-bit PNG", header.depth);
    frame.width = static_cast<int>(header.width);
    frame.height = static_cast<int>(header.height);
    frame.word_bits = header.depth;
    frame.bits = std::clamp(header.significant, 8, header.depth);
    const size_t bytes = static_cast<size_t>(header.depth) / 8;
    std::vector<png_byte> row(bytes * header.width);
    // The frame grows with the rows that come, not with what the header promises.
    for (png_uint_32 y = 0; y < header.height; ++y) {
        if (!decoder.read_row(row.data()))
            decoder.fail();
        for (size_t x = 0; x < header.width; ++x)
            frame.samples.push_back(
                static_cast<uint16_t>(bytes == 1 ? row[x] : row[2 * x] << 8 | row[2 * x + 1]));
    }
    return frame;
}

} // namespace

const RawFormat png_mosaic_format{"PNG", ".png", recognises_png, read_png, nullptr};

} // namespace zerklsc::tool
