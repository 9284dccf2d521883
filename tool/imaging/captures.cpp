// check_alike, mean_of
#include "imaging/captures.h"

#include "failure.h"

namespace zerklsc::tool {

void check_alike(const std::vector<RawFrame>& captures) {
    const RawFrame& first = captures.front();
    for (const RawFrame& other : captures) {
        const char* differs = nullptr;
        if (other.width != first.width || other.height != first.height)
            differs = "size";
        else if (other.bits != first.bits)
            differs = "bit depth";
        else if (other.pattern != first.pattern)
            differs = "Bayer pattern";
        else if (other.black != first.black)
            differs = "black level";
        else if (other.white_level() != first.white_level())
            differs = "white level";
        if (differs != nullptr)
            data_failure("{}: its {} is not that of {}: give captures of one module with the same settings",
                         other.name, differs, first.name);
    }
}

RawFrame mean_of(const std::vector<RawFrame>& captures, int left_out) {
    RawFrame mean = captures.front();
    std::vector<uint32_t> sums(mean.samples.size());
    uint32_t count = 0;
    for (size_t i = 0; i < captures.size(); ++i) {
        if (static_cast<int>(i) == left_out)
            continue;
        ++count;
        for (size_t k = 0; k < sums.size(); ++k)
            sums[k] += captures[i].samples[k];
    }
    for (size_t k = 0; k < sums.size(); ++k)
        mean.samples[k] = static_cast<uint16_t>((sums[k] + count / 2) / count);
    return mean;
}

} // namespace zerklsc::tool
