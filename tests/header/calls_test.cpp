// What the manual says of every function: what a comment calls read is not written, arrays need the alignment
// of their elements and no more, nothing is printed, and heap beyond a few hundred bytes is named.
#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/entry_points.h"

namespace zerklsc::testing {
namespace {

TEST(HeaderCalls, KeepTheirInputsPrintNothingAndNameTheirHeap) {
    for (const EntryPoint& entry : entry_points()) {
        SCOPED_TRACE(entry.symbols);
        Workbench bench(11);
        ::testing::internal::CaptureStdout();
        const AllocationScope heap;
        entry.call(bench);
        std::fflush(stdout);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
        EXPECT_TRUE(entry.heap != Heap::little || heap.peak_bytes() < 500) << heap.peak_bytes();
        EXPECT_EQ(heap.leftovers().empty(), entry.heap != Heap::left);
    }
}

TEST(HeaderCalls, WithoutMemoryWriteAndLeaveNothing) {
    for (const EntryPoint& entry : entry_points()) {
        bool failed = entry.heap != Heap::little;
        for (size_t n = 0; failed; ++n) {
            SCOPED_TRACE(::testing::Message() << entry.symbols << ", request " << n);
            Workbench bench(12, {.brightest = 1100}); // of which generators that begin print lines
            const std::vector<uint8_t> before = bench.written.copy();
            const AllocationScope heap(n);
            ::testing::internal::CaptureStdout();
            const int32_t result = entry.call(bench);
            std::fflush(stdout);
            const std::string printed = ::testing::internal::GetCapturedStdout();
            failed = heap.failed();
            const bool refused = result == (entry.symbols.starts_with("zerklsc_") ? ZERKLSC_NO_MEMORY : -1);
            const std::vector<uint8_t> after = bench.written.copy();
            const bool kept = std::equal(before.begin(), before.end(), after.begin());
            EXPECT_TRUE(entry.heap == Heap::spared || refused == failed) << result;
            EXPECT_TRUE(kept || !refused);
            // Method 1 may print before it needs its last memory.
            EXPECT_TRUE(printed.empty() || !refused || entry.symbols == "lsc2d_calibration_wrapper");
            EXPECT_EQ(heap.leftovers().empty(), failed || entry.heap != Heap::left);
            ASSERT_LT(n, 200u);
        }
    }
}

// What a call takes stays within the bytes that are named, and those are not idle.
TEST(HeaderCalls, TakeTheMemoryThatIsNamed) {
    const Geometry geometries[] = {{132, 104, 8, 3},          {640, 480, 32, 4}, {640, 482, 64, 4},
                                   {1022, 766, 32, 20},       {512, 390, 32, 3}, {2000, 1004, 64, 90},
                                   {1000, 810, 40, 150, true}};
    for (const Geometry& geometry : geometries) {
        Workbench bench(13, geometry);
        for (const EntryPoint& entry : entry_points())
            if (entry.memory != nullptr) {
                const AllocationScope heap;
                entry.call(bench);
                const auto taken = static_cast<double>(heap.peak_bytes());
                const auto named = static_cast<double>(entry.memory(bench));
                EXPECT_LE(taken, named) << entry.symbols << ", width " << geometry.width;
                EXPECT_LE(named, taken * entry.slack) << entry.symbols << ", width " << geometry.width;
            }
    }
}

} // namespace
} // namespace zerklsc::testing
