// read_file, extension_of
#include "io/input_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "failure.h"

namespace zerklsc::tool {
namespace {

struct CloseFile {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

[[noreturn]] void cannot_read(const std::string& path) {
    system_failure("{}: cannot be read: {}", path, std::strerror(errno));
}

} // namespace

std::string read_file(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file)
        cannot_read(path);
    std::string bytes;
    std::string chunk(1 << 16, '\0');
    while (const size_t got = std::fread(chunk.data(), 1, chunk.size(), file.get()))
        bytes.append(chunk, 0, got);
    if (std::ferror(file.get()) != 0)
        cannot_read(path);
    return bytes;
}

std::string extension_of(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

} // namespace zerklsc::tool
