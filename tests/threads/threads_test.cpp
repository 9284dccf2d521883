// Every exported function may be called from any number of threads on distinct buffers. ThreadSanitizer sees
// what two calls share (preset `tsan`); the results show it in any build.
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/entry_points.h"

namespace {

using namespace zerklsc::testing;

std::set<std::string> words_of(std::istream& text) {
    return {std::istream_iterator<std::string>(text), std::istream_iterator<std::string>()};
}

// What each entry point gave on a workbench of its own.
std::vector<uint64_t> digests(uint64_t seed) {
    std::vector<uint64_t> all;
    for (const EntryPoint& entry : entry_points())
        all.push_back(digest_of(entry, seed));
    return all;
}

TEST(Threads, EveryExportedFunctionIsCalled) {
    std::ifstream exports(ZERKLSC_EXPORTS), driver_exports(ZERKLSC_DRIVER_EXPORTS);
    std::set<std::string> exported = words_of(exports);
    exported.merge(words_of(driver_exports));
    std::stringstream called;
    for (const EntryPoint& entry : entry_points())
        called << entry.symbols << ' ';
    EXPECT_EQ(words_of(called), exported);
}

TEST(Threads, EightAtOnceWriteWhatOneAloneWrites) {
    constexpr size_t threads = 8;
    constexpr int rounds = 4;
    std::vector<uint64_t> expected[threads];
    for (size_t t = 0; t < threads; ++t)
        expected[t] = digests(t);
    std::vector<uint64_t> found[threads][rounds];
    {
        std::vector<std::jthread> running;
        for (size_t t = 0; t < threads; ++t)
            running.emplace_back([&found, t] {
                for (std::vector<uint64_t>& round : found[t])
                    round = digests(t);
            });
    }
    for (size_t t = 0; t < threads; ++t)
        for (const std::vector<uint64_t>& round : found[t])
            for (size_t k = 0; k < round.size(); ++k)
                EXPECT_EQ(round[k], expected[t][k]) << entry_points()[k].symbols << ", thread " << t;
}

} // namespace
