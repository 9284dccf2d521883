/* Runs the example at the top of zerklsc.h on a frame that darkens towards its corners. */
#include <stdio.h>
#include <stdlib.h>

#include <zerklsc.h>

enum { WIDTH = 512, HEIGHT = 384, NODES = 5 * 4 };

int shade(const uint16_t* flat, uint16_t* frame, uint16_t width, uint16_t height, uint8_t* stream);

int main(void) {
    static uint16_t flat[WIDTH * HEIGHT], frame[WIDTH * HEIGHT];
    static uint8_t stream[3 * NODES + 1];
    int largest_error = 0;
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x)
            frame[y * WIDTH + x] = flat[y * WIDTH + x] =
                (uint16_t)(800 - abs(x - WIDTH / 2) / 2 - abs(y - HEIGHT / 2) / 4);
    stream[3 * NODES] = 77;
    if (shade(flat, frame, WIDTH, HEIGHT, stream) != 0)
        return 1;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        if (abs(frame[i] - 800) > largest_error)
            largest_error = abs(frame[i] - 800);
    printf("farthest from the centre's 800: %d; first bytes of the stream: %d %d %d\n", largest_error,
           stream[0], stream[1], stream[2]);
    return largest_error > 40 || stream[3 * NODES] != 77 || (stream[0] == 0 && stream[1] == 0);
}
