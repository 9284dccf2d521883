// sha256_of, sha256_text, sha256_of_file
#include "io/sha256.h"

#include <array>
#include <vector>

#include <fmt/format.h>
#include <nettle/sha2.h>

namespace zerklsc::tool {

std::array<uint8_t, 32> sha256_of(std::string_view bytes) {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&context, digest.size(), digest.data());
    return digest;
}

std::string sha256_text(const std::array<uint8_t, 32>& digest) {
    std::string text;
    for (const uint8_t byte : digest)
        text += fmt::format("{:02x}", byte);
    return text;
}

std::string sha256_of_file(const std::string& path, const std::optional<FileState>& read) {
    InputFile file(path);
    file.expect(read);
    sha256_ctx context;
    sha256_init(&context);
    std::vector<std::byte> block(size_t{1} << 16);
    uint64_t offset = 0;
    while (const size_t length = file.read_some(offset, block)) {
        sha256_update(&context, length, reinterpret_cast<const uint8_t*>(block.data()));
        offset += length;
    }
    file.expect_unchanged();
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&context, digest.size(), digest.data());
    return sha256_text(digest);
}

} // namespace zerklsc::tool
