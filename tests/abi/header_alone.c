#include "zerklsc.h"

#include "zerklsc_driver.h"

/* A C caller reaches a function and a record of each header. */
zerklsc_status header_alone(lsc2d_info* info, uint16_t* frame);
zerklsc_status header_alone(lsc2d_info* info, uint16_t* frame) {
    info->algorithm = ZERKLSC_ALGORITHM_ORVEL;
    lsc2d_correction_wrapper(frame, frame, info);
    return zerklsc_check_correction(info);
}
