/**
 * @file zerklsc.h
 * Lens-shading calibration, correction, table processing and OTP compression.
 *
 * This header is the manual. It declares all that the library exports for calibration and correction, for C99
 * and C++: a flat set of functions on caller-owned records and buffers. No state is kept between calls, and
 * no pointer beyond the call that got it.
 *
 * Reading order: this page, then lsc2d_info, lsc2d_table_size(), lsc2d_calibration_wrapper() and
 * lsc2d_correction_wrapper(), which are all that most programs call; lsc_otp_info and lsc_compress() for a
 * module's memory; lsc2d_table_mapping() for other crops and sizes of the same sensor. The other functions
 * are the parts that these are made of, grouped by what they work on.
 *
 * Drivers find what they need beyond in zerklsc_driver.h: frames with padded rows, bands of rows for several
 * threads, a reason for every refusal, and whether a geometry fits an ISP, before the picture is wrong.
 *
 * Calibrate, correct and pack:
 * @code
 * #include <stdlib.h>
 * #include <zerklsc.h>
 *
 * // Calibrates on a flat field and corrects a frame, both of 10 bits without black level. The stream for the
 * // OTP memory has 3 * (table_w - 2) * (table_h - 2) bytes. Returns 0 or -1.
 * int shade(const uint16_t* flat, uint16_t* frame, uint16_t width, uint16_t height, uint8_t* stream) {
 *     enum { STEP = 64 };
 *     lsc2d_info info = {0};
 *     lsc_otp_info otp = {0};
 *     int32_t table_w, table_h, status = -1;
 *     info.width = width;
 *     info.height = height;
 *     info.grid = STEP;
 *     info.shading_percent = 100;
 *     info.filter_radius = 8;
 *     info.algorithm = ZERKLSC_ALGORITHM_ORVEL;
 *     lsc2d_table_size(width / 2, height / 2, STEP, STEP, &table_w, &table_h);
 *     otp.grid_width = table_w;
 *     otp.grid_height = table_h;
 *     otp.bayer_pattern = 1; // R at the top left
 *     otp.stream = stream;
 *     for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
 *         otp.lsc_table[c] = info.lsc_table[c] = malloc(sizeof(uint16_t) * (size_t)(table_w * table_h));
 *     if (lsc2d_calibration_wrapper(flat, &info) == 0 && lsc2d_correction_wrapper(frame, frame, &info) == 0)
 *         status = lsc_compress(&otp);
 *     for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
 *         free(info.lsc_table[c]);
 *     return status;
 * }
 * @endcode
 *
 * Words used throughout:
 * @verbatim
 * raw frame    width x height unsigned 16-bit samples of a 2 x 2 Bayer mosaic, row by row, no padding
 * plane        one of the four half-size images of a raw frame, (width / 2) x (height / 2) samples; plane
 *              number c = (x & 1) + 2 * (y & 1) for raw column x and raw row y
 * pointer      index of a table in isp_param_tag, which lists the planes column by column: 0, 2, 1, 3
 * colour       R, Gr, Gb or B; which plane has which colour follows from the Bayer pattern
 * grid, node   the nodes laid over a plane; node (i, j) stands at plane sample (i * step, j * step), for
 *              plane c that is raw pixel (2 * i * step + (c & 1), 2 * j * step + (c >> 1))
 * step         distance of two nodes in plane samples
 * cell, phase  what lies between nodes; offset of a sample in its cell, 0 .. step - 1
 * border       one extrapolated node on every side of the grid
 * gain         what a sample is multiplied with; in fixed point 10 fractional bits, 1024 = 1.0
 * gain table   the gains of a grid and its border, row by row, unsigned 16-bit; row 0 and column 0 are
 *              border. lsc2d_table_size() gives its row length and its row count
 * level        brightness of a sample or of an average
 * tap          one weight of an averaging window or of cubic interpolation
 * @endverbatim
 *
 * Status: functions that return int32_t return 0 for success and -1 for a refused argument, a failed
 * allocation or a singular system, unless their comment says otherwise. Where a pointer is not said to be
 * nullable, null is a caller's error. A status of 0 does not say that the picture is right: see
 * lsc2d_table_size() for the grids that an ISP does not fit.
 *
 * Buffers: arrays need the alignment of their elements and no more; streams are bytes. What a comment calls
 * read is not written, and may be shared by calls that run at the same time. Buffers that are written overlap
 * nothing else that a call uses, unless the comment allows it.
 *
 * Threads: the library creates none. Every function may run on distinct buffers in any number of threads. Two
 * things are written where it may not be expected: bicubic_lnc_correction_vessaL2() rewrites the weights of
 * its record, and lsc2d_calibration_wrapper() with algorithm 4 those of its info.
 *
 * Standard output: refused pointers, a narrow frame, an ISP type without gains, a singular fit and doubtful
 * samples print a line each; the functions say which. The parameter generators print 49 or 50 bytes for every
 * sample above 1023: a 12-bit frame of 1.2 million pixels above that prints 60 MB. Nothing is printed
 * otherwise.
 *
 * Memory: what a function takes from the heap while it runs is said where it is more than a few hundred
 * bytes, in bytes; it is freed before the function returns, except where a comment says what stays. e is the
 * number of entries of one gain table, n the number of its nodes without the border.
 */
#ifndef ZERKLSC_H
#define ZERKLSC_H

#include <stdint.h>

/** The version of this header; zerklsc.pc and the CMake package have the same. */
#define ZERKLSC_VERSION_MAJOR 1
#define ZERKLSC_VERSION_MINOR 0 /**< functions were added */
#define ZERKLSC_VERSION_PATCH 0 /**< faults were mended */

#if defined(__GNUC__)
/** Marks what the shared library exports. */
#define ZERKLSC_API __attribute__((visibility("default")))
#else
#define ZERKLSC_API
#endif

/**
 * @defgroup constants Constants and records
 * @{
 */

/** Numbers of the gain table. */
enum {
    ZERKLSC_UNITY_GAIN = 1024,    /**< a gain of 1.0 in a gain table */
    ZERKLSC_HIGHEST_GAIN = 16383, /**< the highest gain that the hardware takes, just under 16.0 */
    ZERKLSC_BORDER = 1,           /**< border nodes on each side of a gain table */
    ZERKLSC_CHANNELS = 4          /**< planes of a frame, tables of a set */
};

/**
 * lsc2d_info.algorithm: how lsc2d_calibration_wrapper() calibrates, and for which ISP the tables are
 * corrected. To correct only, any of 0 .. 3 means the tvessa2 ISP and 4 the vessaL2 ISP.
 */
enum {
    ZERKLSC_ALGORITHM_HALVANE = 0,      /**< parameter generator with a measured corner ratio; tvessa2 */
    ZERKLSC_ALGORITHM_ORVEL_OTP = 1,    /**< parameter generator, then border and shading model; tvessa2 */
    ZERKLSC_ALGORITHM_ORVEL = 2,        /**< direct sampling at the grid nodes; tvessa2 */
    ZERKLSC_ALGORITHM_BETA = 3,         /**< least-squares bicubic surface; tvessa2 */
    ZERKLSC_ALGORITHM_ORVEL_WEIGHTS = 4 /**< as 2, and fills the weight block; vessaL2 */
};

/** isp_param_tag.isp_type: which ISP generation a parameter record is for. */
enum {
    ZERKLSC_ISP_TVESSA2 = 3, /**< fixed weights of 64 phases */
    ZERKLSC_ISP_VESSAL2 = 4  /**< weights of the step */
};

/** imfilter_t.filter_type: the weights of an averaging window. */
enum {
    ZERKLSC_FILTER_BOX = 0,     /**< every tap 1 */
    ZERKLSC_FILTER_GAUSSIAN = 1 /**< rounded to whole weights: a disc of ones */
};

/** imfilter_t.boundary_mode: where taps beyond the edge of a plane are read. */
enum {
    ZERKLSC_BOUNDARY_MIRROR = 0, /**< mirrored about the edge sample, once, without repeating it */
    ZERKLSC_BOUNDARY_CLAMP = 1   /**< at the edge sample */
};

/** shading_t.type: how the factor falls from 1 at the centre to `percent` at the image corners. */
enum {
    ZERKLSC_SHADING_SQUARE_ROOT = 0, /**< its square is linear in the squared distance */
    ZERKLSC_SHADING_EXPONENTIAL = 1, /**< its logarithm is linear in the squared distance */
    ZERKLSC_SHADING_LINEAR = 2       /**< linear in the squared distance */
};

/** How update_table_border() moves the gains of the last column and row to their nodes. */
enum {
    ZERKLSC_EDGE_LINEAR = 1,         /**< for linear interpolation */
    ZERKLSC_EDGE_CUBIC_LINEAR = 2,   /**< for cubic interpolation with a linear border */
    ZERKLSC_EDGE_CUBIC_QUADRATIC = 3 /**< for cubic interpolation with a quadratic border */
};

/** How update_table_border() extrapolates the border. */
enum {
    ZERKLSC_FILL_LINEAR = 0,   /**< in a line through two nodes */
    ZERKLSC_FILL_QUADRATIC = 1 /**< in a parabola through three nodes */
};

/** Half a table of cubic weights for the ISP; filled by generate_bicubic_weight_table(). */
typedef struct lnc_bicubic_weight_t_64_tag {
    int16_t weights[128][3]; /**< row i: taps at -1, 0 and +1 for phase i, 1024 = 1.0; tap +2 is the rest */
    uint16_t reserved_0;     /**< written as 0 */
    uint16_t reserved_1;     /**< written as 0 */
    uint16_t reserved_2;     /**< written as 0 */
} lnc_bicubic_weight_t_64_tag;

