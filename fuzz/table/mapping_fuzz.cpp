// lsc2d_table_mapping with any tables, images and crop window.
#include "support/input.h"
#include "zerklsc.h"

namespace {

uint16_t take_size(zerklsc::fuzz::Input& input) {
    return static_cast<uint16_t>(input.number());
}

lsc2d_table_desc take_table(zerklsc::fuzz::Input& input) {
    lsc2d_table_desc desc{};
    for (uint16_t* field :
         {&desc.width, &desc.height, &desc.step_x, &desc.step_y, &desc.table_w, &desc.table_h})
        *field = take_size(input);
    return desc;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    lsc2d_table_desc src = take_table(input), dst = take_table(input);
    lsc2d_crop crop{};
    for (uint16_t* field : {&crop.x, &crop.y, &crop.width, &crop.height})
        *field = take_size(input);
    const int64_t read = elements_of(src.table_w, src.table_h),
                  written = elements_of(dst.table_w, dst.table_h);
    if (read < 0 || written < 0)
        return 0;
    std::vector<uint16_t> from = input.buffer<uint16_t>(read), to = input.buffer<uint16_t>(written);
    src.table = from.data();
    dst.table = to.data();
    lsc2d_table_mapping(&src, &dst, &crop);
    return 0;
}
