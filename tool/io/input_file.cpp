// input_name, InputFile, read_file, extension_of
#include "io/input_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

constexpr size_t head_size = size_t{1} << 16;

FileState state_of(const struct stat& status) {
    return {status.st_dev,
            status.st_ino,
            static_cast<uint64_t>(status.st_size),
            {status.st_mtim.tv_sec, status.st_mtim.tv_nsec}};
}

} // namespace

std::string input_name(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

std::optional<FileState> file_state(const std::string& path) {
    struct stat status {};
    if (path == "-" || stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return state_of(status);
}

InputFile::InputFile(const std::string& path) : path_(input_name(path)) {
    descriptor_ = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0)
        cannot_read();
    // Files that the kernel makes up say that they are empty.
    seekable_ = S_ISREG(status.st_mode) && status.st_size > 0;
    opened_ = state_of(status);
    if (seekable_)
        size_ = static_cast<uint64_t>(status.st_size);
    head_.resize(size_ ? static_cast<size_t>(std::min<uint64_t>(*size_, head_size)) : head_size);
    const auto bytes = std::as_writable_bytes(std::span(head_));
    const size_t got = seekable_ ? read_some(0, bytes) : read_forward(bytes);
    if (!seekable_ && got < head_size)
        size_ = got;
    head_.resize(got);
}

InputFile::~InputFile() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

void InputFile::cannot_read() const {
    system_failure("{}: cannot be read: {}", path_, std::strerror(errno));
}

size_t InputFile::read_forward(std::span<std::byte> to) {
    size_t done = 0;
    while (done < to.size()) {
        const ssize_t got = ::read(descriptor_, to.data() + done, to.size() - done);
        if (got < 0 && errno != EINTR)
            cannot_read();
        if (got == 0)
            break;
        done += got > 0 ? static_cast<size_t>(got) : 0;
    }
    position_ += done;
    return done;
}

size_t InputFile::read_some(uint64_t offset, std::span<std::byte> to) {
    size_t done = 0;
    if (seekable_) {
        while (done < to.size()) {
            const ssize_t got =
                pread(descriptor_, to.data() + done, to.size() - done, static_cast<off_t>(offset + done));
            if (got < 0 && errno != EINTR)
                cannot_read();
            if (got == 0)
                break;
            done += got > 0 ? static_cast<size_t>(got) : 0;
        }
        return done;
    }
    if (offset < head_.size()) {
        done = std::min(to.size(), head_.size() - static_cast<size_t>(offset));
        std::copy_n(head_.begin() + static_cast<std::ptrdiff_t>(offset), done,
                    reinterpret_cast<char*>(to.data()));
    }
    std::array<std::byte, 4096> skipped;
    while (done < to.size() && position_ < offset + done) {
        const auto wanted = std::min<uint64_t>(skipped.size(), offset + done - position_);
        if (read_forward(std::span(skipped).first(static_cast<size_t>(wanted))) < wanted)
            return done;
    }
    return done + read_forward(to.subspan(done));
}

void InputFile::hold() {
    constexpr uint64_t limit = uint64_t{1} << 30;
    while (!size_) {
        const size_t before = head_.size();
        if (before > limit)
            data_failure("{}: holds more than {} bytes, the most that is taken from a pipe", path_, limit);
        head_.resize(static_cast<size_t>(std::min<uint64_t>(2 * uint64_t{before}, limit + 1)));
        const size_t wanted = head_.size() - before;
        const size_t got = read_forward(std::as_writable_bytes(std::span(head_)).subspan(before));
        head_.resize(before + got);
        if (got < wanted)
            size_ = head_.size();
    }
}

void InputFile::read(uint64_t offset, std::span<std::byte> to) {
    const size_t got = read_some(offset, to);
    if (got < to.size())
        data_failure("{}: ends after {} bytes, but {} are needed: the file is truncated", path_, offset + got,
                     offset + to.size());
}

void InputFile::expect_end(uint64_t offset) {
    std::byte next{};
    if (read_some(offset, std::span(&next, 1)) != 0)
        data_failure("{}: goes on after the {} bytes that are needed: it is longer than one frame", path_,
                     offset);
}

void InputFile::expect_unchanged() const {
    struct stat status {};
    if (seekable_ && fstat(descriptor_, &status) == 0)
        expect(state_of(status));
}

void InputFile::expect(const std::optional<FileState>& state) const {
    if (state && state != opened_)
        data_failure("{}: was written to while it was read: try again when it is finished", path_);
}

std::string read_file(const std::string& path, uint64_t limit) {
    InputFile file(path);
    const auto check = [&](uint64_t size) {
        if (size > limit)
            data_failure("{}: holds more than {} bytes, the most that is read: it is not a file of this kind",
                         path, limit);
    };
    std::string bytes(file.head());
    check(file.size().value_or(bytes.size()));
    for (bool ended = file.size() == bytes.size(); !ended;) {
        const size_t done = bytes.size();
        const uint64_t wanted =
            file.size() ? *file.size() - done : std::min<uint64_t>(done, limit + 1 - done);
        bytes.resize(done + static_cast<size_t>(wanted));
        const size_t got = file.read_some(done, std::as_writable_bytes(std::span(bytes).subspan(done)));
        bytes.resize(done + got);
        check(bytes.size());
        ended = file.size().has_value() || got < wanted;
    }
    file.expect_unchanged();
    return bytes;
}

std::string extension_of(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

} // namespace zerklsc::tool