/** The record of the two entry points, lsc2d_calibration_wrapper() and lsc2d_correction_wrapper(). */
typedef struct lsc2d_info {
    uint16_t width;                     /**< raw frame width in pixels */
    uint16_t height;                    /**< raw frame height in pixels */
    uint16_t* lsc_table[4];             /**< gain tables by plane number, caller-owned */
    lnc_bicubic_weight_t_64_tag weight; /**< written by calibration with algorithm 4 */
    /**
     * Step of the grid in plane samples. For algorithms 0 .. 3 it should divide 64, and half the width and
     * half the height should not be one more than a multiple of it. Calibration with 2 and 3 takes a step
     * above 255, but the correction uses its low byte and then reads far beyond the tables. See
     * lsc2d_table_size().
     */
    uint16_t grid;
    /**
     * How much is corrected, in percent. 100 corrects all; below that it depends on the algorithm. With 0 it
     * is the share of the lens's fall-off that is taken away: 0 leaves the corners about as they are. With 2
     * .. 4 it is the share of the gain that is kept at the corners: 0 gives gains of 0 there, with status 0.
     * With 1 it acts twice, in the generator's target and as the share of the gain. Gains below 1.0 that come
     * of this are in the tables, but the corrections take them as 1.0.
     */
    int32_t shading_percent;
    int32_t filter_radius; /**< radius of the averaging window in plane samples; only calibration reads it */
    int32_t algorithm;     /**< ZERKLSC_ALGORITHM_... */
} lsc2d_info;

/** The ISP-side parameter record. The ISP lists the planes column by column: 0, 2, 1, 3. */
typedef struct isp_param_tag {
    uint32_t reserved_0;                /**< not used; 0 in every record that the library makes */
    uint8_t blc[4];                     /**< black levels by plane number, read by the parameter generators */
    uint16_t* lsc_table[4];             /**< gain tables of planes 0, 2, 1, 3, caller-owned */
    lnc_bicubic_weight_t_64_tag weight; /**< rewritten by bicubic_lnc_correction_vessaL2() */
    uint16_t grid;                      /**< step in plane samples; but for vessaL2, its low byte counts */
    int32_t shading_percent;            /**< percentage of the generators, which say what it does */
    int32_t filter_radius;              /**< sampling margin of the generators in plane samples */
    int32_t isp_algorithm;              /**< calibration algorithm, 1 (orvel) or 0 (halvane) */
    uint32_t reserved_1;                /**< not used; 0 in every record that the library makes */
    double corner_ratio;   /**< 16 x the smallest corner ratio; written by the halvane generator */
    uint16_t width;        /**< raw frame width in pixels */
    uint16_t height;       /**< raw frame height in pixels */
    uint8_t bayer_pattern; /**< 0 Gr R / B Gb, 1 R Gr / Gb B, 2 B Gb / Gr R, 3 Gb B / R Gr */
    uint8_t isp_type;      /**< ZERKLSC_ISP_... */
} isp_param_tag;

/** How to calibrate; filled by lsc2d_calib_param_default(). */
typedef struct lsc2d_calib_param {
    int32_t grid;            /**< step of the grid in plane samples */
    int32_t filter_type;     /**< ZERKLSC_FILTER_... */
    int32_t filter_radius;   /**< radius of the averaging window in plane samples */
    int32_t boundary_mode;   /**< ZERKLSC_BOUNDARY_... */
    int32_t border_mode;     /**< edge mode of update_table_border() */
    int32_t border_aux;      /**< fill mode of update_table_border() */
    int32_t shading_type;    /**< ZERKLSC_SHADING_... */
    int32_t shading_percent; /**< share of the gain kept at the corners, in percent */
} lsc2d_calib_param;

/** Black levels of a raw frame, for isp_blc_process(). */
typedef struct isp_blc_param {
    uint16_t width;  /**< raw frame width in pixels */
    uint16_t height; /**< raw frame height in pixels */
    uint8_t blc[4];  /**< black levels by plane number */
} isp_blc_param;

/** An averaging window of (2 * filter_radius + 1)^2 taps. */
typedef struct imfilter_t {
    int32_t filter_type;   /**< ZERKLSC_FILTER_... */
    int32_t filter_radius; /**< 0 or above */
    int32_t boundary_mode; /**< ZERKLSC_BOUNDARY_... */
    float* sigma;          /**< sigma of the Gaussian in samples, read; may be null for a box */
} imfilter_t;

/** A measurement point on a plane. */
typedef struct pix_point {
    int16_t x;      /**< column */
    int16_t y;      /**< row */
    uint16_t value; /**< measured level, written by img_sample() */
} pix_point;

/** A radial shading model. */
typedef struct shading_t {
    int32_t type;     /**< ZERKLSC_SHADING_...; any other value means no shading */
    int32_t percent;  /**< factor at the image corners, in percent */
    int32_t reserved; /**< not read */
} shading_t;

/** A gain table with its grid, for lsc2d_grid_convert(). */
typedef struct lsc2d_grid {
    uint16_t* table; /**< (grid_w + 2) x (grid_h + 2) gains */
    int32_t step_x;  /**< node spacing in plane samples */
    int32_t step_y;  /**< node spacing in plane samples */
    int32_t grid_w;  /**< nodes per row, border left out */
    int32_t grid_h;  /**< rows of nodes, border left out */
} lsc2d_grid;

/** A gain table with its image, for lsc2d_table_mapping(). */
typedef struct lsc2d_table_desc {
    uint16_t width;   /**< plane width in samples */
    uint16_t height;  /**< plane height in samples */
    uint16_t step_x;  /**< node spacing in plane samples */
    uint16_t step_y;  /**< node spacing in plane samples */
    uint16_t table_w; /**< row length, border included */
    uint16_t table_h; /**< row count, border included */
    uint16_t* table;  /**< table_w x table_h gains */
} lsc2d_table_desc;

/**
 * A crop window in plane samples of the source image. A window of raw pixels with an odd left column
 * exchanges planes 0 and 1 and planes 2 and 3 of the cropped frame, one with an odd top row planes 0 and 2
 * and planes 1 and 3: give each destination plane the source table of the plane that it shows.
 */
typedef struct lsc2d_crop {
    uint16_t x;      /**< left column */
    uint16_t y;      /**< top row */
    uint16_t width;  /**< columns */
    uint16_t height; /**< rows */
} lsc2d_crop;

/** The record of lsc_compress() and lsc_decompress(). */
typedef struct lsc_otp_info {
    /**
     * 0 .. 3, as in isp_param_tag: the base of the stream is the table of Gb, 3, 2, 1 or 0. The stream does
     * not say it: both ends must agree, or tables come back exchanged.
     */
    uint8_t bayer_pattern;
    int32_t grid_width;     /**< nodes per table row, border included */
    int32_t grid_height;    /**< table rows, border included */
    uint16_t* lsc_table[4]; /**< gain tables by plane number, caller-owned */
    uint8_t* stream;        /**< the packed stream, caller-owned */
    uint8_t precision_mode; /**< 0: 24 bits per node; 1: 14 bits per node; not in the stream */
} lsc_otp_info;

