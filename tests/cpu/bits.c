/* Calibrates a frame by every algorithm and corrects it, and prints sums of what came out: the same on every
 * target. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zerklsc.h>

enum { WIDTH = 328, HEIGHT = 250, STEP = 16 };

static uint16_t flat[WIDTH * HEIGHT], corrected[WIDTH * HEIGHT];

static uint32_t sum_of(const uint16_t* words, size_t count) {
    uint32_t sum = 2166136261u; /* FNV-1a */
    for (size_t i = 0; i < count; ++i)
        sum = (sum ^ words[i]) * 16777619u;
    return sum;
}

static int calibrate_and_correct(int algorithm) {
    lsc2d_info info;
    int32_t table_w, table_h;
    lsc2d_table_size(WIDTH / 2, HEIGHT / 2, STEP, STEP, &table_w, &table_h);
    const size_t count = (size_t)table_w * (size_t)table_h;
    memset(&info, 0, sizeof info);
    info.width = WIDTH;
    info.height = HEIGHT;
    info.grid = STEP;
    info.shading_percent = 85;
    info.filter_radius = 4;
    info.algorithm = algorithm;
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        info.lsc_table[c] = calloc(count, sizeof(uint16_t));
    const int calibrated = lsc2d_calibration_wrapper(flat, &info);
    const int done = lsc2d_correction_wrapper(flat, corrected, &info);
    printf("algorithm %d: %d %d", algorithm, calibrated, done);
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
        printf(" %08x", (unsigned)sum_of(info.lsc_table[c], count));
        free(info.lsc_table[c]);
    }
    printf(" %08x\n", (unsigned)sum_of(corrected, WIDTH * HEIGHT));
    return calibrated || done;
}

int main(void) {
    int failed = 0;
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) {
            const int dx = x - 150, dy = y - 131;
            flat[y * WIDTH + x] = (uint16_t)(930 - (dx * dx + 2 * dy * dy) / 120 - 9 * (x & 1) + 5 * (y & 1));
        }
    for (int algorithm = 0; algorithm <= ZERKLSC_ALGORITHM_ORVEL_WEIGHTS; ++algorithm)
        failed |= calibrate_and_correct(algorithm);
    return failed;
}
