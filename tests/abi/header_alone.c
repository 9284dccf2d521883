#include "zerklsc.h"

/* A C caller reaches a function and a record. */
int32_t header_alone(lsc2d_info* info, uint16_t* frame);
int32_t header_alone(lsc2d_info* info, uint16_t* frame) {
    info->algorithm = ZERKLSC_ALGORITHM_ORVEL;
    return lsc2d_correction_wrapper(frame, frame, info);
}
