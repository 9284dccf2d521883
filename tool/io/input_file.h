// Reading files, pipes and devices, with failures in words and no more memory than the caller asks for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zerklsc::tool {

// What messages call an input: "standard input" for "-".
std::string input_name(const std::string& path);

// Which bytes a regular file holds, as long as whoever writes to it is not quicker than its time stamps.
struct FileState {
    uint64_t device = 0, number = 0, size = 0;
    std::array<int64_t, 2> written{}; // seconds and nanoseconds

    bool operator==(const FileState&) const = default;
};

// Nothing for what is no regular file or is not there. To be taken before a file is read, where it is read
// again for its hash.
std::optional<FileState> file_state(const std::string& path);

// An input whose first bytes are there before anybody decides what it is. "-" is standard input.
class InputFile {
  public:
    // A failure when it cannot be opened or read.
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // As input_name() says.
    const std::string& path() const { return path_; }

    // The first bytes, at most 64 KiB.
    std::string_view head() const { return head_; }

    // The length in bytes; nothing for a pipe or a device that goes on beyond its head.
    std::optional<uint64_t> size() const { return size_; }

    // Takes all of a pipe into head(): some formats have their parts in any order. A failure beyond 1 GiB.
    void hold();

    // Fills `to` with the bytes from `offset` on, and returns how many there were. A pipe is only read
    // forwards: beyond its head, offsets must not fall from call to call.
    size_t read_some(uint64_t offset, std::span<std::byte> to);

    // The same, and a failure when there are fewer.
    void read(uint64_t offset, std::span<std::byte> to);

    // A failure when there is a byte at `offset`.
    void expect_end(uint64_t offset);

    // A failure when somebody has written to the file since it was opened. To be called once all is read.
    void expect_unchanged() const;

    // A failure when it is not the file of that state, of which nothing is known where there is none.
    void expect(const std::optional<FileState>& state) const;

  private:
    size_t read_forward(std::span<std::byte> to);
    [[noreturn]] void cannot_read() const;

    std::string path_;
    int descriptor_ = -1;
    bool seekable_ = false;
    std::optional<uint64_t> size_;
    FileState opened_;
    std::string head_;
    uint64_t position_ = 0; // of a pipe: the bytes that were taken from it
};

// No file of text is larger: tables of every node of a large sensor.
constexpr uint64_t largest_text = uint64_t{1} << 28;

// The bytes of a file; a failure when it cannot be read or has more than `limit` bytes.
std::string read_file(const std::string& path, uint64_t limit = largest_text);

// The file name extension in lower case with its dot, or nothing.
std::string extension_of(const std::string& path);

} // namespace zerklsc::tool
