/**
 * @file
 * zerklsc for drivers: what a camera service needs beyond the functions of zerklsc.h.
 *
 * Corrections of frames with padded rows, in bands that a caller's threads share; the reason of every
 * refusal; whether a geometry fits an ISP, a calibration method or an OTP stream; calibration that counts
 * instead of printing.
 *
 * None of these functions prints, keeps anything between calls or changes a record that it takes as const.
 * All may run on any number of threads at the same time, on the same tables too, as long as nothing is
 * written that another call reads or writes. Words, records and gain tables are those of zerklsc.h.
 *
 * A frame from a V4L2 buffer, corrected in place by two threads:
 *
 * @code
 * const size_t stride = format.fmt.pix.bytesperline;
 * const int32_t half = height / 2;
 * zerklsc_correct(&info, buffer, stride, buffer, stride, 0, half);             // the first thread
 * zerklsc_correct(&info, buffer, stride, buffer, stride, half, height - half); // the second
 * @endcode
 */
#ifndef ZERKLSC_DRIVER_H
#define ZERKLSC_DRIVER_H

#include <stddef.h>

#include "zerklsc.h"

/** What a function of this header found. */
typedef enum zerklsc_status {
    ZERKLSC_OK = 0, /**< done, or possible */

    /* Refusals: nothing was written. */
    ZERKLSC_NULL_POINTER = 1,      /**< a pointer is null, or one in a record */
    ZERKLSC_NO_MEMORY = 2,         /**< working memory cannot be had */
    ZERKLSC_UNKNOWN_ALGORITHM = 3, /**< the algorithm is none of ZERKLSC_ALGORITHM_... */
    ZERKLSC_UNKNOWN_ISP = 4,       /**< the generators know no gains for this ISP type */
    ZERKLSC_UNKNOWN_PATTERN = 5,   /**< the Bayer pattern is none of ZERKLSC_PATTERN_... */
    ZERKLSC_UNKNOWN_PRECISION = 6, /**< the precision mode is none of ZERKLSC_PRECISION_... */
    ZERKLSC_EMPTY_FRAME = 7,       /**< the frame has no pixel */
    ZERKLSC_BAD_STRIDE = 8,        /**< a stride is odd, shorter than a row, or too long for the height */
    ZERKLSC_BAD_ROWS = 9,          /**< the rows are not all in the frame */
    ZERKLSC_OVERLAP = 10,          /**< input and output overlap without being the same rows */
    /** the step is 0, above 255 where the ISP takes a byte, or the surface fit cannot lay its points by it */
    ZERKLSC_BAD_STEP = 11,
    /** tvessa2: planes one sample past whole cells, whose tables the ISP takes to be a node smaller */
    ZERKLSC_OTHER_TABLE_SIZE = 12,
    ZERKLSC_TOO_FEW_NODES = 13, /**< the grid has fewer nodes than the method's stencils */
    /** the averaging window or margin is below 0 or does not fit the planes */
    ZERKLSC_BAD_RADIUS = 14,
    /** the planes are too small for what the method measures on them */
    ZERKLSC_PLANE_TOO_SMALL = 15,
    ZERKLSC_NO_SOLUTION = 16, /**< the system of the surface fit is singular: its points are too few */

    /* Advice: possible, but not what one would expect. */
    /** tvessa2: the step does not divide 64: gains jump between cells, above 64 from node to node */
    ZERKLSC_STEP_NOT_SMOOTH = 32,
    /** tvessa2: less than 128 pixels wide, which the ISP does not expect */
    ZERKLSC_NARROW_FRAME = 33,
    /** odd columns and even rows of inner nodes: the lower half decodes 2.0 lower */
    ZERKLSC_STREAM_DARKENS = 34,
    /** the last nodes (their number modulo 4) are not stored in mode 1 */
    ZERKLSC_STREAM_DROPS_NODES = 35,
    /** method 3: not even a frame of one level has unity gain at every node: rounding shows in the fit */
    ZERKLSC_FIT_ROUNDS = 36
} zerklsc_status;

/** Whether a status is a refusal: neither ZERKLSC_OK nor advice. */
#define ZERKLSC_REFUSED(status) ((status) > ZERKLSC_OK && (status) < ZERKLSC_STEP_NOT_SMOOTH)