/** @} */

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup geometry Records and grid geometry
 * @{
 */

/**
 * Fills a calibration parameter record with the defaults: box window, mirrored boundary, linear edge,
 * quadratic fill, square-root shading.
 *
 * @param param            written; every field
 * @param grid             step of the grid in plane samples, above 0
 * @param filter_radius    radius of the averaging window in plane samples, 0 or above
 * @param shading_percent  share of the gain kept at the corners, in percent (100: none is taken away)
 */
ZERKLSC_API void lsc2d_calib_param_default(lsc2d_calib_param* param, int32_t grid, int32_t filter_radius,
                                           int32_t shading_percent);

/**
 * Copies an info record into the ISP's parameter record: sizes, step, radius, percentage, weight block, and
 * the table pointers with the middle two exchanged (the info lists the planes row by row, the ISP column by
 * column). `isp_type` becomes 3 for algorithms 0..3 and 4 for algorithm 4; any other algorithm leaves it.
 * `blc`, `isp_algorithm`, `corner_ratio`, `bayer_pattern` and the reserved words are left as they were.
 *
 * @param info   read; not null
 * @param param  written; not null
 */
ZERKLSC_API void lsc2d_info_to_isp_param(const lsc2d_info* info, isp_param_tag* param);

/**
 * The way back, destination first. `algorithm` is taken from the record's `isp_algorithm`, which
 * lsc2d_info_to_isp_param() does not write: the two are each other's inverse in all other fields.
 *
 * @param info   written; not null
 * @param param  read; not null
 */
ZERKLSC_API void isp_param_to_lsc2d_info(lsc2d_info* info, const isp_param_tag* param);

/**
 * Counts the grid nodes of a plane: ceil(size / step) + 1 in each direction, so the last node lies on or
 * beyond the last sample.
 *
 * @param width   plane width in samples, half that of the raw frame
 * @param height  plane height in samples, half that of the raw frame
 * @param step_x  node spacing in plane samples, above 0 (0 gives 0 nodes per row)
 * @param step_y  node spacing in plane samples, above 0 (0 gives 0 rows)
 * @param grid_w  written; nodes per row
 * @param grid_h  written; rows of nodes
 */
ZERKLSC_API void lsc2d_grid_samples(int32_t width, int32_t height, int32_t step_x, int32_t step_y,
                                    int32_t* grid_w, int32_t* grid_h);

/**
 * Sizes a gain table: lsc2d_grid_samples() and two border nodes more in each direction.
 *
 * This is what calibration writes and what the vessaL2 ISP reads. The tvessa2 ISP (algorithms 0 .. 3) reads
 * something else at some geometries, and no status says so:
 *   - It counts nodes from the last sample. Where the width is one more than a multiple of the step it takes
 *     rows one entry shorter, and corrects with the gains of other places: the picture is wrong. Where the
 *     height is, it reads one row less.
 *   - It has 64 phases. A step that does not divide 64 leaves its cells before their end, and one above 64
 *     takes the gain of the node for the whole cell: the correction is weak.
 *   - It takes the low byte of the step. Above 255, it reads tables of the size that this function gives for
 *     that byte, which are larger: memory beyond them.
 *
 * zerklsc_check_correction() of zerklsc_driver.h finds all of them.
 *
 * @param width    plane width in samples, half that of the raw frame
 * @param height   plane height in samples, half that of the raw frame
 * @param step_x   node spacing in plane samples, above 0 (0 gives 0 entries per row)
 * @param step_y   node spacing in plane samples, above 0 (0 gives 0 rows)
 * @param table_w  written; entries per row
 * @param table_h  written; rows
 */
ZERKLSC_API void lsc2d_table_size(int32_t width, int32_t height, int32_t step_x, int32_t step_y,
                                  int32_t* table_w, int32_t* table_h);

/** @} */

/**
 * @defgroup bayer Bayer mosaic and black level
 * @{
 */

/**
 * Splits a raw frame into its four planes. An odd last column or row is not read.
 *
 * @param raw     width x height samples, row by row
 * @param planes  four buffers by plane number, each written with (width / 2) x (height / 2) samples, row by
 *                row; they overlap neither `raw` nor each other
 * @param width   frame width in pixels; below 2 there is nothing to split
 * @param height  frame height in pixels; below 2 there is nothing to split
 */
ZERKLSC_API void bayer_split_channel(const uint16_t* raw, uint16_t** planes, int32_t width, int32_t height);

/**
 * Puts four planes back into a raw frame: the inverse of bayer_split_channel(). Samples of an odd last column
 * or row are left as they were.
 *
 * @param raw     written; width x height samples, row by row
 * @param planes  four buffers by plane number, each of (width / 2) x (height / 2) samples, row by row; they
 *                do not overlap `raw`
 * @param width   frame width in pixels; below 2 there is nothing to merge
 * @param height  frame height in pixels; below 2 there is nothing to merge
 * @return        height / 2, or width / 2 for a height below 2
 */
ZERKLSC_API int32_t bayer_merge_channel(uint16_t* raw, uint16_t** planes, int32_t width, int32_t height);

/**
 * Takes the black level of its plane off every sample of a raw frame; a sample at or below its level becomes
 * 0.
 *
 * @param raw    param->width x param->height samples, row by row, changed in place
 * @param param  frame size and black levels
 */
ZERKLSC_API void isp_blc_process(uint16_t* raw, const isp_blc_param* param);

#ifdef __cplusplus
extern "C++" {
/**
 * Turns a raw frame by 180 degrees, for sensors that are mounted upside down.
 *
 * Memory: each call leaves a copy of the frame, width * height * 2 bytes, allocated.
 *
 * @param raw     width x height samples, row by row, changed in place
 * @param width   frame width in pixels; below 1 there is nothing to turn and nothing is left
 * @param height  frame height in pixels; below 1 there is nothing to turn and nothing is left
 * @return        height; -1 with the frame untouched when the copy cannot be had
 */
ZERKLSC_API int bayer_rotation(unsigned short* raw, int width, int height);
}
#endif

/** @} */

/**
 * @defgroup sampling Sampling and measurement of flat-field planes
 * @{
 */

/**
 * Writes the weights of an averaging window. A box weighs every tap 1. The Gaussian, exp(-(dx^2 + dy^2) / (2
 * pi sigma^2)), is rounded to whole weights, which makes it a disc of ones of radius sigma * sqrt(2 pi ln 2)
 * = 2.087 sigma; a sigma of 0 has no ones.
 *
 * @param mask_centre  the centre of (2r + 1) x (2r + 1) weights: tap (dx, dy) is mask_centre[dy * (2r + 1) +
 *                     dx] for dx and dy in -r .. r, r = filter->filter_radius; written
 * @param sum          written; the sum of all weights (its low 32 bits)
 * @param filter       type, radius and, for a Gaussian, sigma; a radius below 0 has no weights and the sum 0
 * @return             0; -1 with nothing written for an unknown type or a Gaussian without a sigma
 */
ZERKLSC_API int32_t get_filter_mask(int32_t* mask_centre, int32_t* sum, const imfilter_t* filter);

/**
 * Averages a plane around every node of a grid. Nodes beyond the last sample are measured at the last sample;
 * taps beyond an edge are mirrored about the edge sample (once, without repeating it) or read at the edge
 * sample.
 *
 * The level is (float)sum * (1.0f / (float)weights): on a constant plane that is the constant, or its
 * neighbour where the reciprocal is not exact.
 *
 * Memory: 4 * (r + 1) for a radius of r; where windows are so large that they share the sums of whole rows,
 * at most 40 for each node and 4 * (width + 1) besides.
 *
 * @param plane    width x height samples, row by row
 * @param samples  written; out_w x out_h levels, row by row
 * @param width    plane width in samples
 * @param height   plane height in samples
 * @param step_x   node spacing in samples; a node before the first sample is measured at the first
 * @param step_y   node spacing in samples, likewise
 * @param out_w    nodes per row (lsc2d_grid_samples()); below 1 nothing is sampled
 * @param out_h    rows of nodes (lsc2d_grid_samples()); below 1 nothing is sampled
 * @param filter   the window; its radius is 0 .. 11584 (a mask of just under 2 GiB), when mirrored below the
 *                 width and the height
 * @return         0; -1 with nothing written for an unknown type or boundary mode, a radius outside its
 *                 range, a Gaussian without a sigma or without a tap, an empty plane, or no memory
 */
ZERKLSC_API int32_t img_sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height,
                                    int32_t step_x, int32_t step_y, int32_t out_w, int32_t out_h,
                                    const imfilter_t* filter);

/**
 * Averages a plane around listed points. The level is rounded half up: floor((float)sum * (1.0f /
 * (float)weights) + 0.5). A point may lie outside the plane as long as its taps are mirrored into it, or with
 * ZERKLSC_BOUNDARY_CLAMP anywhere.
 *
 * Memory: as img_sample_grid(), with points for nodes.
 *
 * @param plane   width x height samples, row by row
 * @param points  count points; `value` is written
 * @param count   number of points; below 1 nothing is sampled
 * @param width   plane width in samples
 * @param height  plane height in samples
 * @param filter  the window, as for img_sample_grid()
 * @return        0; -1 with no value written as for img_sample_grid(), and when a mirrored tap of any point
 *                falls outside the plane
 */
ZERKLSC_API int32_t img_sample(const uint16_t* plane, pix_point* points, int32_t count, int32_t width,
                               int32_t height, const imfilter_t* filter);

/**
 * Makes the cluster of points around the optical centre in which the reference level is searched: a raster
 * over a tenth of the plane to each side, one point every 1/128 of the shorter side, with a gap of two
 * samples across the centre. Positions are kept in 16 bits. A plane with fewer than 10 samples in either
 * direction has no points: the count is 0, and the list is to be released all the same.
 *
 * @param width   plane width in samples
 * @param height  plane height in samples
 * @param points  written; a list from the heap for the caller to give to release_center_points(), row by row
 *                from the top left; `value` is not set
 * @param count   written; number of points
 * @return        0; -1 with nothing written when the list cannot be had or its length does not fit 32 bits
 */
ZERKLSC_API int32_t init_center_points(int32_t width, int32_t height, pix_point** points, int32_t* count);

/**
 * Frees what init_center_points() made.
 *
 * @param points  the list; null is ignored
 */
ZERKLSC_API void release_center_points(pix_point* points);

/**
 * Finds the brightest point, the first of equals.
 *
 * @param points  count points
 * @param count   number of points
 * @return        the index of the point with the largest `value`; 0 for a count of 1 or less
 */
ZERKLSC_API int32_t get_pixel_maximum(const pix_point* points, int32_t count);

/**
 * Smooths a region of a plane. `s1` is both the row stride of the two planes and the number of rows, `s2` the
 * number of columns: (width, height) covers a square plane, and width rows of height columns of any other.
 *
 * Taps are read at their plain positions, whatever the boundary mode: the caller provides a margin of at
 * least the radius around the region. The level is rounded as by img_sample().
 *
 * Memory for a radius of r: at most 12 * (s2 + r) + 640 for a box, and
 * (8 * (s2 + 2r + 1) + 16) * (2r + 1) + 4 * (r + 1) for a disc.
 *
 * @param src     first sample of the region in a plane of row stride s1
 * @param dst     written; row stride s1, only the first s2 samples of each of the s1 rows; must not overlap
 *                `src`
 * @param s1      rows, and the row stride; below 1 nothing is done
 * @param s2      columns; below 1 nothing is done
 * @param filter  the window; a radius of 0 .. 11584
 * @return        0; -1 with nothing written for an unknown type, a radius outside its range, a Gaussian
 *                without a sigma or without a tap, or no memory
 */
ZERKLSC_API int32_t img_filter(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2,
                               const imfilter_t* filter);

