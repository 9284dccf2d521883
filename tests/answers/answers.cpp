// Whether the library gives the stored answers: a digest of what every exported function writes for fixed
// input. They are the same for every processor, compiler and instruction set. `answers` prints them, `answers
// FILE` compares.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "support/entry_points.h"
#include "support/instruction_sets.h"

namespace {

using namespace zerklsc::testing;

std::vector<std::string> answers() {
    std::vector<std::string> lines;
    for (const EntryPoint& entry : entry_points()) {
        Arena all(4096);
        for (uint64_t seed = 1; seed <= 4; ++seed)
            all.put(digest_of(entry, seed));
        char digest[17];
        std::snprintf(digest, sizeof digest, "%016" PRIx64, all.digest());
        lines.push_back(digest + (' ' + std::string(entry.symbols)));
    }
    return lines;
}

// By C's streams: MemorySanitizer knows what they write, but not what the C++ library's do.
std::vector<std::string> lines_of(const char* path) {
    std::vector<std::string> lines;
    std::FILE* const file = std::fopen(path, "r");
    for (char line[1024]; file != nullptr && std::fgets(line, sizeof line, file) != nullptr;)
        lines.emplace_back(line, std::strcspn(line, "\n"));
    if (file != nullptr)
        std::fclose(file);
    return lines;
}

int compare(const std::vector<std::string>& stored) {
    int differing = 0;
    for (const std::string& word : instruction_set_words()) {
        setenv("ZERKLSC_CPU", word.c_str(), 1);
        const std::vector<std::string> found = answers();
        if (found.size() != stored.size()) {
            std::fprintf(stderr, "%zu answers are stored, but %zu were given\n", stored.size(), found.size());
            return 1;
        }
        for (size_t k = 0; k < found.size(); ++k)
            if (found[k] != stored[k]) {
                ++differing;
                std::fprintf(stderr, "%s: %s, but stored is %s\n", word.c_str(), found[k].c_str(),
                             stored[k].c_str());
            }
        std::printf("%s: %zu answers compared\n", word.c_str(), found.size());
    }
    return differing == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2)
        return compare(lines_of(argv[1]));
    for (const std::string& line : answers())
        std::puts(line.c_str());
    return 0;
}
