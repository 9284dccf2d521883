// meshgrid
#include "zerklsc.h"

void meshgrid(pix_point* points, uint16_t* xs, uint16_t* ys, int32_t nxs, int32_t nys) {
    for (int32_t q = 0; q < nys; ++q) {
        for (int32_t p = 0; p < nxs; ++p, ++points) {
            points->x = static_cast<int16_t>(xs[p]);
            points->y = static_cast<int16_t>(ys[q]);
        }
    }
}