/** Bayer patterns of isp_param_tag and lsc_otp_info: the colours of planes 0 to 3, in the words of V4L2. */
enum {
    ZERKLSC_PATTERN_GRBG = 0,
    ZERKLSC_PATTERN_RGGB = 1,
    ZERKLSC_PATTERN_BGGR = 2,
    ZERKLSC_PATTERN_GBRG = 3
};

/** lsc_otp_info.precision_mode: bits that a node of all four tables takes in the stream. */
enum { ZERKLSC_PRECISION_24_BITS = 0, ZERKLSC_PRECISION_14_BITS = 1 };

/** What a calibration or a generator found; all zero for a field without a fault. */
typedef struct zerklsc_report {
    /** by plane number: samples above 1023, black level taken off; 0 for methods 2 .. 4, which take them */
    uint32_t clipped_samples[4];
    uint32_t capped_nodes[4]; /**< by plane number: inner nodes that hold the highest gain */
    uint32_t dark_row_ends;   /**< halvane: row ends, of all planes, that extend to 0 or below */
} zerklsc_report;

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The version of the library that runs, as major * 10000 + minor * 100 + patch.
 *
 * @return  above 0; of the same major version as the header that a program was compiled with, or the program
 *          would not have been linked
 */
ZERKLSC_API int32_t zerklsc_version(void);

/**
 * A status in words, for a log.
 *
 * @param status  any value
 * @return        one line of English without a full stop, which the library keeps; never null
 */
ZERKLSC_API const char* zerklsc_status_text(zerklsc_status status);

/**
 * Whether zerklsc_correct() can correct such a frame with tables of the size that lsc2d_table_size() gives,
 * and whether the ISP would correct it as one expects.
 *
 * @param info  width, height, grid and algorithm are read (any of the ISP's algorithms will do); the tables
 *              are not
 * @return      ZERKLSC_OK; refusals: ZERKLSC_NULL_POINTER, ZERKLSC_UNKNOWN_ALGORITHM, ZERKLSC_EMPTY_FRAME,
 *              ZERKLSC_BAD_STEP, ZERKLSC_OTHER_TABLE_SIZE; advice: ZERKLSC_STEP_NOT_SMOOTH,
 *              ZERKLSC_NARROW_FRAME. The first one in this order
 */
ZERKLSC_API zerklsc_status zerklsc_check_correction(const lsc2d_info* info);

/**
 * Corrects rows of a frame, to the bit as lsc2d_correction_wrapper() corrects the whole: any split of the
 * frame into ranges of rows gives its bytes. Samples above 1023 come out as 1023; pixels beyond the width are
 * neither read nor written.
 *
 * @param info        width and height of the whole frame, grid, algorithm, and the tables, each of the size
 *                    that lsc2d_table_size() gives for planes of (width / 2) x (height / 2); the weights are
 *                    not read
 * @param in          the first sample of the first row of the frame, whichever rows are asked for; aligned to
 *                    2 bytes
 * @param in_stride   bytes from one row to the next, even and at least 2 * width
 * @param out         the same for the output. It may be `in` with the same stride; otherwise no row that is
 *                    written may overlap one that is read
 * @param out_stride  bytes from one row to the next, even and at least 2 * width
 * @param first_row   the first row to correct, 0 or above
 * @param rows        how many rows to correct, 0 or above
 * @return            ZERKLSC_OK; ZERKLSC_NULL_POINTER, ZERKLSC_BAD_STRIDE, ZERKLSC_BAD_ROWS, ZERKLSC_OVERLAP
 *                    or what zerklsc_check_correction() refuses, with nothing written. What that function
 *                    only advises against is done
 */
ZERKLSC_API zerklsc_status zerklsc_correct(const lsc2d_info* info, const uint16_t* in, size_t in_stride,
                                           uint16_t* out, size_t out_stride, int32_t first_row, int32_t rows);

/**
 * Whether zerklsc_calibrate() can calibrate such a frame, and zerklsc_correct() then correct with the tables
 * as one expects. Which geometries those are differs from method to method: see lsc2d_calibration_wrapper().
 *
 * Methods 0 .. 2 and 4 are answered at once. Method 3 sets up and inverts the system of its fit, which takes
 * the time and the memory of lsc2d_calibration_beta().
 *
 * A fit whose points are few, without its system being singular, is advised against where rounding shows in
 * it.
 *
 * @param info  all but the tables, the weights and shading_percent is read
 * @return      ZERKLSC_OK. Refusals, in this order: those of zerklsc_check_correction(), which include a
 *              `grid` above 255 and, for methods 0 .. 3, planes one sample past whole cells, although
 *              lsc2d_calibration_wrapper() makes tables for them; ZERKLSC_BAD_RADIUS,
 *              ZERKLSC_PLANE_TOO_SMALL, ZERKLSC_TOO_FEW_NODES, and for method 3 ZERKLSC_BAD_STEP,
 *              ZERKLSC_NO_SOLUTION or ZERKLSC_NO_MEMORY, the first one that its method meets. Advice: that of
 *              zerklsc_check_correction(), and for method 3 ZERKLSC_FIT_ROUNDS
 */
