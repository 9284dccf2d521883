// zerklsc_status_text
#include "zerklsc_driver.h"

const char* zerklsc_status_text(zerklsc_status status) {
    switch (status) {
    case ZERKLSC_OK:
        return "no fault";
    case ZERKLSC_NULL_POINTER:
        return "a pointer is null";
    case ZERKLSC_NO_MEMORY:
        return "working memory cannot be had";
    case ZERKLSC_UNKNOWN_ALGORITHM:
        return "the algorithm is not one of 0 to 4";
    case ZERKLSC_UNKNOWN_ISP:
        return "no gains are known for this ISP type";
    case ZERKLSC_UNKNOWN_PATTERN:
        return "the Bayer pattern is not one of 0 to 3";
    case ZERKLSC_UNKNOWN_PRECISION:
        return "the precision mode is not 0 or 1";
    case ZERKLSC_EMPTY_FRAME:
        return "the frame has no pixel";
    case ZERKLSC_BAD_STRIDE:
        return "a stride is odd, shorter than a row, or too long for the height";
    case ZERKLSC_BAD_ROWS:
        return "the rows are not all in the frame";
    case ZERKLSC_OVERLAP:
        return "input and output overlap without being the same rows";
    case ZERKLSC_BAD_STEP:
        return "the step of the grid is not in 1 to 255";
    case ZERKLSC_OTHER_TABLE_SIZE:
        return "the planes are one sample past whole cells, where this ISP takes smaller tables: choose "
               "another step";
    case ZERKLSC_TOO_FEW_NODES:
        return "the grid has too few nodes: choose a smaller step";
    case ZERKLSC_BAD_RADIUS:
        return "the averaging window does not fit the planes: choose a smaller radius";
    case ZERKLSC_PLANE_TOO_SMALL:
        return "the planes are too small for what the method measures";
    case ZERKLSC_NO_SOLUTION:
        return "the surface fit has no solution";
    case ZERKLSC_STEP_NOT_SMOOTH:
        return "the step does not divide 64: this ISP's gains jump between cells";
    case ZERKLSC_NARROW_FRAME:
        return "the frame is narrower than the 128 pixels that this ISP expects";
    case ZERKLSC_STREAM_DARKENS:
        return "odd columns and even rows of inner nodes: the lower half decodes 2.0 lower";
    case ZERKLSC_STREAM_DROPS_NODES:
        return "the last nodes are not stored: their number is no multiple of 4";
    }
    return "not a status of this version";
}
