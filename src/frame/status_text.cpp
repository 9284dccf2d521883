// zerklsc_status_text
#include "zerklsc_driver.h"

namespace {

constexpr struct {
    zerklsc_status status;
    const char* text;
} lines[] = {
    {ZERKLSC_OK, "no fault"},
    {ZERKLSC_NULL_POINTER, "a pointer is null"},
    {ZERKLSC_NO_MEMORY, "working memory cannot be had"},
    {ZERKLSC_UNKNOWN_ALGORITHM, "the algorithm is not one of 0 to 4"},
    {ZERKLSC_UNKNOWN_ISP, "no gains are known for this ISP type"},
    {ZERKLSC_UNKNOWN_PATTERN, "the Bayer pattern is not one of 0 to 3"},
    {ZERKLSC_UNKNOWN_PRECISION, "the precision mode is not 0 or 1"},
    {ZERKLSC_EMPTY_FRAME, "the frame has no pixel"},
    {ZERKLSC_BAD_STRIDE, "a stride is odd, shorter than a row, or too long for the height"},
    {ZERKLSC_BAD_ROWS, "the rows are not all in the frame"},
    {ZERKLSC_OVERLAP, "input and output overlap without being the same rows"},
    {ZERKLSC_BAD_STEP, "the step of the grid is not one that the ISP and the method take"},
    {ZERKLSC_OTHER_TABLE_SIZE,
     "the planes are one sample past whole cells, where this ISP takes smaller tables"},
    {ZERKLSC_TOO_FEW_NODES, "the grid has too few nodes: choose a smaller step"},
    {ZERKLSC_BAD_RADIUS, "the averaging window does not fit the planes: choose a smaller radius"},
    {ZERKLSC_PLANE_TOO_SMALL, "the planes are too small for what the method measures"},
    {ZERKLSC_NO_SOLUTION, "the system of the surface fit is singular: its points are too few"},
    {ZERKLSC_STEP_NOT_SMOOTH, "the step does not divide 64: this ISP's gains jump between cells"},
    {ZERKLSC_NARROW_FRAME, "the frame is narrower than the 128 pixels that this ISP expects"},
    {ZERKLSC_STREAM_DARKENS, "odd columns and even rows of inner nodes: the lower half decodes 2.0 lower"},
    {ZERKLSC_STREAM_DROPS_NODES, "the last nodes are not stored: their number is no multiple of 4"},
    {ZERKLSC_FIT_ROUNDS, "rounding shows in the surface fit: its points are few"},
};

} // namespace

const char* zerklsc_status_text(zerklsc_status status) {
    for (const auto& line : lines)
        if (line.status == status)
            return line.text;
    return "not a status of this version";
}