ZERKLSC_API zerklsc_status zerklsc_check_calibration(const lsc2d_info* info);

/**
 * lsc2d_calibration_wrapper() with a status and counts instead of printed lines, and with nothing left
 * allocated: the same tables to the bit, and with method 4 the same weights.
 *
 * @param raw     the flat field, info->width x info->height samples without padding; only read
 * @param info    as for that function; the tables it names are written, and by method 4 its weights
 * @param report  written when the call succeeds; may be null. `capped_nodes` are those of the finished tables
 * @return        ZERKLSC_OK; with nothing written ZERKLSC_NULL_POINTER, what zerklsc_check_calibration()
 *                refuses, or ZERKLSC_NO_MEMORY. What that function only advises against is done
 */
ZERKLSC_API zerklsc_status zerklsc_calibrate(const uint16_t* raw, lsc2d_info* info, zerklsc_report* report);

/**
 * bicubic_lnc_param_gen_orvel_otp() with a status and counts instead of printed lines: the same tables to the
 * bit.
 *
 * @param raw     the flat field, param->width x param->height samples without padding
 * @param param   as for that function; the record is read, the tables it names are written
 * @param report  written when the call succeeds; may be null
 * @return        ZERKLSC_OK; with nothing written ZERKLSC_NULL_POINTER, ZERKLSC_UNKNOWN_PATTERN,
 *                ZERKLSC_BAD_STEP (low byte of the step 0), ZERKLSC_BAD_RADIUS (the margin is as wide as a
 *                plane), ZERKLSC_TOO_FEW_NODES (fewer than 3 x 3), ZERKLSC_NO_MEMORY, or ZERKLSC_UNKNOWN_ISP
 *                (types above 3)
 */
ZERKLSC_API zerklsc_status zerklsc_generate_orvel_otp(const uint16_t* raw, const isp_param_tag* param,
                                                      zerklsc_report* report);

/**
 * The same for bicubic_lnc_param_gen_halvane().
 *
 * @param raw     the flat field, param->width x param->height samples without padding
 * @param param   as for that function; corner_ratio is written, and the tables
 * @param report  written when the call succeeds; may be null
 * @return        as zerklsc_generate_orvel_otp(), and ZERKLSC_PLANE_TOO_SMALL for planes of fewer than 50
 *                samples in either direction
 */
ZERKLSC_API zerklsc_status zerklsc_generate_halvane(const uint16_t* raw, isp_param_tag* param,
                                                    zerklsc_report* report);

/**
 * The bytes of an OTP stream, for the buffer of lsc_compress() or the part of a memory that holds it.
 *
 * @param grid_width      nodes per table row, border included, as in lsc_otp_info
 * @param grid_height     table rows, border included, as in lsc_otp_info
 * @param precision_mode  ZERKLSC_PRECISION_...
 * @return                3 bytes for each inner node or 7 for every four; 0 for an unknown mode and for
 *                        tables without an inner node
 */
ZERKLSC_API uint64_t zerklsc_stream_size(int32_t grid_width, int32_t grid_height, int32_t precision_mode);

/**
 * Whether tables of that size come back from a stream as they went in, but for the rounding of the mode.
 *
 * @param info  bayer_pattern, grid_width, grid_height and precision_mode are read
 * @return      ZERKLSC_OK; refusals: ZERKLSC_NULL_POINTER, ZERKLSC_UNKNOWN_PATTERN,
 *              ZERKLSC_UNKNOWN_PRECISION, ZERKLSC_TOO_FEW_NODES (fewer than 3 x 3 inner nodes: their border
 *              cannot be rebuilt); advice: ZERKLSC_STREAM_DARKENS, ZERKLSC_STREAM_DROPS_NODES. The first one
 *              in this order
 */
ZERKLSC_API zerklsc_status zerklsc_check_stream(const lsc_otp_info* info);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZERKLSC_DRIVER_H */