/**
 * Measures the gains that flatten a plane: the level of the brightest point of the centre cluster
 * (init_center_points()) over the level of each node (img_sample_grid(), a mirrored box). A level below 1
 * counts as 1. There is no upper limit, no border and no fixed point.
 *
 * Each successful call leaves out_w * out_h * 4 bytes of heap allocated. Memory besides, for a radius of r:
 * at most 2 * width + 20 * (r + 1) + 64; where windows are so large that they share the sums of whole rows,
 * 40 for each node or point of the cluster, whichever are more, and 4 * (width + 1) more.
 *
 * @param plane   width x height samples, row by row
 * @param gains   written; out_w x out_h gains, row by row, 1.0 = no correction
 * @param width   plane width in samples, at least 10
 * @param height  plane height in samples, at least 10
 * @param step_x  node spacing in samples
 * @param step_y  node spacing in samples
 * @param out_w   nodes per row (lsc2d_grid_samples()); 0 measures and leaves nothing
 * @param out_h   rows of nodes (lsc2d_grid_samples()); 0 measures and leaves nothing
 * @param radius  of the box, 0 .. 11584, below the width and the height
 * @return        0; -1 with nothing written or left when img_sample_grid() or img_sample() refuses, for a
 *                plane too small for a cluster, for a size below 0, or without memory
 */
ZERKLSC_API int32_t calc_otp_table(const uint16_t* plane, float* gains, int32_t width, int32_t height,
                                   int32_t step_x, int32_t step_y, int32_t out_w, int32_t out_h,
                                   int32_t radius);

/**
 * As calc_otp_table(), with a window of the caller's choice.
 *
 * @param plane   width x height samples, row by row
 * @param gains   written; out_w x out_h gains, row by row, 1.0 = no correction
 * @param width   plane width in samples, at least 10
 * @param height  plane height in samples, at least 10
 * @param step_x  node spacing in samples
 * @param step_y  node spacing in samples
 * @param out_w   nodes per row; 0 measures and leaves nothing
 * @param out_h   rows of nodes; 0 measures and leaves nothing
 * @param filter  the window, as for img_sample_grid()
 * @return        as calc_otp_table()
 */
ZERKLSC_API int32_t calc_correction_table(const uint16_t* plane, float* gains, int32_t width, int32_t height,
                                          int32_t step_x, int32_t step_y, int32_t out_w, int32_t out_h,
                                          const imfilter_t* filter);

#ifdef __cplusplus
extern "C++" {
/**
 * Where a window reads a position beyond the edges of a plane.
 *
 * @param n     number of positions, 0 .. n - 1
 * @param p     the position
 * @param mode  ZERKLSC_BOUNDARY_MIRROR: about the edge sample, once, so that the result may still lie
 *              outside; ZERKLSC_BOUNDARY_CLAMP: the edge sample
 * @return      the position to read (its low 32 bits); -1 for any other mode
 */
ZERKLSC_API int get_boundary_pos(int n, int p, int mode);

/**
 * Samples a plane at the given points with img_sample() and returns the level of the brightest.
 *
 * @param plane   width x height samples, row by row
 * @param points  count points; `value` is written, unless img_sample() refuses
 * @param count   number of points
 * @param width   plane width in samples
 * @param height  plane height in samples
 * @param filter  the window
 * @return        the largest `value`, also if img_sample() refused; 0 without points
 */
ZERKLSC_API unsigned short find_peak_intensity(unsigned short* plane, pix_point* points, int count, int width,
                                               int height, imfilter_t* filter);
}
#endif

/** @} */

/**
 * @defgroup calibration Calibration
 * @{
 */

/**
 * Calibrates: makes the four gain tables of a flat-field frame by the method of info->algorithm
 * (ZERKLSC_ALGORITHM_...), applies the shading model of info->shading_percent and limits the gains to
 * ZERKLSC_HIGHEST_GAIN. Method 0 leaves the tables as its generator made them, whose target keeps that
 * percentage already. What the percentage means, see lsc2d_info.
 *
 * The black level is to be off the frame (isp_blc_process()): no method takes any off, and what is left of it
 * makes the gains of dark nodes too small. Methods 2 .. 4 take samples of any depth up to 16 bits, as only
 * ratios count. Methods 0 and 1 are for 10 bits, print a line for every sample above 1023 and count it as
 * 1023; they assume Bayer pattern 0, which decides the colours that the lines name and, with a percentage
 * below 100, whose brightness the target starts from.
 *
 * Tables of methods 0 .. 3 are for the tvessa2 ISP, which reads them as calibrated only at some geometries:
 * see lsc2d_table_size() before you correct with the same record. zerklsc_check_calibration() of
 * zerklsc_driver.h answers for all methods, and zerklsc_calibrate() says why it refuses and prints nothing.
 *
 * Methods 0, 1 and 4 take a step of at most 255; 2 and 3 take one above it, with whose tables the correction
 * of the same record reads memory beyond them. Methods 2, 3 and 4 need planes of at least 10 x 10 samples,
 * method 0 of at least 50 x 50. The radius must be 0 or above. Except for method 3, which has limits of its
 * own (lsc2d_calibration_beta()), step and radius must be below both sides of the plane: three nodes in
 * either direction, and no tap mirrored out of it.
 *
 * Memory, w being the width of a plane and r the radius; nothing of the size of the frame:
 * @verbatim
 * method 0      8 * n + 12 * w + 8
 * method 1      at most 12 * e + 16 * n + 12 * w + 8
 * methods 2, 4  at most 20 * n + 4 * e + 4 * w + 40 * r + 128, of which 16 * n stays allocated
 *               large windows that share the sums of whole rows take 64 for each node or point of the
 *               centre cluster besides, whichever are more, and 8 * (w + 1)
 * method 3      as lsc2d_calibration_beta()
 * @endverbatim
 *
 * @param raw   info->width x info->height samples, row by row; only read
 * @param info  the request; its four tables are written, each of lsc2d_table_size() entries for (info->width
 *              / 2) x (info->height / 2) samples, both steps info->grid. `weight` is written by method 4 on
 *              success. The tables must not overlap each other or `raw`.
 * @return      0; -1 with tables and weights untouched for a null argument or table, an unknown algorithm, a
 *              frame, step or radius that the method cannot take, a singular system (method 3), or a failed
 *              allocation; otherwise what the parameter generator of methods 0 and 1 returns
 */
ZERKLSC_API int32_t lsc2d_calibration_wrapper(const uint16_t* raw, lsc2d_info* info);

/**
 * Calibrates by sampling: the gain of a node is the level of the brightest point of the centre cluster
 * (init_center_points()) over the level of the node (img_sample_grid()), for each plane by itself. A level
 * below 1 counts as 1; a node brighter than the centre gets a gain below 1. The border is built by
 * update_table_border() with param->border_mode and param->border_aux, and is 0 for an unknown fill mode. No
 * shading model is applied.
 *
 * The planes are sampled where they lie in the frame. Memory as for methods 2 and 4 of
 * lsc2d_calibration_wrapper(); each successful call leaves its four sample buffers, gw * gh floats each for
 * gw = stride_w - 2 and gh = stride_h - 2, allocated.
 *
 * @param raw       width x height samples, row by row; only read
 * @param width     frame width in pixels
 * @param height    frame height in pixels
 * @param tables    four tables by plane number, each written with stride_w x stride_h gains, row by row
 * @param stride_w  row length of the tables (lsc2d_table_size() of the plane size and param->grid)
 * @param stride_h  rows of the tables, likewise
 * @param param     step, window and border modes; a Gaussian window is refused, as it would have no sigma;
 *                  the shading fields are not read
 * @return          0; -1 with nothing written or left when the sampling refuses the window or the plane, when
 *                  the plane is too small for a centre cluster, when update_table_border() refuses the step
 *                  or the grid, or without memory
 */
ZERKLSC_API int32_t lsc2d_calibration_orvel(uint16_t* raw, int32_t width, int32_t height, uint16_t** tables,
                                            int32_t stride_w, int32_t stride_h,
                                            const lsc2d_calib_param* param);

/**
 * Fits a smooth gain surface to a flat field: measures each plane's gain (the brightest level of its centre
 * cluster divided by the level there) on a raster of points that is denser along the edges, and finds by
 * linear least squares the inner nodes whose cubic convolution interpolation (R. Keys, "Cubic convolution
 * interpolation for digital image processing", IEEE Trans. ASSP 29(6), 1981) reproduces those gains best. The
 * border nodes are tied to the inner ones by linear extrapolation. Nothing is clamped: gains of 64 and more
 * keep their low 16 bits, and a gain that is not finite or does not fit 64 bits is stored as 0;
 * lsc2d_table_postproc() is the usual next step.
 *
 * The fit is as good as the points are many: on a small grid, whose nodes beyond the last sample hardly any
 * point sees, rounding shows in the last digits, and a flat frame need not give 1024 everywhere.
 *
 * Memory, with m = (nx - 2) * (ny - 2): at most 8 * m * m + 48 * m, what matrix_inv() takes for m rows of
 * double, and 64 for each column and row of the raster; nothing of the size of the frame. Time grows with the
 * third power of m.
 *
 * @param image   read; raw frame of width x height samples
 * @param width   frame width in pixels; an odd last column of the frame is not read
 * @param height  frame height in pixels; an odd last row of the frame is not read
 * @param tables  written; four gain tables by plane number, each of nx x ny entries, row by row,
 *                caller-owned; none may overlap another buffer
 * @param nx      entries per row of the tables, border included, as lsc2d_table_size() computes it for the
 *                planes; at least 4
 * @param ny      rows of the tables, likewise
 * @param param   read; `grid` is the distance of the nodes, `filter_type` (box), `filter_radius` and
 *                `boundary_mode` describe the averaging window. `filter_radius` is also where the raster of
 *                points starts.
 * @return        0, or -1 with the tables untouched for a singular system (which prints "Warning: singular
 *                matrix, no solution was found!" on standard output), for sizes below those named, for planes
 *                too small for a centre cluster, for a window that img_sample() refuses, for a failed
 *                allocation, and for a `grid` below 2, or below 8 with a radius below it, at which the raster
 *                would never end
 */
