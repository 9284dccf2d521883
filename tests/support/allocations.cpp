#include "support/allocations.h"

#include <algorithm>
#include <cstdlib>

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* p, size_t size);
void __real_free(void* p);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* p, size_t size);
void __wrap_free(void* p);
}

namespace zerklsc::testing {
namespace {

constexpr size_t most_live = 4096;

struct Block {
    void* start;
    size_t size;
};

// A plain array, so that keeping the books takes nothing from the heap itself.
struct Books {
    bool open = false;
    size_t fail_at = 0;
    size_t requests = 0;
    size_t live = 0;
    size_t live_bytes = 0;
    size_t peak_bytes = 0;
    Block blocks[most_live];
};

thread_local Books books;

// Counts a request; true when it is the one to fail.
bool refuse() {
    return books.open && books.requests++ == books.fail_at;
}

void* enter(void* p, size_t size) {
    if (books.open && p != nullptr) {
        if (books.live == most_live)
            std::abort();
        books.blocks[books.live++] = {p, size};
        books.live_bytes += size;
        books.peak_bytes = std::max(books.peak_bytes, books.live_bytes);
    }
    return p;
}

void leave(void* p) {
    Block* const end = books.blocks + books.live;
    Block* const found = std::find_if(books.blocks, end, [p](const Block& b) { return b.start == p; });
    if (!books.open || found == end)
        return;
    books.live_bytes -= found->size;
    std::move(found + 1, end, found);
    --books.live;
}

} // namespace

AllocationScope::AllocationScope(size_t fail_at) {
    if (books.open)
        std::abort();
    books = {};
    books.fail_at = fail_at;
    books.open = true;
}

AllocationScope::~AllocationScope() {
    books.open = false;
    for (size_t i = 0; i < books.live; ++i)
        __real_free(books.blocks[i].start);
}

size_t AllocationScope::requests() const {
    return books.requests;
}

bool AllocationScope::failed() const {
    return books.requests > books.fail_at;
}

std::vector<size_t> AllocationScope::leftovers() const {
    books.open = false;
    std::vector<size_t> sizes;
    for (size_t i = 0; i < books.live; ++i)
        sizes.push_back(books.blocks[i].size);
    books.open = true;
    return sizes;
}

size_t AllocationScope::peak_bytes() const {
    return books.peak_bytes;
}

} // namespace zerklsc::testing

void* __wrap_malloc(size_t size) {
    using namespace zerklsc::testing;
    return refuse() ? nullptr : enter(__real_malloc(size), size);
}

void* __wrap_calloc(size_t count, size_t size) {
    using namespace zerklsc::testing;
    return refuse() ? nullptr : enter(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* p, size_t size) {
    using namespace zerklsc::testing;
    if (refuse())
        return nullptr;
    leave(p);
    return enter(__real_realloc(p, size), size);
}

void __wrap_free(void* p) {
    zerklsc::testing::leave(p);
    __real_free(p);
}
