/*
 * A camera service: it reads the OTP stream of a module once, and then corrects frames in place, on four
 * threads, in buffers whose rows are padded as V4L2 pads them. There is no camera here: the module and its
 * frames are made up.
 *
 *     cc -std=c99 padded_frames.c $(pkg-config --cflags --libs zerklsc) -lpthread && ./a.out
 */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zerklsc_driver.h"

enum { WIDTH = 1928, HEIGHT = 1208, STEP = 32, THREADS = 4, FRAMES = 3 };
enum { STRIDE = 3968 }; /* bytes: 2 * WIDTH, padded to a multiple of 128 */

/* A table has these many nodes, border included; lsc2d_table_size() is asked whether it is so. */
enum { TABLE_W = (WIDTH / 2 + STEP - 1) / STEP + 3, TABLE_H = (HEIGHT / 2 + STEP - 1) / STEP + 3 };

typedef struct service {
    lsc2d_info info;
    uint16_t tables[4][TABLE_W * TABLE_H];
} service;

/* What one thread does with a frame. */
typedef struct band {
    const service* of;
    uint8_t* buffer;
    int32_t first_row, rows;
    zerklsc_status status;
} band;

static void* correct_band(void* argument) {
    band* b = argument;
    uint16_t* frame = (uint16_t*)(void*)b->buffer;
    b->status = zerklsc_correct(&b->of->info, frame, STRIDE, frame, STRIDE, b->first_row, b->rows);
    return NULL;
}

static zerklsc_status correct_frame(const service* s, uint8_t* buffer) {
    pthread_t threads[THREADS];
    band bands[THREADS];
    zerklsc_status status = ZERKLSC_OK;
    for (int32_t t = 0; t < THREADS; ++t) {
        const int32_t first = HEIGHT * t / THREADS;
        bands[t] = (band){s, buffer, first, HEIGHT * (t + 1) / THREADS - first, ZERKLSC_OK};
        if (pthread_create(&threads[t], NULL, correct_band, &bands[t]) != 0)
            abort();
    }
    for (int t = 0; t < THREADS; ++t) {
        pthread_join(threads[t], NULL);
        if (bands[t].status != ZERKLSC_OK)
            status = bands[t].status;
    }
    return status;
}

/* Takes the tables out of a stream, and finds out before the first frame whether all fits together. */
static zerklsc_status open_service(service* s, const uint8_t* stream, size_t bytes) {
    int32_t table_w, table_h;
    lsc2d_table_size(WIDTH / 2, HEIGHT / 2, STEP, STEP, &table_w, &table_h);
    lsc_otp_info otp = {.bayer_pattern = ZERKLSC_PATTERN_RGGB,
                        .grid_width = table_w,
                        .grid_height = table_h,
                        .stream = (uint8_t*)(uintptr_t)stream, /* only read */
                        .precision_mode = ZERKLSC_PRECISION_24_BITS};
    memset(s, 0, sizeof *s);
    s->info.width = WIDTH;
    s->info.height = HEIGHT;
    s->info.grid = STEP;
    s->info.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    for (int c = 0; c < 4; ++c)
        otp.lsc_table[c] = s->info.lsc_table[c] = s->tables[c];

    zerklsc_status status = zerklsc_check_correction(&s->info);
    if (status == ZERKLSC_OK)
        status = zerklsc_check_stream(&otp);
    if (status != ZERKLSC_OK)
        return status;
    if (table_w != TABLE_W || table_h != TABLE_H
        || bytes != zerklsc_stream_size(table_w, table_h, otp.precision_mode))
        return ZERKLSC_TOO_FEW_NODES;
    if (lsc_decompress(&otp) != 0)
        return ZERKLSC_NO_MEMORY;
    for (int c = 0; c < 4; ++c) /* an extrapolated border may have wrapped */
        format_lsc_table(s->tables[c], table_w, table_h);
    return ZERKLSC_OK;
}

/* From here on: the made-up module. */

/* A lens that keeps about 0.57 of the light at the corners. */
static uint16_t fall_off(int x, int y, int level) {
    const double dx = (x - WIDTH / 2) / 1137.0, dy = (y - HEIGHT / 2) / 1137.0;
    return (uint16_t)(level * (1.0 - 0.43 * (dx * dx + dy * dy)) + 0.5);
}

/* What the factory burnt: a flat field, calibrated and compressed. */
static size_t burn(uint8_t* stream, size_t room) {
    static uint16_t flat[WIDTH * HEIGHT];
    static service factory;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        flat[i] = fall_off(i % WIDTH, i / WIDTH, 900);
    lsc_otp_info otp = {.bayer_pattern = ZERKLSC_PATTERN_RGGB,
                        .grid_width = TABLE_W,
                        .grid_height = TABLE_H,
                        .stream = stream,
                        .precision_mode = ZERKLSC_PRECISION_24_BITS};
    factory.info.width = WIDTH;
    factory.info.height = HEIGHT;
    factory.info.grid = STEP;
    factory.info.shading_percent = 100;
    factory.info.filter_radius = 8;
    factory.info.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    for (int c = 0; c < 4; ++c)
        otp.lsc_table[c] = factory.info.lsc_table[c] = factory.tables[c];
    const size_t bytes = (size_t)zerklsc_stream_size(TABLE_W, TABLE_H, otp.precision_mode);
    zerklsc_report found;
    const zerklsc_status status = zerklsc_calibrate(flat, &factory.info, &found);
    if (status != ZERKLSC_OK)
        return 0;
    for (int c = 0; c < 4; ++c)
        if (found.capped_nodes[c] != 0) /* the flat field was dark somewhere */
            return 0;
    if (bytes > room || lsc_compress(&otp) != 0)
        return 0;
    return bytes;
}

int main(void) {
    static uint8_t stream[3 * TABLE_W * TABLE_H];
    static uint8_t buffer[STRIDE * HEIGHT];
    static service s;
    const size_t bytes = burn(stream, sizeof stream);
    zerklsc_status status = open_service(&s, stream, bytes);
    printf("zerklsc %d, stream of %zu bytes: %s\n", (int)zerklsc_version(), bytes,
           zerklsc_status_text(status));
    for (int f = 0; f < FRAMES && status == ZERKLSC_OK; ++f) {
        const int level = 300 + 200 * f;
        memset(buffer, 0x5A, sizeof buffer);
        for (int y = 0; y < HEIGHT; ++y)
            for (int x = 0; x < WIDTH; ++x)
                ((uint16_t*)(void*)(buffer + (size_t)y * STRIDE))[x] = fall_off(x, y, level);
        const int before = ((uint16_t*)(void*)buffer)[0];
        status = correct_frame(&s, buffer);
        const int after = ((uint16_t*)(void*)buffer)[0];
        printf("frame %d: the corner is at %d %% of the centre, %d %% before\n", f, 100 * after / level,
               100 * before / level);
        /* The last two bytes of the first row are padding. */
        if (abs(after - level) > level / 50 || buffer[STRIDE - 1] != 0x5A)
            return EXIT_FAILURE;
    }
    return status == ZERKLSC_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