ZERKLSC_API int32_t lsc2d_calibration_beta(uint16_t* image, int32_t width, int32_t height, uint16_t** tables,
                                           int32_t nx, int32_t ny, lsc2d_calib_param* param);

/**
 * Makes a list of the crossings of some columns and rows: point q * nxs + p gets column xs[p] and row ys[q],
 * as signed 16-bit numbers. The levels of the points are left as they were.
 *
 * @param points  written; nxs x nys points, row by row
 * @param xs      read; nxs columns; may overlap `ys`, not the points
 * @param ys      read; nys rows; may overlap `xs`, not the points
 * @param nxs     number of columns; nothing is written for 0 or below
 * @param nys     number of rows; nothing is written for 0 or below
 */
ZERKLSC_API void meshgrid(pix_point* points, uint16_t* xs, uint16_t* ys, int32_t nxs, int32_t nys);

#ifdef __cplusplus
extern "C++" {
/**
 * Inverts a matrix in place by Gauss-Jordan elimination with full pivoting, for T float and double. The
 * arithmetic is complex with an imaginary part that starts at zero, which shows in the signs of zeros and
 * where values overflow.
 *
 * Memory: at most (1.009 * r * c + 26 * r + 24 * c) * sizeof(T) + 16 * n + 64, r and c being n rounded up to
 * multiples of 4 and 256 / sizeof(T).
 *
 * @param a  read and written; n x n elements, row by row
 * @param n  rows and columns; nothing is done for 0 and below
 * @return   0, or -1 for a failed allocation, with the matrix untouched, or for a singular matrix (the
 *           largest remaining square is 0), with no defined content
 */
template <class T>
int matrix_inv(T* a, int n);

/** @cond */
extern template ZERKLSC_API int matrix_inv<float>(float* a, int n);
extern template ZERKLSC_API int matrix_inv<double>(double* a, int n);
/** @endcond */
}
#endif

/** @} */

/**
 * @defgroup tables Gain tables
 * @{
 */

/**
 * Converts a float gain table (1.0 = unity) to fixed point: rounds half up to the nearest 1/1024 and
 * saturates at 0 and 65535; a gain that is not a number becomes 0.
 *
 * @param src  w x h gains, row by row
 * @param dst  written; w x h gains, row by row; must not overlap `src`
 * @param w    elements per row; nothing is done for 0 or below
 * @param h    rows; nothing is done for 0 or below
 */
ZERKLSC_API void lsc_table_ftoi(const float* src, uint16_t* dst, int32_t w, int32_t h);

/**
 * Converts a gain table to floats (1024 becomes 1.0). Exact: lsc_table_ftoi() gives the same table back.
 *
 * @param src  w x h gains, row by row
 * @param dst  written; w x h gains, row by row; must not overlap `src`
 * @param w    elements per row; nothing is done for 0 or below
 * @param h    rows; nothing is done for 0 or below
 */
ZERKLSC_API void lsc_table_itof(const uint16_t* src, float* dst, int32_t w, int32_t h);

/**
 * Limits a gain table to what the hardware takes, ZERKLSC_HIGHEST_GAIN.
 *
 * @param table  w x h gains, changed in place
 * @param w      elements per row; nothing is done for 0 or below
 * @param h      rows; nothing is done for 0 or below
 */
ZERKLSC_API void format_lsc_table(uint16_t* table, int32_t w, int32_t h);

/**
 * The weight of a node in cubic interpolation, in single precision: that of R. Keys, "Cubic convolution
 * interpolation for digital image processing", IEEE Trans. ASSP 29(6), 1981, with a = -0.5.
 *
 * @param x  distance from the node in node spacings, of either sign
 * @return   1 at 0, 0 at every other whole number and beyond 2; 0 for a value that is not a number
 */
ZERKLSC_API float get_cubic_coef(float x);

/**
 * Builds a bordered float table from the gains measured at the inner nodes.
 *
 * The gains of the last column and row were measured at the last sample of the plane. Where that lies inside
 * the last cell (width mod step_x, height mod step_y other than 1) the edge mode moves them to their nodes:
 * @verbatim
 * ZERKLSC_EDGE_LINEAR           linear interpolation gives the measured gain at the last sample
 * ZERKLSC_EDGE_CUBIC_LINEAR     cubic interpolation does, if the border is extrapolated linearly
 * ZERKLSC_EDGE_CUBIC_QUADRATIC  cubic interpolation does, if the border is extrapolated quadratically
 * any other                     they stay as measured
 * @endverbatim
 *
 * Then the fill mode extrapolates the border, columns first, then rows with the corners; an unknown fill mode
 * leaves the border of `table` as it was. The two modes are independent. Nothing is clamped. A step of 1 with
 * an edge mode divides by zero in floating point: the last column or row becomes infinite or not a number.
 *
 * @param inner      grid_w x grid_h gains, row by row, 1.0 = unity; must not overlap `table`
 * @param table      written; (grid_w + 2) x (grid_h + 2) gains, row by row (lsc2d_table_size())
 * @param width      plane width in samples
 * @param height     plane height in samples
 * @param step_x     node spacing in plane samples, above 0
 * @param step_y     node spacing in plane samples, above 0
 * @param grid_w     nodes per row (lsc2d_grid_samples()); at least 3 for ZERKLSC_FILL_QUADRATIC and the cubic
 *                   edge modes, else 2 for ZERKLSC_FILL_LINEAR and ZERKLSC_EDGE_LINEAR, else 1
 * @param grid_h     rows of nodes, likewise
 * @param edge_mode  ZERKLSC_EDGE_...
 * @param fill_mode  ZERKLSC_FILL_...
 * @return           0; -1 and `table` untouched for a step or a node count below its limit
 */
ZERKLSC_API int32_t update_table_border(const float* inner, float* table, int32_t width, int32_t height,
                                        int32_t step_x, int32_t step_y, int32_t grid_w, int32_t grid_h,
                                        int32_t edge_mode, int32_t fill_mode);

/**
 * Builds the four bordered gain tables from the gains of their inner nodes, with update_table_border(). With
 * an unknown `border_aux` the border is 0. Memory: 4 * n + 4 * e.
 *
 * @param src      four tables by plane number, (table_w - 2) x (table_h - 2) gains, row by row; may be null
 * @param dst      four tables by plane number, written; table_w x table_h gains, row by row; may be null;
 *                 none may overlap a table of `src`
 * @param width    plane width in samples
 * @param height   plane height in samples
 * @param table_w  row length (lsc2d_table_size())
 * @param table_h  row count (lsc2d_table_size())
 * @param param    `grid`, `border_mode` (the edge mode) and `border_aux` (the fill mode) are read
 * @return         0; -1 and all of `dst` untouched when `src` or `dst` is null, update_table_border() refuses
 *                 the grid, or memory cannot be had
 */
ZERKLSC_API int32_t lsc2d_table_preproc(uint16_t** src, uint16_t** dst, int32_t width, int32_t height,
                                        int32_t table_w, int32_t table_h, const lsc2d_calib_param* param);

/**
 * Finishes four gain tables: apply_shading_table(), then format_lsc_table().
 *
 * @param tables   four tables by plane number, table_w x table_h gains each, changed in place
 * @param width    plane width in samples
 * @param height   plane height in samples
 * @param table_w  row length, as lsc2d_table_size() gives it for `grid`
 * @param table_h  row count, as lsc2d_table_size() gives it for `grid`
 * @param param    `grid`, `shading_type` and `shading_percent` are read
 * @return         0; -1 and the tables untouched when they have another size or `grid` is below 1
 */
ZERKLSC_API int32_t lsc2d_table_postproc(uint16_t** tables, int32_t width, int32_t height, int32_t table_w,
                                         int32_t table_h, const lsc2d_calib_param* param);

/**
 * Scales every node of a gain table by the shading model: 1 at the centre of the plane, `percent` at its
 * corners, so that a part of the lens's own shading is kept. The border nodes are scaled by where they stand,
 * outside the plane.
 *
 * The product is rounded and keeps its low 16 bits without a limit: a percentage above 100 wraps on high
 * gains, and far outside the corners the linear model's factor may be negative. A factor that is not a number
 * (square root model, low percentage, outside the corners) gives 0.
 *
 * @param table    table_w x table_h gains, row by row, changed in place
 * @param width    plane width in samples
 * @param height   plane height in samples
 * @param step_x   node spacing in plane samples
 * @param step_y   node spacing in plane samples
 * @param table_w  row length, border included; nothing is done for 0 or below
 * @param table_h  row count, border included; nothing is done for 0 or below
 * @param shading  the model; an unknown type changes nothing
 */
ZERKLSC_API void apply_shading_table(uint16_t* table, int32_t width, int32_t height, int32_t step_x,
                                     int32_t step_y, int32_t table_w, int32_t table_h,
                                     const shading_t* shading);

/**
 * Writes the factors of the shading model as a float table. Its nodes are not those of apply_shading_table():
 * node (i, j) stands at (i * step_x, j * step_y), without a border, and is moved to the edge of the plane
 * where it lies beyond.
 *
 * @param table    written; table_w x table_h factors, row by row
 * @param width    plane width in samples
 * @param height   plane height in samples
 * @param step_x   node spacing in plane samples
 * @param step_y   node spacing in plane samples
 * @param table_w  row length; nothing is done for 0 or below
 * @param table_h  row count; nothing is done for 0 or below
 * @param shading  the model; an unknown type gives factors of 1
 * @return         0
 */
ZERKLSC_API int32_t calc_shading_table(float* table, int32_t width, int32_t height, int32_t step_x,
                                       int32_t step_y, int32_t table_w, int32_t table_h,
                                       const shading_t* shading);

