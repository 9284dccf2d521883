// What the two entry points of the calibration are asked for, and whether the method can do it.
#pragma once

#include <cstdint>

#include "zerklsc_driver.h"

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

// Why a method cannot take the geometry; the frame and the tables are not looked at. What is accepted here is
// refused by the method itself only for a singular system or for want of memory.
zerklsc_status check_method(int32_t algorithm, const Request& request);

} // namespace zerklsc
