// A file that is nowhere but in memory, for readers that take a name.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace zerklsc::fuzz {

class MemoryFile {
  public:
    template <class Bytes>
    explicit MemoryFile(const Bytes& bytes) : descriptor_(memfd_create("input", 0)) {
        static_assert(sizeof bytes.data()[0] == 1);
        if (descriptor_ < 0
            || write(descriptor_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            std::abort();
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

} // namespace zerklsc::fuzz