/**
 * Carries a gain table to a grid with other steps on the same plane, by bicubic interpolation
 * (get_cubic_coef()). The border is rebuilt (linear edge, quadratic fill) and the gains are limited to
 * ZERKLSC_HIGHEST_GAIN. Take destination steps from 2 on: at 1 the linear edge divides by zero, and the last
 * column and row and the border beyond them come out as 0 or ZERKLSC_HIGHEST_GAIN.
 *
 * Memory: 4 * n + 4 * e of the destination.
 *
 * @param src     the table to read, border included. Only `table`, `step_x`, `step_y` and `grid_w` are read:
 *                that the table has enough rows is the caller's to see to.
 * @param dst     its `table` is written whole, border included; may be the memory of the source's table
 * @param width   plane width in samples
 * @param height  plane height in samples
 * @return        0; -1 and the destination untouched for a step below 1, a destination of fewer than 3 x 3
 *                nodes, a source with too few nodes per row for the plane, or when memory cannot be had
 */
ZERKLSC_API int32_t lsc2d_grid_convert(const lsc2d_grid* src, const lsc2d_grid* dst, int32_t width,
                                       int32_t height);

/**
 * Makes the gain table of an image that is a cropped and scaled part of the calibrated one: every destination
 * node is carried through the crop window with pixel_position_mapping(), limited to the last sample of the
 * source and read there by bicubic interpolation. Node positions keep their low 16 bits. Border, limit,
 * memory and the least useful step, 2, are those of lsc2d_grid_convert().
 *
 * Where the crop or the destination has no width (height), all its columns (rows) show the left column (top
 * row) of the window, and the table is constant in that direction.
 *
 * @param src   the table to read, its image and steps
 * @param dst   the image and steps of the new table; its `table` is written whole, border included; may be
 *              the memory of the source's table
 * @param crop  the window of the source image that the destination image shows; where it reaches beyond the
 *              source, the edge of the source is taken
 * @return      0; -1 and the destination untouched for a step of 0, a destination of fewer than 3 x 3 inner
 *              nodes, a source with too few nodes for the positions that are read, or when memory cannot be
 *              had
 */
ZERKLSC_API int32_t lsc2d_table_mapping(const lsc2d_table_desc* src, const lsc2d_table_desc* dst,
                                        const lsc2d_crop* crop);

/**
 * Maps a position of a scaled image into its source: offset + round(position * src_extent / dst_extent),
 * halves up. The product is exact, what follows is in single precision: a quotient next to a half may round
 * either way.
 *
 * @param offset      start of the crop window in the source, in samples
 * @param position    position in the destination, in samples; may lie beyond its extent
 * @param dst_extent  width or height of the destination in samples; 0 gives the offset
 * @param src_extent  width or height of the crop window in samples
 * @return            the low 16 bits of the position in the source
 */
ZERKLSC_API uint16_t pixel_position_mapping(uint16_t offset, uint16_t position, uint16_t dst_extent,
                                            uint16_t src_extent);

/**
 * Corrects one plane with a gain table in floating point: every sample is multiplied by the gain that bicubic
 * interpolation (get_cubic_coef()) gives at its place, and rounded. The product keeps its low 16 bits, so a
 * sample times its gain has to stay below 65536.
 *
 * Memory: 32 * width if the plane is wider than 256; where they cannot be had it runs somewhat slower, with
 * the same result.
 *
 * @param src         width x height samples, row by row
 * @param dst         written; width x height samples, row by row; must not overlap `src`
 * @param width       plane width in samples; nothing is done for 0 or below
 * @param height      plane height in samples; nothing is done for 0 or below
 * @param table       the gain table of the plane; rows 0 to (height - 1) / step_y + 3 and columns 0 to (width
 *                    - 1) / step_x + 3 are read, as many as lsc2d_table_size() counts
 * @param step_x      node spacing in plane samples; nothing is done for a step below 1
 * @param step_y      node spacing in plane samples; nothing is done for a step below 1
 * @param row_length  elements from one row of the table to the next, above 0
 */
ZERKLSC_API void lsc2d_bicubic_correction(const uint16_t* src, uint16_t* dst, int32_t width, int32_t height,
                                          const uint16_t* table, int32_t step_x, int32_t step_y,
                                          int32_t row_length);

/**
 * Fills the border of a float table by linear extrapolation, in place, as update_table_border() does with
 * ZERKLSC_FILL_LINEAR. expand_lsc_table_c2(), for C++, is the same with ZERKLSC_FILL_QUADRATIC.
 *
 * @param table   (grid_w + 2) x (grid_h + 2) gains, row by row; the inner nodes are read, the border written
 * @param grid_w  inner nodes per row, at least 2; nothing is done below that
 * @param grid_h  rows of inner nodes, at least 2; nothing is done below that
 */
ZERKLSC_API void expand_lsc_table_c1(float* table, int32_t grid_w, int32_t grid_h);

/**
 * Moves the last inner column and row of a float table to their nodes, in place, as update_table_border()
 * does with ZERKLSC_EDGE_LINEAR. Only inner nodes are read and written.
 *
 * @param table       a bordered table; inner node (0, 0) is at row 1, column 1
 * @param grid_w      inner nodes per row, at least 2
 * @param grid_h      rows of inner nodes, at least 2
 * @param row_length  elements from one row to the next, at least grid_w
 * @param width       plane width in samples
 * @param height      plane height in samples
 * @param step_x      node spacing in plane samples, above 0
 * @param step_y      node spacing in plane samples, above 0
 * @return            0; -1 and the table untouched for a step, a node count or a row length below its limit
 */
ZERKLSC_API int32_t align_table_linear(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length,
                                       int32_t width, int32_t height, int32_t step_x, int32_t step_y);

/**
 * As align_table_linear(), with ZERKLSC_EDGE_CUBIC_LINEAR and at least 3 nodes; does nothing where that
 * refuses.
 *
 * @param table       a bordered table; inner node (0, 0) is at row 1, column 1
 * @param grid_w      inner nodes per row, at least 3
 * @param grid_h      rows of inner nodes, at least 3
 * @param row_length  elements from one row to the next, at least grid_w
 * @param width       plane width in samples
 * @param height      plane height in samples
 * @param step_x      node spacing in plane samples, above 0
 * @param step_y      node spacing in plane samples, above 0
 */
ZERKLSC_API void align_table_cubic_c1(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length,
                                      int32_t width, int32_t height, int32_t step_x, int32_t step_y);

/**
 * As align_table_cubic_c1(), with ZERKLSC_EDGE_CUBIC_QUADRATIC.
 *
 * @param table       a bordered table; inner node (0, 0) is at row 1, column 1
 * @param grid_w      inner nodes per row, at least 3
 * @param grid_h      rows of inner nodes, at least 3
 * @param row_length  elements from one row to the next, at least grid_w
 * @param width       plane width in samples
 * @param height      plane height in samples
 * @param step_x      node spacing in plane samples, above 0
 * @param step_y      node spacing in plane samples, above 0
 */
ZERKLSC_API void align_table_cubic_c2(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length,
                                      int32_t width, int32_t height, int32_t step_x, int32_t step_y);

#ifdef __cplusplus
extern "C++" {
/**
 * Reads a gain table from a text file: decimal numbers, optionally signed, with white space between them, of
 * which the low 16 bits are kept (-1 becomes 65535). There is no header; the count comes from the caller.
 * Where the file ends or holds something else, the remaining elements repeat the last number, or are 0 when
 * there was none.
 *
 * @param path   name of the file; where it cannot be opened, `table` is left as it was
 * @param table  written; n elements
 * @param n      how many numbers to read; nothing is written for 0 or less
 * @return       0, whatever happened
 */
ZERKLSC_API int load_table(const char* path, unsigned short* table, int n);

/**
 * Fills the border of a float table by quadratic extrapolation, in place, as update_table_border() does with
 * ZERKLSC_FILL_QUADRATIC.
 *
 * @param table   (grid_w + 2) x (grid_h + 2) gains, row by row; the inner nodes are read, the border written
 * @param grid_w  inner nodes per row, at least 3; nothing is done below that
 * @param grid_h  rows of inner nodes, at least 3; nothing is done below that
 */
ZERKLSC_API void expand_lsc_table_c2(float* table, int grid_w, int grid_h);

/**
 * Fills the border of a gain table, each node with the next value of the parabola through the three nodes
 * inwards of it, rows first, then columns over the full width. Values wrap modulo 65536: one below 0 comes
 * out large.
 *
 * @param table   (width + 2) * (height + 2) gains, row by row; the border is written, inner nodes are only
 *                read
 * @param width   inner nodes per row; below 3 nothing is written
 * @param height  inner rows; below 3 nothing is written
 */
ZERKLSC_API void expand_lsc_table_c2(unsigned short* table, int width, int height);
}
#endif

/** @} */

/**
 * @defgroup correction ISP weights and correction
 * @{
 */

/**
 * Fills a block with the cubic weights of a grid step: row i, for i up to half the step, holds the taps at
 * -1, 0 and +1 for the fraction i / step of a cell, 1024 = 1.0, rounded half up. Everything else in the block
 * becomes 0; so does all of it for a step of 0 or above 255, which a block cannot hold.
 *
 * The weights are those of R. Keys, "Cubic convolution interpolation for digital image processing", IEEE
 * Trans. ASSP 29(6), 1981, with a = -0.5.
 *
 * @param weights  written; every byte of the block; not null
 * @param step     phases of a cell, 1 .. 255
 */
ZERKLSC_API void generate_bicubic_weight_table(lnc_bicubic_weight_t_64_tag* weights, uint16_t step);

