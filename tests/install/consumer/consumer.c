/* Calibrates a flat frame and corrects it: nothing may change. */
#include <stdio.h>
#include <zerklsc.h>

enum { WIDTH = 256, HEIGHT = 192, STEP = 16, MOST_NODES = 19 * 15 };

int main(void) {
    static uint16_t frame[WIDTH * HEIGHT], corrected[WIDTH * HEIGHT], tables[4][MOST_NODES];
    lsc2d_info info = {0};
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        frame[i] = 500;
    info.width = WIDTH;
    info.height = HEIGHT;
    for (int c = 0; c < 4; ++c)
        info.lsc_table[c] = tables[c];
    info.grid = STEP;
    info.shading_percent = 100;
    info.filter_radius = 2;
    info.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    if (lsc2d_calibration_wrapper(frame, &info) != 0
        || lsc2d_correction_wrapper(frame, corrected, &info) != 0)
        return 1;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        if (corrected[i] != 500) {
            printf("sample %d became %d\n", i, corrected[i]);
            return 1;
        }
    return 0;
}
