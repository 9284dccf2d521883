// What a pass over a frame costs that does next to nothing: the part of a kernel's time that is the memory's.
#include <memory>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "workload.h"

namespace zerklsc::bench {
namespace {

using Samples = uint16_t __attribute__((vector_size(16)));

struct Frames {
    static constexpr size_t bytes = size_t{4000} * 3000 * sizeof(uint16_t);
    std::vector<Samples> in = std::vector<Samples>(bytes / sizeof(Samples)), out = in;
};

void add_one(const std::vector<Samples>& in, std::vector<Samples>& out) {
    for (size_t i = 0; i < in.size(); ++i)
        out[i] = in[i] + uint16_t{1};
}

#if defined(__SSE2__)
void add_one_past_caches(const std::vector<Samples>& in, std::vector<Samples>& out) {
    for (size_t i = 0; i < in.size(); ++i)
        _mm_stream_si128(reinterpret_cast<__m128i*>(&out[i]), reinterpret_cast<__m128i>(in[i] + uint16_t{1}));
    _mm_sfence();
}
#endif

Workload row(const char* name, std::function<void()> pass) {
    return {.name = name,
            .frame_bytes = Frames::bytes,
            .fast = std::move(pass),
            .plain = {},
            .at_most = {},
            .at_least = {}};
}

} // namespace

std::vector<Workload> pass_workloads() {
    const auto frames = std::make_shared<Frames>();
    return {
        row("one addition to each sample", [=] { add_one(frames->in, frames->out); }),
            row("one addition to each sample, in place", [=] { add_one(frames->out, frames->out); }),
#if defined(__SSE2__)
            row("one addition to each sample, past the caches",
                [=] { add_one_past_caches(frames->in, frames->out); }),
#endif
    };
}

} // namespace zerklsc::bench