/**
 * Corrects a raw frame as the vessaL2 ISP does, to the bit: each sample is multiplied with a gain that is
 * interpolated with the cubic weights of the step, first down the grid columns, then along the row, in 10-bit
 * fixed point. Gains are limited to 1024 .. 16383 after either pass, so a frame is never darkened.
 *
 * The product is rounded and limited to 1023 by its low 16 bits: one above 65535 comes out as what is left of
 * it, which takes a sample above 4096. Where half the width is one more than a whole number of cells, the
 * last two columns take the gain one phase further; where half the height is, the last two rows do so from
 * the fifth grid column on. An odd last column or row is corrected as the half column or row it begins.
 *
 * @param in     width x height samples, row by row, no padding; 10 bits without black level
 * @param out    as `in`; may be `in`, must not overlap it otherwise. Written as 10-bit samples, 0 .. 1023
 * @param param  `width`, `height`, `grid` (the step in plane samples, 1 .. 255) and `lsc_table` are read,
 *               `weight` is rewritten by generate_bicubic_weight_table(). The tables have the size that
 *               lsc2d_table_size() gives for half the width and half the height; gains may be any 16-bit
 *               value
 * @return       always 0. For a null `in`, `out`, `param` or table pointer one line on standard output says
 *               which, for a step outside 1 .. 255 there is none; no sample is written then.
 */
ZERKLSC_API int32_t bicubic_lnc_correction_vessaL2(uint16_t* in, uint16_t* out, isp_param_tag* param);

/**
 * The correction of bicubic_lnc_correction_vessaL2() with the weights that the record holds: `weight` is
 * read, and the record is not written.
 *
 * @param in     as for bicubic_lnc_correction_vessaL2()
 * @param out    as for bicubic_lnc_correction_vessaL2()
 * @param param  as for bicubic_lnc_correction_vessaL2(); only read
 * @return       0; -1 with nothing written for a null pointer or a step outside 1 .. 255, printing the same
 *               lines.
 */
ZERKLSC_API int32_t bicubic_lnc_correction_vessaL2_core(uint16_t* in, uint16_t* out, isp_param_tag* param);

/**
 * Corrects a raw frame as the tvessa2 ISP does: as bicubic_lnc_correction_vessaL2(), with these differences.
 * Weights are those of step 64, and the phase is scaled by the integer 64 / step: a step that does not divide
 * 64 does not reach the end of its cells, one above 64 takes the node before the sample. Only the low 8 bits
 * of `grid` count, also for the size of the tables that are read. The grid is counted from the last sample:
 * where half the width (height) is one more than a whole number of cells, tables are one column (row) smaller
 * than lsc2d_table_size() makes them. The record is not written.
 *
 * A frame narrower than 128 pixels prints a warning on standard output and is corrected.
 *
 * @param in     as for bicubic_lnc_correction_vessaL2()
 * @param out    as for bicubic_lnc_correction_vessaL2()
 * @param param  `width`, `height`, `grid` (low byte 1 .. 255) and `lsc_table` are read
 * @return       0; -1 with nothing written for a null `in`, `out`, `param` or table pointer, of which one
 *               line on standard output says which, and for a step whose low byte is 0.
 */
ZERKLSC_API int32_t bicubic_lnc_correction_tvessa2(uint16_t* in, uint16_t* out, isp_param_tag* param);

/**
 * Corrects a raw frame with a set of gain tables, for the ISP that belongs to the record's algorithm: 0 .. 3
 * bicubic_lnc_correction_tvessa2(), 4 bicubic_lnc_correction_vessaL2(). Takes nothing from the heap.
 *
 * Before you correct with the record that calibrated, make sure that the ISP reads tables of that geometry as
 * they were written: lsc2d_table_size() says where tvessa2 does not, and gives a wrong picture, or reads
 * beyond the tables, with status 0.
 *
 * @param in    width x height samples, row by row, no padding; 10 bits without black level
 * @param out   as `in`; may be `in`, must not overlap it otherwise. Written as 10-bit samples, 0 .. 1023
 * @param info  read: `width`, `height`, `grid`, `algorithm`, and `lsc_table` by plane number. Its weight
 *              block is neither read nor written
 * @return      0 when a correction was called, whatever it refused; -1 with nothing written or printed for
 *              any other algorithm and for a null `info`.
 */
ZERKLSC_API int32_t lsc2d_correction_wrapper(uint16_t* in, uint16_t* out, lsc2d_info* info);

#ifdef __cplusplus
extern "C++" {
/**
 * The cubic interpolation of the ISP corrections in one direction: the gain between p1 and p2 at the fraction
 * phase / step, 1024 = 1.0, limited to 1024 .. 16383. Differences of gains are taken in 16 bits and read as
 * signed.
 *
 * @param p0       gain at the node before the cell, any 16-bit value
 * @param p1       gain at the node that begins the cell, any 16-bit value
 * @param p2       gain at the node that ends the cell, any 16-bit value
 * @param p3       gain at the node after the cell, any 16-bit value
 * @param phase    offset in the cell in plane samples, 0 .. step - 1. One beyond the step counts as the step
 * @param step     length of the cell in plane samples, 1 .. 255. Above that, phases past 127 take row 127
 * @param weights  read; filled by generate_bicubic_weight_table() for the same step; not null
 * @return         the gain, 1024 .. 16383
 */
ZERKLSC_API unsigned short cubic_1D(unsigned short p0, unsigned short p1, unsigned short p2,
                                    unsigned short p3, unsigned short phase, unsigned short step,
                                    lnc_bicubic_weight_t_64_tag* weights);

/**
 * As above with the fixed weights of step 64, at the phase (64 / step) * phase: an integer quotient, 0 for a
 * step of 0, and the low 16 bits of the product. A product beyond 64 counts as 64.
 *
 * @param p0     gain at the node before the cell, any 16-bit value
 * @param p1     gain at the node that begins the cell, any 16-bit value
 * @param p2     gain at the node that ends the cell, any 16-bit value
 * @param p3     gain at the node after the cell, any 16-bit value
 * @param phase  offset in the cell in plane samples
 * @param step   length of the cell in plane samples
 * @return       the gain, 1024 .. 16383
 */
ZERKLSC_API unsigned short cubic_1D(unsigned short p0, unsigned short p1, unsigned short p2,
                                    unsigned short p3, unsigned short phase, unsigned short step);
}
#endif

/** @} */

/**
 * @defgroup generators ISP parameter generation
 *
 * The generators measure a flat field and write the four gain tables that the ISP corrections read. w = width
 * / 2 and h = height / 2 is the size of a colour's image; an odd last column or row of the frame is not read.
 *
 * @verbatim
 * samples   raw - black level, negative ones kept; above 1023 they count as 1023, and one line of 49 or 50
 *           bytes on standard output names the colour of each: "Warning:Gr channel data of raw image maybe
 *           wrong ", in raster order
 * averages  around each node a block of (2 * filter_radius + 1)^2 samples, mirrored at the image edges
 *           without repeating the edge sample; its sum times the reciprocal of that count. Nodes beyond
 *           the last sample are measured at the last sample. All arithmetic is in double precision
 * target    with a share above 0.999999 each colour's own largest average at every node; otherwise a
 *           spherical cap through the largest average of Gb at the image centre and `share` times that at
 *           the image corners, scaled to each colour's largest average. It is part of the upper half of a
 *           sphere: where the fall from centre to corner, in levels, exceeds their distance in samples,
 *           the corners keep more than `share`
 * gains     target / average, limited and truncated. 0 where the target or the gain is below 0 or not a
 *           number, the highest gain where the average is 0. The border is extrapolated quadratically and
 *           keeps the low 16 bits
 *
 * isp_type     gain 1.0   highest  afterwards
 * 0            256        1024     prints "not support isp type!"
 * 1            1024       4095     prints "not support isp type!"
 * 2            1024       16383    prints "not support isp type!"
 * 3            1024       16383    limits all entries to 16383, which a border below 0 becomes by this
 * 4 and above  none: all 0         prints "not support isp type!" twice
 * @endverbatim
 *
 * Nodes per row (per column likewise, from h), S being the low byte of `grid`: ceil(w / S) + 1 with isp_type
 * 3, ceil((w - 1) / S) + 1 with any other. A gain table has two more in each direction; with isp_type 3 that
 * is the size from lsc2d_table_size().
 *
 * Memory: 8 * n + 12 * w + 8, and nothing of the size of the frame.
 * @{
 */

/**
 * Fills four gain tables; the target keeps shading_percent / 100 of the centre's brightness at the corners.
 *
 * @param raw    read; width x height samples, row by row
 * @param param  read: width, height (of the frame), bayer_pattern (0..3), isp_type, blc (by plane number),
 *               grid (S, in samples of a colour; only its low byte counts and is not 0), shading_percent
 *               (taken as unsigned), filter_radius (0 or above, below w and h) and lsc_table, whose four
 *               tables are written. Each colour goes to the table that the corrections use for its plane:
 *               pointers 0..3 are planes 0, 2, 1, 3.
 * @return       0; -1 with untouched tables and nothing printed for a null pointer (tables included), any of
 *               the above out of range, a grid of fewer than 3 x 3 nodes, or a failed allocation
 */
ZERKLSC_API int32_t bicubic_lnc_param_gen_orvel_otp(uint16_t* raw, isp_param_tag* param);

