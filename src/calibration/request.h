// What lsc2d_calibration_wrapper() is asked for, and whether its method can do it.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc {

struct Request {
    uint16_t* raw;  // the methods take it without const, but only read it
    int32_t width;  // of the raw frame
    int32_t height; // of the raw frame
    int32_t plane_w;
    int32_t plane_h;
    int32_t table_w;
    int32_t table_h;
    uint16_t* tables[ZERKLSC_CHANNELS];
    lsc2d_calib_param param;
};

Request make_request(const uint16_t* raw, const lsc2d_info& info);

// False for an unknown algorithm and for a geometry that the method cannot take. What depends on the filter
// alone and what the surface fit asks beyond that is refused by the methods themselves, before they write.
bool method_accepts(int32_t algorithm, const Request& request);

} // namespace zerklsc
