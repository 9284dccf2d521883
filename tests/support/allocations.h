// Counts what the code under test takes from the heap, and makes the n-th request fail.
//
// The test programs are linked with malloc, calloc, realloc and free redirected here; outside an
// AllocationScope they are the plain functions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zerklsc::testing {

// What happens on the heap between construction and destruction, on this thread. Scopes do not nest. What the
// code under test left behind is freed by the destructor.
class AllocationScope {
  public:
    static constexpr size_t never = SIZE_MAX;

    // fail_at: which request, counted from 0, returns null.
    explicit AllocationScope(size_t fail_at = never);
    ~AllocationScope();
    AllocationScope(const AllocationScope&) = delete;
    AllocationScope& operator=(const AllocationScope&) = delete;

    size_t requests() const; // how many were made so far
    bool failed() const;     // whether the one to fail has been reached
    std::vector<size_t>
    leftovers() const;         // sizes in bytes of what is still allocated, in the order of the requests
    size_t peak_bytes() const; // the most that was allocated at one time
};

} // namespace zerklsc::testing