/**
 * As bicubic_lnc_param_gen_orvel_otp(), with a target that starts from the fall-off of the lens: blocks of 50
 * x 50 samples in the corners, divided by one in the centre, give each colour's corner ratio; with r0 that of
 * Gb, the share kept at the corners is r0 + (0.999999999999999 - r0) * shading_percent / 100, at least 0.01,
 * also when the centre is black, and at most 0.9999999. The last average of each row is extended from the
 * last sample to its node, in a line through the one before it, unless the last sample is a node itself; one
 * line on standard output, "Warning:raw image data maybe wrong ", for each that is then not above 0.
 *
 * @param raw    read; width x height samples, row by row
 * @param param  as there; corner_ratio is written: 16 x the smallest of those of the four colours' corner
 *               ratios that are finite, 0 when none is
 * @return       as there; -1 also when w or h is below 50. corner_ratio is untouched then.
 */
ZERKLSC_API int32_t bicubic_lnc_param_gen_halvane(uint16_t* raw, isp_param_tag* param);

/**
 * Runs bicubic_lnc_param_gen_orvel_otp() for ISP type 3 with black levels of 0.
 *
 * @param raw            read; width x height samples, row by row
 * @param width          frame width in pixels
 * @param height         frame height in pixels
 * @param tables         four gain tables by plane number, written; lsc2d_table_size() of (width / 2, height /
 *                       2, step, step) gives their size
 * @param unused_0       not read
 * @param unused_1       not read
 * @param bayer_pattern  0..3, as in isp_param_tag
 * @param calib          read; an lsc2d_calib_param as eight words: grid (word 0), filter_radius (2) and
 *                       shading_percent (7) are used
 * @return               that of the generator; -1 also when tables or calib is null
 */
ZERKLSC_API int32_t lsc2d_calibration_orvel_otp(uint16_t* raw, uint16_t width, uint16_t height,
                                                uint16_t** tables, uint32_t unused_0, uint32_t unused_1,
                                                uint8_t bayer_pattern, uint32_t* calib);

/**
 * As lsc2d_calibration_orvel_otp(), with bicubic_lnc_param_gen_halvane(); its corner_ratio is not handed out.
 *
 * @param raw            read; width x height samples, row by row
 * @param width          frame width in pixels
 * @param height         frame height in pixels
 * @param tables         four gain tables by plane number, written
 * @param unused_0       not read
 * @param unused_1       not read
 * @param bayer_pattern  0..3, as in isp_param_tag
 * @param calib          read; an lsc2d_calib_param as eight words
 * @return               as lsc2d_calibration_orvel_otp()
 */
ZERKLSC_API int32_t lsc2d_calibration_halvane(uint16_t* raw, uint16_t width, uint16_t height,
                                              uint16_t** tables, uint32_t unused_0, uint32_t unused_1,
                                              uint8_t bayer_pattern, uint32_t* calib);

/**
 * Runs bicubic_lnc_param_gen_orvel_otp() for ISP type 3, Bayer pattern 0 and black levels of 0, and hands out
 * the tables without their border. Memory: 8 * e beside what the generator takes.
 *
 * @param raw     read; width x height samples, row by row
 * @param width   frame width in pixels
 * @param height  frame height in pixels
 * @param out     four buffers by plane number, written; grid_w x grid_h gains of 2 bytes each in the byte
 *                order of the processor, row by row, at any alignment
 * @param grid_w  nodes per row, as lsc2d_grid_samples() counts them for (width / 2, height / 2, step, step)
 * @param grid_h  rows of nodes, likewise
 * @param calib   read; three words that are not those of the calibration front ends: step (word 0), sampling
 *                margin (1), percentage (2)
 * @return        0; -1 with untouched buffers when the generator refuses, when grid_w or grid_h is not its
 *                node count, for a null pointer, or for a failed allocation
 */
ZERKLSC_API int32_t lsc2d_otp_table(uint16_t* raw, uint16_t width, uint16_t height, uint8_t** out,
                                    uint32_t grid_w, uint32_t grid_h, uint32_t* calib);

/** @} */

/**
 * @defgroup otp OTP stream
 *
 * A stream holds the inner nodes of four tables, row by row, without header or padding: with n nodes, 3 * n
 * bytes in precision mode 0 and 7 * (n / 4) bytes in mode 1, whose last n % 4 nodes are not stored. Gains are
 * kept in units of 16 (mode 0) or 64 (mode 1). docs/otp-format.md describes the bytes.
 * @{
 */

/**
 * Replaces every node of a plane, in place, by its difference to the neighbour one step nearer the centre,
 * along rows and then along columns. The anchors, 1, 2 or 4 nodes in the centre row and column (two of each
 * where the size is even), keep their values. Sums and differences wrap modulo 65536.
 *
 * @param plane   width * height values, row by row, without border
 * @param width   nodes per row; below 1 nothing is touched
 * @param height  rows; below 1 nothing is touched
 * @param type    1: the base plane, whose anchors also lose unity gain; any other value: a difference plane
 * @param mode    precision mode: unity gain is 16 for 1 and 64 for any other value
 * @return        0
 */
ZERKLSC_API int32_t intra_cnl_diff(int16_t* plane, int32_t width, int32_t height, int32_t type, uint8_t mode);

/**
 * Undoes intra_cnl_diff(), in place. With type 1, an odd width and an even height, rows height / 2 and below
 * come back lower than they were by twice unity gain: streams of such grids decode so everywhere, and what
 * was written for one decoder has to mean the same to the next. Everything else comes back exactly.
 *
 * @param plane   width * height values, row by row, without border
 * @param width   nodes per row; below 1 nothing is touched
 * @param height  rows; below 1 nothing is touched
 * @param type    as given to intra_cnl_diff()
 * @param mode    as given to intra_cnl_diff()
 * @return        0
 */
ZERKLSC_API int32_t deintra_cnl_diff(int16_t* plane, int32_t width, int32_t height, int32_t type,
                                     uint8_t mode);

/**
 * Compresses four gain tables into a stream. The border is left out, gains are rounded to the unit of the
 * mode, and differences that do not fit their field are limited to it.
 *
 * Memory: at most 16 * n + 32 * grid_width + 1024.
 *
 * @param info  not written. bayer_pattern: 0..3 (above: the stream of four planes of zeros). grid_width,
 *              grid_height: table size, border included; below 3 nothing is written. lsc_table: four tables
 *              of grid_width * grid_height gains, only read. stream: written, 3 * n or 7 * (n / 4) bytes for
 *              n = (grid_width - 2) * (grid_height - 2); must not overlap the tables. precision_mode: 0 or 1;
 *              any other writes no byte.
 * @return      0, or -1 for a failed allocation; the stream is then as it was
 */
ZERKLSC_API int32_t lsc_compress(lsc_otp_info* info);

/**
 * Decompresses a stream into four gain tables and extrapolates their borders as expand_lsc_table_c2() does.
 * Any bytes decode; sums wrap modulo 65536. Nodes that mode 1 does not store decode from differences of 0.
 * With an odd number of inner columns and an even number of inner rows the lower half of every table is 2048
 * lower than what was compressed (see deintra_cnl_diff()).
 *
 * The gains are not limited: rounding can give 16384, and a border that falls below 0 is a number near 65536.
 * Run format_lsc_table() on tables that go to the hardware; the corrections of this library take them either
 * way.
 *
 * Memory: at most 16 * n + 32 * grid_width + 1024.
 *
 * @param info  not written. bayer_pattern: 0..3 (above: inner nodes keep their values). grid_width,
 *              grid_height: table size, border included; below 3 nothing is written, below 5 the border is
 *              not. lsc_table: four tables of grid_width * grid_height gains, written. stream: read, of the
 *              size that lsc_compress() writes; must not overlap the tables. precision_mode: 0 or 1; any
 *              other reads no byte and gives tables of 64 (with the lower half 128 lower at the sizes named
 *              above).
 * @return      0, or -1 for a failed allocation; the tables are then as they were
 */
ZERKLSC_API int32_t lsc_decompress(lsc_otp_info* info);

/**
 * Packs four planes into a stream, each value limited to its field: 6, 5, 7 and 5 bits of a, b, c and d in
 * mode 0, 4, 3, 4 and 3 bits in mode 1.
 *
 * @param stream  written: 3 * n bytes in mode 0, 7 * (n / 4) in mode 1, for n = width * height; no overlap
 *                with the planes
 * @param a       base plane: n values, row by row; only read
 * @param b       base less the colour beside it: n values, row by row; only read
 * @param c       base less the colour above or below it: n values, row by row; only read
 * @param d       base less the colour diagonal to it: n values, row by row; only read
 * @param width   nodes per row; below 1 nothing is written
 * @param height  rows; below 1 nothing is written
 * @param mode    precision mode, 0 or 1; any other writes nothing
 * @return        0
 */
ZERKLSC_API int32_t store_data(uint8_t* stream, int16_t* a, int16_t* b, int16_t* c, int16_t* d, int32_t width,
                               int32_t height, uint8_t mode);

/**
 * Unpacks a stream into four planes: the inverse of store_data(). The planes are distinct and do not overlap
 * the stream. In mode 1 the last n % 4 values of each keep what they hold.
 *
 * @param stream  read: 3 * n bytes in mode 0, 7 * (n / 4) in mode 1, for n = width * height
 * @param a       base plane: n values, row by row, written
 * @param b       base less the colour beside it, written likewise
 * @param c       base less the colour above or below it, written likewise
 * @param d       base less the colour diagonal to it, written likewise
 * @param width   nodes per row; below 1 nothing is written
 * @param height  rows; below 1 nothing is written
 * @param mode    precision mode, 0 or 1; any other writes nothing
 * @return        0
 */
ZERKLSC_API int32_t load_data(uint8_t* stream, int16_t* a, int16_t* b, int16_t* c, int16_t* d, int32_t width,
                              int32_t height, uint8_t mode);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZERKLSC_H */
